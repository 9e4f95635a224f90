#pragma once

#include "media/FilmFacts.h"
#include "media/TrackFate.h"

#include <QHash>
#include <QStringList>

namespace media {

/// One run of ffmpeg that hashes streams of a film without what containers add or take away.
struct HashRun
{
    QUrl film;
    QStringList arguments;
};

/// The two runs that show whether tracks of one source arrived bit for bit. Both hash the same tracks in the
/// same order.
struct ProofRuns
{
    HashRun source;
    HashRun output;
    QList<int> tracks; ///< positions in MeantOutput::tracks
};

/// The runs for an output that holds all of its sources, one pair for each source with a track that was
/// copied and for whose codec there is a way. The places of the tracks in the output must be known, as they
/// are after its check. None for sums, stretches and parts.
QList<ProofRuns> proofRuns(const MeantOutput &output, const QHash<QUrl, FilmFacts> &films);

/// Compares what the two runs printed. Tracks with equal hashes are proven; answers a sentence for each other
/// one. Runs that did not print a hash for a track prove nothing and say nothing of it.
QStringList proveBits(MeantOutput &output, const ProofRuns &runs, const QByteArray &ofSource,
                      const QByteArray &ofOutput);

} // namespace media
