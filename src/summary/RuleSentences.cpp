#include "summary/RuleSentences.h"

#include "presets/ChoiceLists.h"
#include "presets/KXPresetSettings.h"
#include "selection/ConversionSettings.h"
#include "selection/Targets.h"
#include "summary/TrackLook.h"

using namespace Qt::StringLiterals;
using presets::FilterKind;

namespace summary {

namespace {

constexpr int customNumber = 1;

QString tracksWord(FilterKind kind)
{
    return kind == FilterKind::Audio ? u"audio tracks"_s : u"subtitle tracks"_s;
}

/// "language is German", or "any language".
Sentence condition(const QString &value, const QString &any, const QString &word, const QString &verb,
                   const QString &shown)
{
    if (value.isEmpty() || value == any)
        return {{u"any "_s + shown, false}};
    return {{word + verb, false}, {value, true}};
}

void append(Sentence &sentence, const QString &between, const Sentence &more)
{
    if (!between.isEmpty())
        sentence.append({between, false});
    sentence += more;
}

Sentence byProperties(FilterKind kind, const QVariantMap &filter)
{
    Sentence sentence{{u"Take "_s + tracksWord(kind) + u" where "_s, false}};
    append(sentence, {},
           condition(filter.value(u"currentLanguage"_s).toString(), u"Any Language"_s, u"language"_s,
                     u" is "_s, u"language"_s));
    append(sentence, kind == FilterKind::Audio ? u", "_s : u" and "_s,
           condition(filter.value(u"currentCodec"_s).toString(), u"Any Codec"_s, u"codec"_s, u" is "_s,
                     u"codec"_s));
    if (kind == FilterKind::Audio)
        append(sentence, u" and "_s,
               condition(filter.value(u"currentChannels"_s).toString(), u"Any Type"_s, u"channels"_s,
                         u" are "_s, u"channels"_s));
    sentence.append({u"."_s, false});
    return sentence;
}

QString indexed(const QStringList &list, int index)
{
    return index >= 0 && index < list.size() ? list.at(index) : u"Best Guess"_s;
}

QString pictureOf(const KXPresetSettings &preset)
{
    static const QStringList texts{u"picture copied"_s, u"H.264 in 1 pass"_s, u"H.264 in 2 passes"_s};
    const int index = preset.property("pVideoActionIndex").toInt();
    QString text = index >= 0 && index < texts.size() ? texts.at(index) : u"best guess of the picture"_s;
    if (index == 0)
        return text;
    if (preset.pVideoBitRateIndex() == customNumber)
        text += u" at %1 kb/s"_s.arg(preset.pVideoBitRate());
    if (preset.pWidthIndex() == customNumber)
        text += u", %1 wide"_s.arg(preset.pWidth());
    return text;
}

QString soundOf(const QString &word, const QString &action, const QString &rate, const QStringList &extras)
{
    QString text =
        action == u"Pass Thru"_s ? word + u" copied"_s : u"%1 as %2 %3 kb/s"_s.arg(word, action, rate);
    for (const QString &extra : extras)
        text += u", "_s + extra;
    return text;
}

} // namespace

QString plainText(const Sentence &sentence)
{
    QString text;
    for (const SentencePart &part : sentence)
        text += part.text;
    return text;
}

Sentence filterSentence(FilterKind kind, const QVariantMap &filter)
{
    const QString choice = filter.value(u"currentTrackChoice"_s).toString();
    if (choice == u"All"_s)
        return {{u"Take "_s, false}, {u"all"_s, true}, {u' ' + tracksWord(kind) + u'.', false}};
    if (choice == presets::numberedChoice(kind))
        return {{kind == FilterKind::Audio ? u"Take audio track "_s : u"Take subtitle track "_s, false},
                {filter.value(u"currentTrackNumber"_s).toString(), true},
                {u"."_s, false}};
    if (choice == u"Tracks w/ Properties ..."_s)
        return byProperties(kind, filter);
    return {{u"Take "_s, false}, {u"no"_s, true}, {u' ' + tracksWord(kind) + u'.', false}};
}

QString modeText(const QString &mode)
{
    return mode == u"Prioritized"_s ? u"The first filter that finds a track wins."_s
                                    : u"Every filter adds its tracks."_s;
}

QString targetText(const QString &target)
{
    const selection::Target *known = selection::targetNamed(target);
    if (known == nullptr || target == u"General"_s)
        return u"M4V"_s;
    const QString kind = known->extension.toUpper();
    return kind == target ? kind : u"%1 for %2"_s.arg(kind, target);
}

QString settingsSentence(const KXPresetSettings &preset)
{
    QStringList stereo;
    if (preset.pKeepStereoTrack())
        stereo.append(u"the original kept"_s);
    QStringList surround;
    if (preset.pAudioAddStereo())
        surround.append(u"plus a stereo version"_s);
    if (preset.pKeepSurroundTrack())
        surround.append(u"the original kept"_s);
    const QString stereoAction = indexed(presets::pStereoActionList(), preset.pStereoActionIndex());
    const QString surroundAction = indexed(presets::pSurroundActionList(), preset.pSurroundActionIndex());
    const QString subtitles =
        preset.pSubAction().startsWith(u"Burn"_s) ? u"subtitle burned in"_s : u"subtitles as tracks"_s;
    return QStringList{targetText(preset.pDevice()) + u": "_s + pictureOf(preset),
                       soundOf(u"stereo"_s, stereoAction, preset.pStereoBitRate(), stereo),
                       soundOf(u"surround"_s, surroundAction, preset.pSurroundBitRate(), surround),
                       subtitles + u'.'}
        .join(u"; "_s);
}

QString ticksText(const TrackList &tracks)
{
    int videos = 0;
    QStringList sounds;
    QStringList subtitles;
    for (const TrackPointer &track : tracks) {
        if (!track->trackSelected())
            continue;
        const QString words = QStringList{track->trackLanguage(), codecText(*track)}.join(u' ');
        if (selection::isVideo(*track))
            ++videos;
        else if (selection::isAudio(*track))
            sounds.append(words + u' ' + channelsText(track->trackNumberOfChannels()));
        else
            subtitles.append(words);
    }
    const auto counted = [](const QString &word, const QString &none, const QStringList &all) {
        return all.isEmpty() ? none : u"%1 %2 (%3)"_s.arg(word).arg(all.size()).arg(all.join(u", "_s));
    };
    return QStringList{videos == 0 ? u"no video"_s : u"Video %1"_s.arg(videos),
                       counted(u"Audio"_s, u"no sound"_s, sounds),
                       counted(u"Subtitles"_s, u"no subtitle"_s, subtitles)}
        .join(u" · "_s);
}

} // namespace summary
