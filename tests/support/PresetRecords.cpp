#include "support/PresetRecords.h"

#include <QJsonDocument>
#include <QMap>

using namespace Qt::StringLiterals;

namespace support {

namespace {

enum class Kind { Audio, Subtitle };

const QString prioritized = u"first of: "_s;

QString orAny(const QString &word, const QString &any)
{
    return word == u"*"_s ? any : word;
}

QString channelsOf(const QString &word)
{
    if (word == u"stereo"_s)
        return u"Stereo Only"_s;
    return word == u"surround"_s ? u"Surround Only"_s : orAny(word, u"Any Type"_s);
}

QString choiceOf(const QString &filter, Kind kind)
{
    if (filter.startsWith(u'#'))
        return kind == Kind::Audio ? u"Audio Track Number"_s : u"Subtitle Track Number"_s;
    if (filter.contains(u'/'))
        return u"Tracks w/ Properties ..."_s;
    return filter == u"all"_s ? u"All"_s : filter == u"none"_s ? u"None"_s : filter;
}

QJsonObject filterOf(const QString &filter, Kind kind)
{
    const QString properties = filter.contains(u'/') ? filter : u"*/*/*"_s;
    const QString language = properties.section(u'/', 0, 0);
    const QString codec = properties.section(u'/', 1, 1);
    QJsonObject record{{u"currentTrackChoice"_s, choiceOf(filter, kind)},
                       {u"currentTrackNumber"_s, filter.startsWith(u'#') ? filter.mid(1) : u"1"_s},
                       {u"currentLanguage"_s, orAny(language, u"Any Language"_s)},
                       {u"currentCodec"_s, orAny(codec, u"Any Codec"_s)}};
    if (kind == Kind::Audio)
        record.insert(u"currentChannels"_s, channelsOf(properties.section(u'/', 2, 2)));
    return record;
}

QString modeOf(const QString &filters)
{
    return filters.startsWith(prioritized) ? u"Prioritized"_s : u"Apply All"_s;
}

QJsonArray filtersOf(QString filters, Kind kind)
{
    if (filters.startsWith(prioritized))
        filters = filters.mid(prioritized.size());
    QJsonArray records;
    for (const QString &filter : filters.split(u"; "_s))
        records.append(filterOf(filter, kind));
    return records;
}

/// What a word stands for in a record, with the index that makes it count.
const QMap<QString, std::pair<QString, QString>> &texts()
{
    static const QMap<QString, std::pair<QString, QString>> words{
        {u"rate"_s, {u"pVideoBitRate"_s, u"pVideoBitRateIndex"_s}},
        {u"width"_s, {u"pWidth"_s, u"pWidthIndex"_s}},
        {u"fps"_s, {u"pFPS"_s, u"pFPSIndex"_s}},
        {u"stereoRate"_s, {u"pStereoBitRate"_s, {}}},
        {u"surroundRate"_s, {u"pSurroundBitRate"_s, {}}},
        {u"sub"_s, {u"pSubAction"_s, {}}},
    };
    return words;
}

const QMap<QString, QString> &numbers()
{
    static const QMap<QString, QString> words{{u"video"_s, u"pVideoActionIndex"_s},
                                              {u"stereo"_s, u"pStereoActionIndex"_s},
                                              {u"surround"_s, u"pSurroundActionIndex"_s}};
    return words;
}

const QMap<QString, QString> &flags()
{
    static const QMap<QString, QString> words{{u"addStereo"_s, u"pAudioAddStereo"_s},
                                              {u"keepStereo"_s, u"pKeepStereoTrack"_s},
                                              {u"keepSurround"_s, u"pKeepSurroundTrack"_s}};
    return words;
}

void apply(const QString &word, QJsonObject &record)
{
    const QString name = word.section(u'=', 0, 0);
    const QString value = word.section(u'=', 1);
    if (word == u"burn"_s) {
        record.insert(u"pSubAction"_s, u"Burn (hard)"_s);
    } else if (flags().contains(word)) {
        record.insert(flags().value(word), true);
    } else if (numbers().contains(name)) {
        record.insert(numbers().value(name), value.toInt());
    } else if (texts().contains(name)) {
        record.insert(texts().value(name).first, value);
        if (!texts().value(name).second.isEmpty())
            record.insert(texts().value(name).second, 1);
    } else {
        qFatal("no word of a settings preset: %s", qPrintable(word));
    }
}

} // namespace

QJsonObject trackPreset(const QString &name, const QString &audio, const QString &subtitles)
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
            {u"pAudioFilterMode"_s, modeOf(audio)},
            {u"pAudioFilterArray"_s, filtersOf(audio, Kind::Audio)},
            {u"pSubtitleFilterMode"_s, modeOf(subtitles)},
            {u"pSubtitleFilterArray"_s, filtersOf(subtitles, Kind::Subtitle)}};
}

QJsonObject settingsPreset(const QString &name, const QString &device, const QString &words)
{
    QJsonObject record{{u"pName"_s, name},
                       {u"pDevice"_s, device},
                       {u"pVideoActionIndex"_s, 0},
                       {u"pVideoBitRate"_s, u"1000"_s},
                       {u"pVideoBitRateIndex"_s, 0},
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
    for (const QString &word : words.split(u' ', Qt::SkipEmptyParts))
        apply(word, record);
    return record;
}

QByteArray storedPresets(const QJsonArray &selections, const QJsonArray &settings)
{
    return QJsonDocument(
               QJsonObject{{u"presetSelectionsArray"_s, selections}, {u"presetSettingsArray"_s, settings}})
        .toJson();
}

QByteArray presetFile(const QJsonArray &selections, const QJsonArray &settings)
{
    return QJsonDocument(QJsonObject{{u"version"_s, 1},
                                     {u"presetSelectionsArray"_s, selections},
                                     {u"presetSettingsArray"_s, settings}})
        .toJson();
}

QJsonObject objectIn(const QByteArray &text)
{
    return QJsonDocument::fromJson(text).object();
}

} // namespace support
