#pragma once

#include "media/TrackFate.h"

#include <QStringList>

namespace support {

/// What becomes of a track in one line: "a.mkv:1 audio ac3 > aac #2", "a.mkv:1 audio ac3 copied #0",
/// "s.srt:0 subtitle subrip burned", "a.mkv:3 subtitle ass left: It was not chosen.". What is not known is
/// not told, but chapters and the like have ":-".
QString told(const media::TrackFate &fate);
QStringList told(const QList<media::TrackFate> &fates);

/// The fates of several streams that are not known to a step: "attachment left: ...", "chapters copied".
QStringList toldPatterns(const QList<media::TrackFate> &patterns);

} // namespace support
