#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace media {

/// One packet of a film as ffprobe lists it. Times in seconds, those of the film itself.
struct FilmPacket
{
    int stream = -1;
    std::optional<double> shown;   ///< absent in AVI
    std::optional<double> decoded; ///< absent at the head of some films
    double seconds = 0;
    qint64 bytes = 0;
    bool isKey = false;

    /// When it is over; absent where it has no time at all.
    std::optional<double> end() const;
    std::optional<double> time() const { return shown ? shown : decoded; }
};

/// What is known of one stream of a film: what its header tells, and what was measured. Absent is not known.
struct StreamFacts
{
    int index = -1;
    QString kind; ///< "video", "audio", "subtitle", "cover", "attachment" or "data"
    QString codec;
    QString language;
    QString extradataHash;
    int sampleRate = 0;
    double frameSeconds = 0; ///< of one picture at the header's rate; 0 where it tells none
    std::optional<double> headerStart;
    std::optional<double> headerSeconds;
    std::optional<qint64> packets; ///< where its container has counted them, and they are this file's
    std::optional<qint64> bytes;
    std::optional<double> toldEnd; ///< by a tag, which may be wrong

    std::optional<double> firstTime; ///< of the first packet, also of one that an edit list hides
    std::optional<double> lastEnd;   ///< measured, or told by an index that can't be wrong alone
    double lastSeconds = 0;          ///< how long its last packet lasts
    double lastGap = 0;              ///< the longest time between two of its last few pictures

    /// Where it begins: a copy takes along what an edit list hides, an encoder does not see it.
    std::optional<double> startOfCopy() const;
    std::optional<double> startOfPicture() const { return headerStart ? headerStart : firstTime; }
    bool isTimed() const { return kind == u"video" || kind == u"audio"; }
};

/// What is known of one film. A plain value, filled by media::take().
struct FilmFacts
{
    bool wasAsked = false;  ///< ffprobe has answered, be it with an error
    bool isOpen = false;    ///< it told a format
    bool isTooLong = false; ///< what it lists is more than can be looked at: its header alone is known
    QString format;
    QString writtenAt; ///< the file's creation time, as it tells it
    std::optional<double> start;
    std::optional<double> seconds;
    qint64 bytes = 0;
    std::optional<qint64> declaredBytes; ///< how long its own header says that the file is
    int chapters = 0;
    QList<StreamFacts> streams;
    QList<FilmPacket> packets;   ///< of the head, the sampled windows and the tail
    QList<double> keyFrames;     ///< of the video, in stretches that were asked for
    QList<double> windows;       ///< where the sampled windows begin; each is windowSeconds long
    QStringList errors;          ///< ffprobe's own lines
    bool hasTail = false;        ///< its last packets were seen
    bool listsAll = false;       ///< `packets` holds all of them
    bool wasReadWhole = false;   ///< every packet was seen
    std::optional<double> aimed; ///< the end that the tail was looked for at

    const StreamFacts *stream(int index) const;
    QList<const StreamFacts *> ofKind(const QString &kind) const;
    bool isMatroska() const { return format.contains(u"matroska"); }
    bool isMov() const { return format.contains(u"mp4"); }
    bool isTransport() const { return format == u"mpegts"; }
    bool isProgram() const { return format == u"mpeg"; }

    /// The time up to which its header says that it goes; absent where it says nothing.
    std::optional<double> promise() const;
    /// The earliest start and the last end of what is seen and heard; absent where not known.
    std::optional<double> earliestStart() const;
    std::optional<double> lastEnd() const;
    /// Whether it ends before its own header, or its container, says that it does.
    bool isShort() const;
};

inline constexpr double windowSeconds = 1.5;

} // namespace media
