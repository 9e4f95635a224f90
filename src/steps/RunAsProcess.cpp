#include "steps/RunAsProcess.h"

using namespace Qt::StringLiterals;

namespace steps {

tools::OptionList runAsProcess(const tools::OptionList &line)
{
    tools::OptionList words;
    for (const tools::OptionItem &item : line) {
        if (!item.isFile() && !item.hasData() && item.text().startsWith(u"&>"_s))
            break;
        words << item.words();
    }
    return words;
}

} // namespace steps
