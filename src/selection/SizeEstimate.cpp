#include "selection/SizeEstimate.h"

#include "selection/ConversionSettings.h"
#include "selection/Targets.h"
#include "tools/Numbers.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;
using tools::leadingInteger;

namespace selection {

namespace {

constexpr double bytesInKilobit = 125;
constexpr double container = 1.005; // what a file holds beside its streams

/// kb/s a channel of a sound that does not tell its bit rate.
int usualRateOfChannel(const QString &codec)
{
    static const QHash<QString, int> rates{{u"aac"_s, 64},   {u"ac3"_s, 75},     {u"eac3"_s, 75},
                                           {u"dts"_s, 250},  {u"truehd"_s, 500}, {u"flac"_s, 450},
                                           {u"alac"_s, 450}, {u"opus"_s, 50},    {u"vorbis"_s, 64}};
    constexpr int ofPcm = 768;
    return codec.startsWith(u"pcm_"_s) ? ofPcm : rates.value(codec, 80);
}

qint64 rateOf(const KXVideoTrack &track)
{
    return std::max<qint64>(leadingInteger(track.trackBitRate()), 0);
}

qint64 soundRate(const KXVideoTrack &track)
{
    const qint64 channels = std::max<qint64>(leadingInteger(track.trackNumberOfChannels()), 1);
    return rateOf(track) > 0 ? rateOf(track) : channels * usualRateOfChannel(track.probedCodecName());
}

qint64 outputRate(const KXVideoTrack &track)
{
    qint64 sum = 0;
    for (const AudioOutput &output : outputsOf(track))
        sum += output.passesThrough() ? soundRate(track) : leadingInteger(output.bitRate);
    return sum;
}

/// The rate of a picture that its stream does not tell is what its container leaves, so sound that does not
/// tell its own is in it.
qint64 copiedPictureRate(const KXSelection &selection, const KXVideoTrack &video)
{
    qint64 rate = rateOf(video);
    for (const TrackPointer &track : selection.trackList() + selection.keepTracksList()) {
        if (isAudio(*track) && !track->externalTrackFlag() && rateOf(*track) == 0)
            rate -= soundRate(*track);
    }
    return std::max<qint64>(rate, 0);
}

qint64 encodedPictureRate(const KXSelection &selection)
{
    const qint64 rate = leadingInteger(selection.userVideoBitRate());
    const Target *target = targetNamed(selection.theDevice());
    return target != nullptr && target->bitRateCap > 0 ? std::min<qint64>(rate, target->bitRateCap) : rate;
}

/// No value where it is not known.
std::optional<qint64> pictureRate(const KXSelection &selection, const KXVideoTrack &video)
{
    const bool isCopied = video.userCodec() == u"passthru"_s;
    const qint64 told = isCopied ? rateOf(video) : encodedPictureRate(selection);
    if (told <= 0)
        return std::nullopt;
    return isCopied ? copiedPictureRate(selection, video) : told;
}

qint64 bytesOfSources(const KXSelection &selection)
{
    QSet<QString> paths{selection.videoTrackFileURL().toLocalFile()};
    for (const TrackPointer &track : selection.trackList()) {
        if (track->externalTrackFlag())
            paths.insert(track->trackFileURL().toLocalFile());
    }
    qint64 sum = 0;
    for (const QString &path : paths)
        sum += QFileInfo(path).size();
    return sum;
}

} // namespace

bool SizeEstimate::isLarger() const
{
    constexpr double certain = 1.05;
    return sourceBytes > 0 && static_cast<double>(bytes) > static_cast<double>(sourceBytes) * certain;
}

QString SizeEstimate::wordOfGrowth() const
{
    return isLarger()
               ? u"About %1, more than the %2 of the source."_s.arg(sizeText(bytes), sizeText(sourceBytes))
               : QString();
}

std::optional<SizeEstimate> estimateOf(const KXSelection &selection, std::optional<double> seconds)
{
    if (!seconds || *seconds <= 0)
        return std::nullopt;
    qint64 rate = 0;
    for (const TrackPointer &track : selection.trackList()) {
        if (isAudio(*track)) {
            rate += outputRate(*track);
        } else if (isVideo(*track)) {
            const auto picture = pictureRate(selection, *track);
            if (!picture)
                return std::nullopt;
            rate += *picture;
        }
    }
    const double bytes = static_cast<double>(rate) * bytesInKilobit * *seconds * container;
    return SizeEstimate{qRound64(bytes), bytesOfSources(selection)};
}

QString sizeText(qint64 bytes)
{
    constexpr double step = 1000;
    double value = static_cast<double>(bytes);
    QStringList units{u"bytes"_s, u"kB"_s, u"MB"_s, u"GB"_s, u"TB"_s};
    while (value >= step && units.size() > 1) {
        value /= step;
        units.removeFirst();
    }
    const int digits = value < 10 && units.size() < 5 ? 1 : 0;
    return QString::number(value, 'f', digits) + u' ' + units.constFirst();
}

} // namespace selection
