#include "support/presets/PresetFixture.h"

#include "support/Scratch.h"
#include "support/selection/ControllerFixture.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace support {

namespace {

const QStringList words{u"currentTrackChoice"_s, u"currentTrackNumber"_s, u"currentLanguage"_s,
                        u"currentCodec"_s, u"currentChannels"_s};

QString textOfFilter(const QVariantMap &filter)
{
    QStringList pieces;
    for (const QString &word : words)
        pieces.append(filter.contains(word) ? filter.value(word).toString() : u"-"_s);
    if (!filter.contains(words.constLast()))
        pieces.removeLast();
    for (const QString &word : filter.keys()) {
        if (!words.contains(word))
            pieces.append(u'+' + word);
    }
    return pieces.join(u'|');
}

} // namespace

const QString secondSound = u"Audio Track Number|2|Any Language|Any Codec|Any Type"_s;
const QString firstSubtitle = u"Subtitle Track Number|1|Any Language|Any Codec"_s;

PresetFixture::PresetFixture(const Scratch &scratch)
    : store(scratch.path(u"defaults.json"_s))
    , preferences(store, {scratch.path(u"Resources"_s), scratch.path()})
    , file(std::make_shared<KXVideoFile>(nullptr))
    , selection(std::make_shared<KXSelection>())
    , controller(center, file, selection)
    , presets(preferences, file, controller)
{
    preferences.initialize();
    selection->initialize();
    controller.initialize();
    controller.setPresetsController(&presets);
    controller.setCurrentTab(u"MKV"_s);
    presets.initialize();
}

void PresetFixture::open(const TrackList &tracks)
{
    fillFile(*file, u"/v/a.mkv"_s, tracks);
    controller.takeLoadedFile();
}

QVariantMap filterOf(const QString &text)
{
    QVariantMap filter;
    const QStringList pieces = text.split(u'|');
    for (qsizetype i = 0; i < pieces.size(); ++i)
        filter.insert(words.at(i), pieces.at(i));
    return filter;
}

QString textOf(const QVariantList &filters)
{
    QStringList texts;
    for (const QVariant &filter : filters)
        texts.append(textOfFilter(filter.toMap()));
    return texts.join(u"; "_s);
}

QString ticksOf(const TrackList &tracks)
{
    QStringList places;
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        if (tracks.at(i)->trackSelected())
            places.append(QString::number(i + 1));
    }
    return places.join(u' ');
}

TrackList probedFilm()
{
    return {probedVideo(), probedAudio(u"aac"_s, u"2"_s, u"English"_s),
            probedAudio(u"ac3"_s, u"6"_s, u"German"_s), probedSubtitle()};
}

TrackPointer probedSubtitleOf(const QString &codec, const QString &language)
{
    const TrackPointer track = probedSubtitle();
    track->setTrackCodec(codec);
    track->setTrackLanguage(language);
    return track;
}

QVariantMap selectionsRecord(const QString &name, const QString &audio, const QString &subtitle)
{
    return {{u"pName"_s, name},
            {u"pSelectedVideoTrack"_s, u"First Track"_s},
            {u"pSelectedAudioTrack"_s, u"First Track"_s},
            {u"pAudioIsByLanguage"_s, false},
            {u"pSelectedAudioLanguage"_s, u"English"_s},
            {u"pSelectedSubtitleTrack"_s, u"None"_s},
            {u"pSubtitleIsByLanguage"_s, false},
            {u"pSelectedSubtitleLanguage"_s, u"English"_s},
            {u"useFirstIfNoAudioLanguageMatch"_s, true},
            {u"useFirstIfNoSubtitleLanguageMatch"_s, true},
            {u"isEditable"_s, true},
            {u"pAudioFilterMode"_s, u"Apply All"_s},
            {u"pAudioFilterArray"_s, QVariantList{filterOf(audio)}},
            {u"pSubtitleFilterMode"_s, u"Apply All"_s},
            {u"pSubtitleFilterArray"_s, QVariantList{filterOf(subtitle)}}};
}

QVariantMap settingsRecord(const QString &name, const QString &device)
{
    return {{u"pName"_s, name},
            {u"pDevice"_s, device},
            {u"pVideoActionIndex"_s, 0},
            {u"pVideoBitRate"_s, u"1000"_s},
            {u"pVideoBitRateIndex"_s, 1},
            {u"pWidth"_s, u""_s},
            {u"pWidthIndex"_s, 0},
            {u"pFPS"_s, u""_s},
            {u"pFPSIndex"_s, 0},
            {u"pStereoActionIndex"_s, 0},
            {u"pStereoBitRate"_s, u"160"_s},
            {u"pSurroundActionIndex"_s, 0},
            {u"pSurroundBitRate"_s, u"448"_s},
            {u"pAudioAddStereo"_s, false},
            {u"pKeepStereoTrack"_s, false},
            {u"pKeepSurroundTrack"_s, false},
            {u"pSubAction"_s, u"Mux (soft)"_s},
            {u"isEditable"_s, true}};
}

void storePresets(const Scratch &scratch, const QVariantList &selections, const QVariantList &settings)
{
    const QVariantMap file{{u"presetSelectionsArray"_s, selections}, {u"presetSettingsArray"_s, settings}};
    scratch.write(u"defaults.json"_s, QJsonDocument::fromVariant(file).toJson());
}

void storeTwoOfEach(const Scratch &scratch)
{
    storePresets(scratch,
                 {selectionsRecord(u"Second"_s, secondSound, firstSubtitle), selectionsRecord(u"Own"_s)},
                 {settingsRecord(u"For PS3"_s), settingsRecord(u"For Xbox"_s, u"Xbox"_s)});
}

QString namesIn(const QVariant &records)
{
    QStringList names;
    for (const QVariant &record : records.toList())
        names.append(record.toMap().value(u"pName"_s).toString());
    return names.join(u", "_s);
}

QVariantMap storedSettings(const Scratch &scratch)
{
    return QJsonDocument::fromJson(scratch.read(u"defaults.json"_s)).toVariant().toMap();
}

} // namespace support
