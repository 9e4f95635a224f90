#pragma once

#include "engines/join/JoinFile.h"

namespace engines {

/// Whether files can follow one another in one film, and what has to be done to some of them before.
struct JoinFit
{
    QString refusal; ///< a sentence that names what differs and in which file; null when they fit
    /// Positions of the files whose times have to be counted in the units of the first one before ffmpeg
    /// joins them. The first one is among them where its own units are none that ffmpeg writes.
    QList<qsizetype> toRetime;
    QString timescale; ///< of the pictures of those files, units a second; empty where the format fixes it
};

/// For files in their order and the tool that joins them ("mkvmerge", "mp4box" or "ffmpeg"). A file of which
/// nothing was found out is left to the tool.
JoinFit joinFitOf(const QList<JoinFile> &files, const QString &joiner);

} // namespace engines
