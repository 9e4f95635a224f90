#pragma once

#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace media {

/// What happens to a track of a source in an operation.
enum class Became { Copied, Reencoded, Burned, LeftOut };

/// How it was shown that a track arrived whole: by where it starts and ends, by its count of packets, or by
/// all its bits. NotProven where there is no output to look at, or no known way.
enum class Proof { NotProven, Lengths, Packets, Bits };

/// What a job that was asked to verify its outputs found out beyond that: a copied track has the same bits or
/// there is no known way to compare them, and the key frames of encoded video decode.
enum class Verified { NotAsked, SameBits, NotProven, Decodes };

/// Who is told of a track that is left out: whoever asks, everybody, or everybody as a warning. What a tool
/// or a step says by itself is told once, so it is for those who ask.
enum class Told { InTheReceipt, AsANote, AsAWarning };

/// What becomes of one track of a source: what was planned, and what was measured once the output was
/// checked. A plain value. Chapters, attachments and data streams are kinds of their own.
struct TrackFate
{
    QUrl source;
    int index =
        -1; ///< ffprobe's stream index in the source; -1 for chapters, or a stream that it does not count
    QString kind;  ///< "video", "audio", "subtitle", "cover", "attachment", "chapters" or "data"
    QString codec; ///< the probe's own word; absent where it has none
    Became became = Became::Copied;
    QString to;     ///< the probe's word of the codec that it became; absent unless it is re-encoded
    QString reason; ///< why it was left out, a sentence; why the program chose this for it; else absent
    Told told = Told::InTheReceipt;
    QUrl output; ///< the final name; empty where it is in none
    int outputIndex =
        -1; ///< ffprobe's stream index in the output; -1 where not known before the output is read
    std::optional<double> sourceSeconds;
    std::optional<double> outputSeconds;
    std::optional<qint64> sourceBytes;
    std::optional<qint64> outputBytes;
    Proof proof = Proof::NotProven;
    Verified verified = Verified::NotAsked;
};

/// What one output is meant to hold of its sources.
enum class Extent {
    Whole,   ///< all of one source
    Sum,     ///< the sources one behind the other
    Stretch, ///< from one time to another
    Part     ///< one of several files that are the whole together
};

/// One output as it is meant: what the check of a finished file is held against. The fates of several outputs
/// of one step are in several of these.
struct MeantOutput
{
    QUrl output; ///< the final name
    QUrl file;   ///< where it lies now; the final name unless it is not there yet
    Extent extent = Extent::Whole;
    QList<QUrl> sources;      ///< in their order; more than one for a sum, or where tracks were added
    double from = 0;          ///< seconds in the source; of a stretch only
    std::optional<double> to; ///< the same; absent: the end
    bool isRaw = false;       ///< an elementary stream without a container, so without times
    /// What becomes of the sources' tracks as far as they are known, in no order: those that are left out
    /// too.
    QList<TrackFate> tracks;
    /// What becomes of the streams that are not among them (media::completed()): each a pattern by its kind,
    /// and by codec and source where it has them. The first that fits counts.
    QList<TrackFate> rest;
    bool hasOneSetOfChapters = false; ///< of several sources with chapters only the first one's are in it
};

} // namespace media
