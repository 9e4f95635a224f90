#pragma once

#include "steps/Outcome.h"

#include <QString>
#include <QStringList>
#include <QUrl>

namespace engines {

/// What ffmpeg's own lines say about a run that ended, beyond its exit status.
struct FfmpegRun
{
    QString log;
    QStringList files; ///< paths that stand in the log; what their names say never counts
    QUrl output;
    bool hasVideo = false;
};

/// Failed when the disk was full, done with warnings when the source was damaged or the result is
/// shorter than it, else Ok.
steps::Outcome outcomeOfMessages(const FfmpegRun &run);

/// True when no frame was written, or the container refused a packet.
bool hasWriteError(const FfmpegRun &run);

/// True when the log asks for generated timestamps.
bool hasTimestampError(const QString &log);

} // namespace engines
