#pragma once

#include <QStringList>
#include <QUrl>

namespace media {

/// Whether a file is Matroska and holds nothing but its headers: not one packet of any track. False for what
/// can't be told. Reads a few bytes of each top element, so it is quick for films too.
bool isMatroskaWithoutPackets(const QUrl &file);

/// "video" and "audio" for each such track of which mkvmerge, in a file that it wrote itself, counts no
/// packet. Subtitles may well be empty. Reads a few bytes of each top element, and the tags.
QStringList kindsCountedEmpty(const QUrl &file);

} // namespace media
