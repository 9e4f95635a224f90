#pragma once

#include "media/FilmFacts.h"
#include "media/RunFigures.h"
#include "media/TrackFate.h"

#include <QHash>

namespace media {

/// What there is to say of the sources of an output, whatever became of it.
struct SourceWarnings
{
    QStringList sentences;
    bool tellsOfEnd = false; ///< they say where a source ends that was cut
};

/// Sources that can't be read, that end before they say that they do, or that the tool found damaged.
SourceWarnings warningsOfSources(const MeantOutput &output, const QHash<QUrl, FilmFacts> &films,
                                 const RunFigures &figures);

/// Where a stretch, which begins and ends at key frames, is far from what was asked for; else null.
QString warningOfStretch(const MeantOutput &output, const QHash<QUrl, FilmFacts> &films);

} // namespace media
