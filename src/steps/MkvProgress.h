#pragma once

#include "tools/LineCutter.h"

namespace steps {

/// Reads how far mkvmerge says it is ("Progress: 45%") from chunks of its output.
class MkvProgressReader final
{
public:
    /// The percentage that the chunk says last, as "45"; a null text when it says none. A line that is not
    /// finished counts when its value is whole.
    QString feed(const QByteArray &chunk);
    void clear() { m_lines.clear(); }

private:
    tools::LineCutter m_lines;
};

} // namespace steps
