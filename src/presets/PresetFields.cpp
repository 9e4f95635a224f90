#include "presets/PresetFields.h"

#include "presets/ChoiceLists.h"
#include "presets/FilterRows.h"
#include "presets/KXPresetSelections.h"
#include "presets/KXPresetSettings.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace presets {

namespace {

constexpr qsizetype videoActions = 5; // the last two guess: presets hold them, the sheet offers them not
constexpr int customChoice = 1;
const QString choiceWord = u"currentTrackChoice"_s;
const QString originalRate = u"Original"_s;
const QString unpickedDevice = u"Apple TV"_s; // of a preset that was just added in the sheet

QHash<QString, ValueRule> makeSettingsRules()
{
    const ValueRule keepOrCustom = ValueRule::indexIn(pVideoGenericList());
    return {
        {u"pName"_s, ValueRule::anyText()},
        {u"pDevice"_s, ValueRule::oneOf(deviceListWith({})).alsoStored({unpickedDevice})},
        {u"pVideoActionIndex"_s, ValueRule::indexIn(pVideoActionList(), videoActions)},
        {u"pVideoBitRate"_s, ValueRule::wholeNumber()},
        {u"pVideoBitRateIndex"_s, keepOrCustom},
        {u"pWidth"_s, ValueRule::wholeNumber()},
        {u"pWidthIndex"_s, keepOrCustom},
        {u"pFPS"_s, ValueRule::decimal()},
        {u"pFPSIndex"_s, keepOrCustom},
        {u"pStereoActionIndex"_s, ValueRule::indexIn(pStereoActionList())},
        {u"pStereoBitRate"_s, ValueRule::oneOf(pStereoBitRateList() + QStringList{originalRate})},
        {u"pSurroundActionIndex"_s, ValueRule::indexIn(pSurroundActionList())},
        {u"pSurroundBitRate"_s, ValueRule::oneOf(pSurroundBitRateList() + QStringList{originalRate})},
        {u"pAudioAddStereo"_s, ValueRule::flag()},
        {u"pKeepStereoTrack"_s, ValueRule::flag()},
        {u"pKeepSurroundTrack"_s, ValueRule::flag()},
        {u"pSubAction"_s, ValueRule::oneOf(pSubActionList())},
        {u"isEditable"_s, ValueRule::flag()},
    };
}

QHash<QString, ValueRule> makeTracksRules()
{
    const ValueRule olderChoice = ValueRule::anyText();
    const ValueRule mode = ValueRule::oneOf({u"Apply All"_s, u"Prioritized"_s});
    return {
        {u"pName"_s, ValueRule::anyText()},
        {u"pSelectedVideoTrack"_s,
         ValueRule::oneOf({u"First track, if it is video"_s, u"None"_s}, {u"First Track"_s, u"0"_s})
             .alsoStored({u""_s})},
        {u"pSelectedAudioTrack"_s, olderChoice},
        {u"pAudioIsByLanguage"_s, ValueRule::flag()},
        {u"pSelectedAudioLanguage"_s, olderChoice},
        {u"pSelectedSubtitleTrack"_s, olderChoice},
        {u"pSubtitleIsByLanguage"_s, ValueRule::flag()},
        {u"pSelectedSubtitleLanguage"_s, olderChoice},
        {u"useFirstIfNoAudioLanguageMatch"_s, ValueRule::flag()},
        {u"useFirstIfNoSubtitleLanguageMatch"_s, ValueRule::flag()},
        {u"isEditable"_s, ValueRule::flag()},
        {u"pAudioFilterMode"_s, mode},
        {u"pSubtitleFilterMode"_s, mode},
    };
}

/// As the command line calls the words of a filter: "choice" for "currentTrackChoice".
const QStringList &shortFilterWords()
{
    static const QStringList words{u"choice"_s, u"number"_s, u"language"_s, u"codec"_s, u"channels"_s};
    return words;
}

/// A word such as "audio2.codec", in its parts.
struct FilterWord
{
    FilterKind kind = FilterKind::Audio;
    int position = 0; ///< from 1; 0 when the word names no filter
    QString word;     ///< of the filter; empty for the filter as a whole
};

FilterWord filterWordOf(const QString &field)
{
    for (const FilterKind kind : {FilterKind::Audio, FilterKind::Subtitle}) {
        const QString start = kind == FilterKind::Audio ? u"audio"_s : u"subtitle"_s;
        for (int position = 1; position <= FilterRows::mostFilters; ++position) {
            const QString whole = start + QString::number(position);
            if (field == whole)
                return {kind, position, {}};
            for (qsizetype i = 0; i < filterWords(kind).size(); ++i) {
                if (field == whole + u'.' + shortFilterWords().at(i))
                    return {kind, position, filterWords(kind).at(i)};
            }
        }
    }
    return {};
}

QString wordOf(FilterKind kind, int position, qsizetype word)
{
    const QString start = kind == FilterKind::Audio ? u"audio"_s : u"subtitle"_s;
    return start + QString::number(position) + u'.' + shortFilterWords().at(word);
}

/// The record's word of a field that the command line calls otherwise.
QString recordWordOf(const QString &field)
{
    if (field == u"audio.mode"_s)
        return u"pAudioFilterMode"_s;
    return field == u"subtitle.mode"_s ? u"pSubtitleFilterMode"_s : field;
}

QString unknownField(const QString &word, const QList<FieldWord> &fields)
{
    QStringList words;
    for (const FieldWord &field : fields)
        words.append(field.word);
    return u"There is no field \"%1\". There are: %2."_s.arg(word, words.join(u", "_s));
}

QString wrongValue(const QString &word, const QString &value, const ValueRule &rule)
{
    return u"%1 can't be \"%2\". Right is %3."_s.arg(word, value, rule.rightValues());
}

bool isAmong(const QList<FieldWord> &fields, const QString &word)
{
    return std::any_of(fields.begin(), fields.end(),
                       [&](const FieldWord &field) { return field.word == word; });
}

QVariantList filtersOf(const KXPresetSelections &preset, FilterKind kind)
{
    return kind == FilterKind::Audio ? preset.pAudioFilterArray() : preset.pSubtitleFilterArray();
}

void setFilters(KXPresetSelections &preset, FilterKind kind, const QVariantList &filters)
{
    if (kind == FilterKind::Audio)
        preset.setPAudioFilterArray(filters);
    else
        preset.setPSubtitleFilterArray(filters);
}

/// A number or a property counts in one choice only.
QString choiceThatReads(const FilterWord &place)
{
    return place.word == u"currentTrackNumber"_s ? numberedChoice(place.kind) : u"Tracks w/ Properties ..."_s;
}

QString removeFilter(KXPresetSelections &preset, const FilterWord &place, const QString &value)
{
    QVariantList filters = filtersOf(preset, place.kind);
    if (!value.isEmpty())
        return u"A filter as a whole takes no value; with none it is taken away."_s;
    if (place.position > filters.size())
        return u"There is no such filter to take away."_s;
    if (filters.size() == 1)
        return u"The last filter can't be taken away. Its choice may be \"None\"."_s;
    filters.removeAt(place.position - 1);
    setFilters(preset, place.kind, filters);
    return {};
}

QString changeFilter(KXPresetSelections &preset, const FilterWord &place, const QString &field,
                     const QString &value)
{
    const ValueRule rule = filterRule(place.kind, place.word);
    const QVariant read = rule.read(value);
    if (!read.isValid())
        return wrongValue(field, value, rule);
    QVariantList filters = filtersOf(preset, place.kind);
    if (place.position > filters.size() + 1)
        return u"%1: there are %2 filters so far, so the next one is number %3."_s.arg(
            field, QString::number(filters.size()), QString::number(filters.size() + 1));
    if (place.position > filters.size())
        filters.append(defaultFilter(place.kind));
    QVariantMap filter = filters.at(place.position - 1).toMap();
    filter.insert(place.word, read);
    if (place.word != choiceWord)
        filter.insert(choiceWord, choiceThatReads(place));
    filters.replace(place.position - 1, filter);
    setFilters(preset, place.kind, filters);
    return {};
}

} // namespace

