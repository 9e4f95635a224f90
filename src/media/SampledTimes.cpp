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
    if (!film.windows.isEmpty() || !film.wasReadWhole || !film.lastEnd())
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

} // namespace

Sampled sampledTimes(const FilmFacts &source, const StreamFacts &from, const FilmFacts &output,
                     const StreamFacts &to, double shift)
{
    if (!canBeSampled(source, from) || !canBeSampled(output, to))
        return Sampled::NotKnown;
    const bool withSize = keepsSizes(source, from) && keepsSizes(output, to);
    const QList<FilmPacket> before = packetsOf(source, from);
    int seen = 0;
    int missing = 0;
    for (const FilmPacket &one : packetsOf(output, to)) {
        for (const double window : windowsOf(source)) {
            if (!isInside(*one.shown - shift, window))
                continue;
            ++seen;
            missing += hasOneLike(before, one, shift, withSize) ? 0 : 1;
        }
    }
    if (before.isEmpty() || seen == 0)
        return Sampled::NotKnown;
    return missing * 5 > seen ? Sampled::Different : Sampled::Same;
}

} // namespace media
