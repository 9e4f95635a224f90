#include "media/SampledTimes.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace media {

namespace {

constexpr double sameTime = 0.02;
constexpr double slowestPicture = 0.25;

/// Whether a packet keeps its size where it is copied between these.
bool keepsSizes(const FilmFacts &film, const StreamFacts &stream)
{
    static const QStringList codecs{u"h264"_s, u"aac"_s,  u"ac3"_s,    u"eac3"_s,
                                    u"mp3"_s,  u"opus"_s, u"vorbis"_s, u"vp9"_s};
    return (film.isMatroska() || film.isMov() || film.format == u"flv"_s) && codecs.contains(stream.codec);
}

/// Sound in streams for sending is cut into packets anew, uncompressed sound by every container its own way.
bool canBeSampled(const FilmFacts &film, const StreamFacts &stream)
{
    if (stream.kind == u"video"_s)
        return stream.frameSeconds > 0 && stream.frameSeconds <= slowestPicture;
    return stream.kind == u"audio"_s && !stream.codec.startsWith(u"pcm_"_s) && !film.isTransport() &&
           !film.isProgram();
}

QList<FilmPacket> packetsOf(const FilmFacts &film, const StreamFacts &stream)
{
    QList<FilmPacket> packets;
    for (const FilmPacket &one : film.packets) {
        if (one.stream == stream.index && one.shown)
            packets.append(one);
    }
    std::sort(packets.begin(), packets.end(),
              [](const FilmPacket &one, const FilmPacket &other) { return *one.shown < *other.shown; });
    return packets;
}

/// Of a film that is known whole they lie as they would in a long one.
QList<double> windowsOf(const FilmFacts &film)
{
    if (!film.windows.isEmpty() || !film.listsAll || !film.lastEnd())
        return film.windows;
    const double begin = film.earliestStart().value_or(0);
    const double length = *film.lastEnd() - begin;
    return {begin + length * 0.25, begin + length * 0.5, begin + length * 0.75};
}

/// Both ends of a window are ragged.
bool isInside(double time, double window)
{
    return time >= window + 0.2 && time <= window + windowSeconds - 0.3;
}

bool hasOneLike(const QList<FilmPacket> &packets, const FilmPacket &wanted, double shift, bool withSize)
{
    const double time = *wanted.shown - shift;
    const auto from =
        std::lower_bound(packets.begin(), packets.end(), time - sameTime,
                         [](const FilmPacket &one, double begin) { return *one.shown < begin; });
    return std::any_of(from, packets.end(), [&](const FilmPacket &one) {
        return *one.shown <= time + sameTime && (!withSize || one.bytes == wanted.bytes);
    });
}

/// How many of the packets in windows of a film lie in the other one, too.
struct Found
{
    int seen = 0;
    int missing = 0;
};

/// A window ends with its first packet that lies behind it, of whatever stream: where the pieces of the
/// streams lie far apart in a file, others end earlier.
bool isCovered(const QList<FilmPacket> &others, double window, double time)
{
    bool hasBefore = false;
    bool hasBehind = false;
    for (const FilmPacket &one : others) {
        const bool isNear = *one.shown >= window - windowSeconds && *one.shown <= window + 2 * windowSeconds;
        hasBefore = hasBefore || (isNear && *one.shown <= time + sameTime);
        hasBehind = hasBehind || (isNear && *one.shown >= time - sameTime);
    }
    return hasBefore && hasBehind;
}

Found foundIn(const QList<FilmPacket> &others, const QList<FilmPacket> &packets, const QList<double> &windows,
              double shift, bool withSize)
{
    Found found;
    for (const FilmPacket &one : packets) {
        const bool isSampled = std::any_of(windows.begin(), windows.end(), [&](double window) {
            return isInside(*one.shown, window) && isCovered(others, window - shift, *one.shown - shift);
        });
        found.seen += isSampled ? 1 : 0;
        found.missing += isSampled && !hasOneLike(others, one, shift, withSize) ? 1 : 0;
    }
    return found;
}

/// The windows of a film that were sampled of the other one, too.
QList<double> commonWindows(const QList<double> &windows, const FilmFacts &other, double shift)
{
    QList<double> common;
    for (const double window : windows) {
        const bool isThere = other.windows.isEmpty()
                                 ? other.listsAll
                                 : std::any_of(other.windows.begin(), other.windows.end(), [&](double one) {
                                       return std::abs(one + shift - window) < 0.2;
                                   });
        if (isThere)
            common.append(window);
    }
    return common;
}

bool isOff(const Found &found)
{
    return found.missing * 5 > found.seen;
}

} // namespace

bool saysWhenShown(const FilmFacts &film, const StreamFacts &stream)
{
    return std::all_of(film.packets.begin(), film.packets.end(), [&](const FilmPacket &one) {
        return one.stream != stream.index || one.shown.has_value();
    });
}

Sampled sampledTimes(const FilmFacts &source, const StreamFacts &from, const FilmFacts &output,
                     const StreamFacts &to, double shift)
{
    if (!canBeSampled(source, from) || !canBeSampled(output, to) || !saysWhenShown(source, from) ||
        !saysWhenShown(output, to))
        return Sampled::NotKnown;
    const bool withSize = keepsSizes(source, from) && keepsSizes(output, to);
    const QList<FilmPacket> before = packetsOf(source, from);
    const QList<FilmPacket> after = packetsOf(output, to);
    const QList<double> windows = commonWindows(windowsOf(source), output, -shift);
    QList<double> shifted;
    for (const double window : windows)
        shifted.append(window + shift);
    const Found moved = foundIn(before, after, shifted, shift, withSize);
    const Found lost = foundIn(after, before, windows, -shift, withSize);
    if (before.isEmpty() || moved.seen + lost.seen == 0)
        return Sampled::NotKnown;
    return isOff(moved) || isOff(lost) ? Sampled::Different : Sampled::Same;
}

} // namespace media