ValueRule settingsRule(const QString &word)
{
    static const QHash<QString, ValueRule> rules = makeSettingsRules();
    return rules.value(word, ValueRule::anyText());
}

ValueRule tracksRule(const QString &word)
{
    static const QHash<QString, ValueRule> rules = makeTracksRules();
    return rules.value(word, ValueRule::anyText());
}

ValueRule filterRule(FilterKind kind, const QString &word)
{
    const bool isAudio = kind == FilterKind::Audio;
    if (word == choiceWord)
        return ValueRule::oneOf(isAudio ? afTrackChoiceList() : sfTrackChoiceList());
    if (word == u"currentTrackNumber"_s)
        return ValueRule::oneOf(trackNumberList());
    if (word == u"currentLanguage"_s)
        return ValueRule::oneOf(languageList());
    if (word == u"currentCodec"_s)
        return ValueRule::anyWordLike(isAudio ? afCodecList() : sfCodecList());
    return ValueRule::oneOf(afChannelsList());
}

QList<FieldWord> settingsFields()
{
    QList<FieldWord> fields;
    for (const QString &word : KXPresetSettings::recordWords()) {
        if (word != u"pName"_s && word != u"isEditable"_s)
            fields.append({word, settingsRule(word)});
    }
    return fields;
}

QList<FieldWord> tracksFields()
{
    QList<FieldWord> fields{{u"pSelectedVideoTrack"_s, tracksRule(u"pSelectedVideoTrack"_s)}};
    for (const FilterKind kind : {FilterKind::Audio, FilterKind::Subtitle}) {
        const QString mode = kind == FilterKind::Audio ? u"audio.mode"_s : u"subtitle.mode"_s;
        fields.append({mode, tracksRule(recordWordOf(mode))});
        for (int position = 1; position <= FilterRows::mostFilters; ++position) {
            for (qsizetype i = 0; i < filterWords(kind).size(); ++i)
                fields.append({wordOf(kind, position, i), filterRule(kind, filterWords(kind).at(i))});
        }
    }
    return fields;
}

