#pragma once

#include "media/FilmFacts.h"
#include "media/TrackFate.h"

#include <QHash>
#include <QStringList>

#include <optional>

namespace media {

/// One run of ffmpeg that reads a film.
struct FilmRun
{
    QUrl film;
    QStringList arguments;
};

/// A track among the outputs of a step.
struct TrackPlace
{
    int output = 0; ///< a position in the list of outputs
    int track = 0;  ///< and one in its tracks

    bool operator==(const TrackPlace &) const = default;
};

/// The two runs that show whether tracks arrived bit for bit. Both hash the same tracks in the same order,
/// without what containers add or take away; films that follow each other are read as one.
struct ProofRuns
{
    FilmRun source;
    FilmRun output;
    QList<QList<TrackPlace>>
        tracks; ///< what belongs to each hash: several where films were joined, or parted
};

/// The runs for the outputs of one step: one pair for each source of an output that holds all of it, one for
/// a joined film, one for all parts of a film. Only of tracks that were copied and for whose codec there is a
/// way. The places of the tracks in the outputs must be known, as they are after their check. None for a
/// stretch of a film.
QList<ProofRuns> proofRuns(const QList<MeantOutput> &outputs, const QHash<QUrl, FilmFacts> &films);

/// Compares what the two runs printed. Tracks with equal hashes are proven; answers a sentence for each other
/// one. Runs that did not print a hash for a track prove nothing and say nothing of it.
QStringList proveBits(QList<MeantOutput> &outputs, const ProofRuns &runs, const QByteArray &ofSource,
                      const QByteArray &ofOutput);

/// Of an output whose runs have ended: copied tracks that are not proven are marked as such.
void markUnproven(MeantOutput &output);

/// The run that decodes the key frames of the video that was encoded; absent where there is none.
std::optional<FilmRun> keyFrameRun(const MeantOutput &output);

/// Takes what that run printed on its error stream, and whether it ended well. Answers a sentence when
/// something does not decode, else null.
QString takeKeyFrames(MeantOutput &output, const QByteArray &errors, bool endedWell);

} // namespace media
