#pragma once

#include "media/FilmFacts.h"
#include "media/TrackFate.h"

#include <QHash>

namespace media {

/// One stream as it should be in an output: what it comes from and how long it should be. Times in seconds,
/// beside the earliest stream of the output. Absent is not known.
struct ExpectedStream
{
    QString kind;
    QString codec; ///< absent: any
    QString language;
    QList<int> fates;                   ///< positions in MeantOutput::tracks: one, or one a source of a sum
    QList<const StreamFacts *> sources; ///< their streams; as many, null where not known
    bool isCopied = true;
    std::optional<double> start;
    std::optional<double> seconds;
    double mostLater = 0; ///< how much later it may begin in a sum, see LengthInSum
    double mostMore = 0;  ///< how much longer it may last in a sum
    double hidden =
        0; ///< what an edit list hides in front of a sound: some tools take it along, others don't
    std::optional<qint64> packets;

    bool isTimed() const { return kind == u"video" || kind == u"audio"; }
    /// How much its length may be off.
    double tolerance(const StreamFacts &found) const;
};

/// The stretch of the source that a part by time should hold: from the first key frame at or after a time to
/// the first at or after the other.
struct TrueStretch
{
    double from = 0;
    double to = 0;
};
std::optional<TrueStretch> trueStretchOf(const MeantOutput &output, const FilmFacts &source);

/// The streams of picture, sound and text that an output should have, by kind and in the order of its fates.
QList<ExpectedStream> expectedStreams(const MeantOutput &output, const QHash<QUrl, FilmFacts> &films);

/// Seconds of one packet of a sound that is always packed alike; absent for others.
std::optional<double> packetSeconds(const StreamFacts &stream);
/// Those of so many; absent where they are not known.
std::optional<double> packedSeconds(const StreamFacts &stream, std::optional<qint64> packets);

/// Whether a source's count of packets is that of what is really there.
std::optional<qint64> trueCount(const FilmFacts &film, const StreamFacts &stream);

} // namespace media
