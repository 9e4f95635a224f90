#pragma once

#include <QStringList>

namespace support {

/// The words of a line in which no word holds a blank: "-map 0:0 -vcodec copy".
QStringList words(const QString &line);

} // namespace support
