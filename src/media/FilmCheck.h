#pragma once

#include "media/FilmRead.h"
#include "media/RunFigures.h"
#include "media/SourceStreams.h"
#include "media/TrackFate.h"

#include <QHash>

namespace media {

/// What the check of one output came to.
struct CheckedOutput
{
    enum class Result { Ok, Warnings, Failed };

    MeantOutput output; ///< with what was measured, the streams' places and the proofs in its fates
    Result result = Result::Ok;
    bool tellsOfEnd = false;       ///< of a source: the sentences say where it ends
    QStringList sentences;         ///< what there is to say, the worst first; none when all is well
    std::optional<double> seconds; ///< how long the output is

    QString sentence() const { return sentences.join(u' '); }
};

using Films = QHash<QUrl, FilmFacts>;

/// Holds the finished outputs of a step against what they were meant to be. The facts are those of all their
/// sources, by location, and of their files; a source that is not among them can't be held against anything,
/// which is told. Outputs are completed by what their sources hold. The parts of a whole are to be handed
/// over together, in their order.
QList<CheckedOutput> checkedOutputs(const QList<MeantOutput> &outputs, const Films &films,
                                    const RunFigures &figures);

/// What a film holds, to complete what is meant of it.
SourceStreams sourceStreamsOf(const FilmFacts &film);

/// What is to be known of a source, for these outputs.
FilmWish wishForSource(const QUrl &source, const QList<MeantOutput> &outputs);
/// What is to be known of an output once its sources are known.
FilmWish wishForOutput(const MeantOutput &output, const Films &films);

/// "6:00", or "1:06:00" from an hour on.
QString clockTime(double seconds);

} // namespace media
