#pragma once

#include <QList>
#include <QPair>
#include <QString>

namespace support {

/// Tags of a track in order: name and text.
using TagList = QList<QPair<QString, QString>>;

// The smallest films with everything in them: 64x48, 10 frames a second, 2 s.

/// h264 (0), aac 2ch (1), srt (2).
QString tinyTextMkv();
/// h264 (0), aac 2ch (1), a picture subtitle from second 1 on (2).
QString tinyPictureMkv();

/// Writes that film anew with tags for its tracks, for each of the three their own list.
void writeTagged(const QString &film, const QString &path, const QList<TagList> &tags);
/// Behind this tag a reader that takes a line with a brace for the end of the tags sees fields of the stream.
TagList behindABrace(const TagList &tags);

} // namespace support
