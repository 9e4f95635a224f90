#include "selection/Playback.h"

#include "media/KXVideoTrack.h"
#include "selection/Targets.h"
#include "tools/Numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using tools::leadingInteger;

namespace selection {

namespace {

/// The profiles of H.264 as a probe names them, those that ask least of a device in front.
const QStringList &allProfiles()
{
    static const QStringList profiles{u"Constrained Baseline"_s, u"Baseline"_s, u"Main"_s, u"High"_s};
    return profiles;
}

/// Those that a device plays, by the one that an encoder is told for it.
QStringList profilesUpTo(const QString &highest)
{
    const QStringList all = allProfiles();
    const auto last = std::find_if(all.begin(), all.end(), [&](const QString &name) {
        return name.compare(highest, Qt::CaseInsensitive) == 0;
    });
    return all.first(std::min<qsizetype>(std::distance(all.begin(), last) + 1, all.size()));
}

bool isAbove(qint64 value, qint64 limit)
{
    return limit > 0 && value > limit;
}

/// "3.1" for 31.
QString levelText(int level)
{
    return u"%1.%2"_s.arg(level / 10).arg(level % 10);
}

QString whyUnplayedForm(const PlayedPicture &played, const media::StreamForm &form)
{
    static const QStringList pixelFormats{u"yuv420p"_s, u"yuvj420p"_s};
    const bool isKnown = !form.pixelFormat.isEmpty();
    if (isKnown && !pixelFormats.contains(form.pixelFormat))
        return u"plays 8 bits and 4:2:0, not %1"_s.arg(form.pixelFormat);
    if (!played.profiles.contains(form.profile))
        return u"plays H.264 up to the profile %1, not %2"_s.arg(
            played.profiles.constLast(), form.profile.isEmpty() ? u"one that is not told"_s : form.profile);
    if (isAbove(form.level, played.level))
        return u"plays H.264 up to level %1, not %2"_s.arg(levelText(played.level), levelText(form.level));
    if (form.isInterlaced())
        return u"plays progressive pictures, not interlaced ones"_s;
    return form.isHighRange() ? u"shows no high range of brightness"_s : QString();
}

QString whyUnplayedSize(const PlayedPicture &played, const media::StreamForm &form)
{
    constexpr double tolerance = 0.1; // an average is measured
    if (isAbove(form.width, played.width) || isAbove(form.height, played.height))
        return u"shows at most %1x%2, not %3x%4"_s.arg(played.width)
            .arg(played.height)
            .arg(form.width)
            .arg(form.height);
    if (played.frameRate > 0 && form.frameRate > played.frameRate + tolerance)
        return u"shows at most %1 pictures a second, not %2"_s.arg(played.frameRate).arg(form.frameRate);
    return {};
}

} // namespace

std::optional<Playback> playbackOf(const QString &targetName)
{
    const Target *target = targetNamed(targetName);
    if (target == nullptr || !target->plays.promises())
        return std::nullopt;
    const Plays &plays = target->plays;
    Playback device;
    device.picture = {profilesUpTo(plays.profile), plays.level, plays.width, plays.height, plays.frameRate,
                      target->bitRateCap};
    device.sound.aacBitRate = plays.soundBitRate;
    device.sound.takesAc3 = plays.sounds.contains(u"ac3"_s);
    return device;
}

QString whyUnplayedPicture(const Playback &device, const KXVideoTrack &track)
{
    if (track.probedCodecName() != u"h264"_s)
        return u"plays H.264, not %1"_s.arg(track.probedCodecName().toUpper());
    if (const QString why = whyUnplayedForm(device.picture, track.form()); !why.isNull())
        return why;
    if (const QString why = whyUnplayedSize(device.picture, track.form()); !why.isNull())
        return why;
    const qint64 rate = leadingInteger(track.trackBitRate());
    if (isAbove(rate, device.picture.bitRate))
        return u"plays at most %1 kb/s, not %2"_s.arg(device.picture.bitRate).arg(rate);
    return {};
}

QString whyUnplayedSound(const Playback &device, const KXVideoTrack &track)
{
    const PlayedSound &played = device.sound;
    const QString codec = track.probedCodecName();
    const media::StreamForm form = track.form();
    if (isAbove(form.sampleRate, played.sampleRate))
        return u"plays at most %1 Hz, not %2"_s.arg(played.sampleRate).arg(form.sampleRate);
    if (codec == u"ac3"_s && played.takesAc3)
        return {};
    if (codec != u"aac"_s)
        return u"plays %1, not %2"_s.arg(played.takesAc3 ? u"AAC and AC3"_s : u"AAC"_s, codec.toUpper());
    if (!form.profile.isEmpty() && form.profile != u"LC"_s)
        return u"plays AAC-LC, not %1"_s.arg(form.profile);
    const qint64 channels = leadingInteger(track.trackNumberOfChannels());
    if (isAbove(channels, played.aacChannels))
        return u"plays AAC of at most %1 channels, not %2"_s.arg(played.aacChannels).arg(channels);
    const qint64 rate = leadingInteger(track.trackBitRate());
    return isAbove(rate, played.aacBitRate)
               ? u"plays AAC of at most %1 kb/s, not %2"_s.arg(played.aacBitRate).arg(rate)
               : QString();
}

} // namespace selection
