#pragma once

#include "jobs/KXJob.h"
#include "media/Receipt.h"
#include "media/SourceStreams.h"
#include "selection/SizeEstimate.h"

class KXVideoFile;

namespace app {

/// What is known of a film before a job takes it: what a plan needs beside the job's selection.
struct PlannedFilm
{
    std::optional<double> seconds;
    media::SourceStreams streams; ///< without chapters, which its probe does not list

    static PlannedFilm of(const KXVideoFile &file);
};

/// What a job would do, without anything done: per track what becomes of it and why. A plain value.
struct ConversionPlan
{
    QUrl source;
    QString target;                              ///< the name of the target
    QList<QUrl> outputs;                         ///< under the names that they would get now
    QList<media::TrackFate> tracks;              ///< as in a receipt; nothing is measured
    std::optional<double> seconds;               ///< how long the film is
    std::optional<selection::SizeEstimate> size; ///< of the result
    QStringList problems;                        ///< why it would not start, in sentences
    QStringList notes;                           ///< what else a person should know before
};

/// The plan of a job that is not started and never will be: it takes its names.
ConversionPlan planOf(KXJob &job, const PlannedFilm &film);

} // namespace app
