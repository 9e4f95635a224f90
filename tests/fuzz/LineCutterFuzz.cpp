// However a tool's output is cut into chunks, the same lines come out of it.
#include "tools/LineCutter.h"

#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

bool isCut(const QString &line)
{
    return !line.isEmpty() && !line.contains(u'\r') && !line.contains(u'\n');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, size_t size)
{
    if (size < 1 || size > 32768) // an endless line is shortened
        return 0;
    const qsizetype step = 1 + bytes[0] % 16;
    const QByteArray output(reinterpret_cast<const char *>(bytes) + 1, static_cast<qsizetype>(size) - 1);
    tools::LineCutter whole;
    const QStringList lines = whole.feed(output);
    tools::LineCutter pieces;
    QStringList same;
    for (qsizetype i = 0; i < output.size(); i += step)
        same += pieces.feed(output.mid(i, step));
    require(same == lines && pieces.rest() == whole.rest());
    for (const QString &line : lines)
        require(isCut(line));
    return 0;
}
