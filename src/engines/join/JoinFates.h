#pragma once

#include "media/TrackFate.h"

namespace engines {

/// What the named tool writes of files one behind the other: "mkvmerge", "mp4box" or "ffmpeg".
media::MeantOutput joinOutput(const QString &joiner, const QList<QUrl> &files, const QUrl &output);

} // namespace engines
