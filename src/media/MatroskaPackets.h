#pragma once

#include <QUrl>

namespace media {

/// Whether a file is Matroska and holds nothing but its headers: not one packet of any track. False for what
/// can't be told. Reads a few bytes of each top element, so it is quick for films too.
bool isMatroskaWithoutPackets(const QUrl &file);

} // namespace media
