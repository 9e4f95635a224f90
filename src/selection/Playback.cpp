#include "selection/Playback.h"

#include "media/KXVideoTrack.h"
#include "selection/Targets.h"
#include "tools/Numbers.h"

#include <QHash>

using namespace Qt::StringLiterals;
using tools::leadingInteger;

namespace selection {

namespace {

const QStringList &baseline()
{
    static const QStringList profiles{u"Baseline"_s, u"Constrained Baseline"_s};
    return profiles;
}

const QStringList &mainProfiles()
{
    static const QStringList profiles = baseline() + QStringList{u"Main"_s};
    return profiles;
}

const QStringList &highProfiles()
{
    static const QStringList profiles = mainProfiles() + QStringList{u"High"_s};
    return profiles;
}

constexpr int picturesASecond = 30;
constexpr int stereo = 2;
constexpr int surround = 6;
constexpr int mostOfStereo = 160; // kb/s

/// Makers' published limits; where they say less, what the rules of the targets fix.
const QHash<QString, Playback> &playbacks()
{
    const PlayedPicture small{baseline(), 30, 720, 480, picturesASecond, 1500};
    const PlayedPicture hd{mainProfiles(), 31, 1280, 720, picturesASecond, 0};
    const PlayedPicture fullHd{highProfiles(), 41, 1920, 1080, picturesASecond, 20000};
    const PlayedPicture console{highProfiles(), 41, 1920, 1080, picturesASecond, 15000};
    const PlayedPicture tv{highProfiles(), 40, 1920, 1080, picturesASecond, 20000};
    const PlayedSound stereoOnly{stereo, mostOfStereo};
    const PlayedSound aac{surround};
    static const QHash<QString, Playback> table{
        {u"iPod (All non-Touch)"_s, {small, stereoOnly}},
        {u"iPhone (3 and Earlier)"_s, {small, stereoOnly}},
        {u"iPod Touch (3 and Earlier)"_s, {small, stereoOnly}},
        {u"iPad (2 and Earlier)"_s, {hd, stereoOnly}},
        {u"Apple TV 2"_s, {hd, {stereo, mostOfStereo, 48000, true}}},
        {u"iPhone 4"_s, {hd, stereoOnly}},
        {u"iPod Touch (4 and Later)"_s, {hd, stereoOnly}},
        {u"Apple TV (3 and Later)"_s, {tv, {surround, 0, 48000, true}}},
        {u"iPad (3 and Later)"_s, {fullHd, aac}},
        {u"iPad Mini (All)"_s, {fullHd, aac}},
        {u"iPhone (4S and Later)"_s, {fullHd, aac}},
        {u"PS3"_s, {console, {surround, 0, 48000, true}}},
        {u"Xbox"_s, {console, {stereo}}},
    };
    return table;
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

const Playback *playbackOf(const QString &targetName)
{
    const auto found = playbacks().constFind(targetName);
    return found == playbacks().constEnd() ? nullptr : &*found;
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
