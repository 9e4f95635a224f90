#include "presets/PresetSentence.h"

#include "presets/KXPresetSelections.h"
#include "presets/KXPresetSettings.h"
#include "presets/TrackFilters.h"
#include "selection/Targets.h"

using namespace Qt::StringLiterals;

namespace presets {

namespace {

constexpr int customValue = 1;

const QString allTracks = u"all tracks"_s;

/// "English ac3 surround tracks"; what is any is not named.
QString propertiesOf(FilterKind kind, const QVariantMap &filter)
{
    QStringList words;
    const auto add = [&](const QString &word, const QString &any) {
        const QString value = filter.value(word).toString();
        if (value != any && !value.isEmpty())
            words.append(value);
    };
    add(u"currentLanguage"_s, u"Any Language"_s);
    add(u"currentCodec"_s, u"Any Codec"_s);
    if (kind == FilterKind::Audio && filter.value(u"currentChannels"_s) == u"Stereo Only"_s)
        words.append(u"stereo"_s);
    if (kind == FilterKind::Audio && filter.value(u"currentChannels"_s) == u"Surround Only"_s)
        words.append(u"surround"_s);
    return words.isEmpty() ? allTracks : words.join(u' ') + u" tracks"_s;
}

/// A null text for a filter that takes nothing.
QString filterText(FilterKind kind, const QVariantMap &filter)
{
    const QString choice = filter.value(u"currentTrackChoice"_s).toString();
    if (choice == u"All"_s)
        return allTracks;
    if (choice == numberedChoice(kind))
        return u"track "_s + filter.value(u"currentTrackNumber"_s).toString();
    return choice == u"Tracks w/ Properties ..."_s ? propertiesOf(kind, filter) : QString();
}

/// What takes every track never ends a list.
QString prioritizedText(const QStringList &texts)
{
    const QString start = texts.contains(allTracks)
                              ? u"these in turn, up to the first that the film has by number or properties"_s
                              : u"the first of these that the film has"_s;
    return u"%1: %2"_s.arg(start, texts.join(u"; "_s));
}

QString filtersText(FilterKind kind, const QVariantList &filters, const QString &mode)
{
    QStringList texts;
    for (const QVariant &filter : filters) {
        const QString text = filterText(kind, filter.toMap());
        if (!text.isNull())
            texts.append(text);
    }
    if (texts.isEmpty())
        return u"none"_s;
    return mode == u"Prioritized"_s && texts.size() > 1 ? prioritizedText(texts) : texts.join(u" and "_s);
}

QString rateText(const KXPresetSettings &preset)
{
    if (preset.pVideoBitRateIndex() != customValue)
        return u"the original's bit rate"_s;
    return preset.pVideoBitRate().isEmpty() ? u"a bit rate that is not given"_s
                                            : preset.pVideoBitRate() + u" kb/s"_s;
}

QString videoText(const KXPresetSettings &preset)
{
    switch (preset.pVideoActionIndex()) {
    case 0:
        return u"The video is copied."_s;
    case 3:
        return u"What becomes of the video is guessed for quality."_s;
    case 4:
        return u"What becomes of the video is guessed for speed."_s;
    default:
        break;
    }
    QString text = u"The video becomes H.264 in %1 at %2"_s.arg(
        preset.pVideoActionIndex() == 1 ? u"one pass"_s : u"two passes"_s, rateText(preset));
    if (preset.pWidthIndex() == customValue)
        text += u", at most %1 pixels wide"_s.arg(preset.pWidth());
    if (preset.pFPSIndex() == customValue)
        text += u", at %1 frames a second"_s.arg(preset.pFPS());
    return text + u'.';
}

QString stereoRate(const KXPresetSettings &preset)
{
    return preset.pStereoBitRate() == u"Original"_s ? u"160"_s : preset.pStereoBitRate();
}

QString aacStereoText(const KXPresetSettings &preset)
{
    return u"AAC stereo at %1 kb/s"_s.arg(stereoRate(preset));
}

bool keepsSound(const KXPresetSettings &preset)
{
    return preset.pKeepStereoTrack() || preset.pKeepSurroundTrack();
}

QString stereoText(const KXPresetSettings &preset)
{
    if (preset.pStereoActionIndex() == 0)
        return u"Stereo sound is copied."_s;
    const QString original = keepsSound(preset) ? u", and is copied beside it"_s : QString();
    return u"Stereo sound becomes %1%2."_s.arg(aacStereoText(preset), original);
}

QString surroundText(const KXPresetSettings &preset)
{
    const int action = preset.pSurroundActionIndex();
    const QString rate = preset.pSurroundBitRate() == u"Original"_s ? u"the original's bit rate"_s
                                                                    : preset.pSurroundBitRate() + u" kb/s"_s;
    QString text = u"Surround sound is copied"_s;
    if (action == 1)
        text = u"Surround sound becomes %1"_s.arg(aacStereoText(preset));
    else if (action == 2 || action == 3)
        text = u"Surround sound becomes %1 (5.1) at %2"_s.arg(action == 2 ? u"AAC"_s : u"AC3"_s, rate);
    if (preset.pAudioAddStereo() && action != 1)
        text += u", with a version in %1"_s.arg(aacStereoText(preset));
    if (keepsSound(preset) && action != 0)
        text += u", and is copied beside it"_s;
    return text + u'.';
}

QString targetText(const KXPresetSettings &preset)
{
    if (selection::targetNamed(preset.pDevice()) != nullptr)
        return u"For %1."_s.arg(preset.pDevice());
    return u"For \"%1\", which is no target: films become MP4 as for General."_s.arg(preset.pDevice());
}

} // namespace

QString sentenceFor(const KXPresetSelections &preset)
{
    if (preset.pName() == u"Manual"_s)
        return u"Tracks are ticked by hand."_s;
    const QString video = preset.pSelectedVideoTrack() == u"First Track"_s
                              ? u"The first track is taken if it is video."_s
                              : u"No video track is taken."_s;
    return u"%1 Audio: %2. Subtitles: %3."_s.arg(
        video, filtersText(FilterKind::Audio, preset.pAudioFilterArray(), preset.pAudioFilterMode()),
        filtersText(FilterKind::Subtitle, preset.pSubtitleFilterArray(), preset.pSubtitleFilterMode()));
}

QString sentenceFor(const KXPresetSettings &preset)
{
    if (preset.pName() == u"Manual"_s)
        return u"Settings are chosen by hand."_s;
    if (preset.pName() == u"Extract Tracks"_s)
        return u"Each chosen track is written to a file of its own."_s;
    if (preset.pName() == u"Remove Tracks"_s)
        return u"A new MKV file is written without the chosen tracks."_s;
    const QString subtitles = preset.pSubAction() == u"Burn (hard)"_s
                                  ? u"A subtitle is drawn into the picture."_s
                                  : u"Subtitles stay tracks."_s;
    return QStringList{targetText(preset), videoText(preset), stereoText(preset), surroundText(preset),
                       subtitles}
        .join(u' ');
}

} // namespace presets
