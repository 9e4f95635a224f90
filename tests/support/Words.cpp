#include "support/Words.h"

namespace support {

QStringList words(const QString &line)
{
    return line.split(u' ', Qt::SkipEmptyParts);
}

} // namespace support