QString setField(KXPresetSettings &preset, const QString &word, const QString &value)
{
    if (!isAmong(settingsFields(), word))
        return unknownField(word, settingsFields());
    const ValueRule rule = settingsRule(word);
    const QVariant read = rule.read(value);
    if (!read.isValid())
        return wrongValue(word, value, rule);
    preset.setProperty(word.toLatin1().constData(), read);
    const bool isNumber = word == u"pVideoBitRate"_s || word == u"pWidth"_s || word == u"pFPS"_s;
    if (isNumber && !value.isEmpty())
        preset.setProperty((word + u"Index"_s).toLatin1().constData(), customChoice);
    return {};
}

QString setField(KXPresetSelections &preset, const QString &word, const QString &value)
{
    const FilterWord place = filterWordOf(word);
    if (place.position > 0)
        return place.word.isEmpty() ? removeFilter(preset, place, value)
                                    : changeFilter(preset, place, word, value);
    const QString stored = recordWordOf(word);
    const bool isMode = stored == u"pAudioFilterMode"_s || stored == u"pSubtitleFilterMode"_s;
    if (!isMode && stored != u"pSelectedVideoTrack"_s)
        return unknownField(word, tracksFields());
    const QVariant read = tracksRule(stored).read(value);
    if (!read.isValid())
        return wrongValue(word, value, tracksRule(stored));
    preset.setProperty(stored.toLatin1().constData(), read);
    return {};
}

} // namespace presets
