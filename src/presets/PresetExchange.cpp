#include "presets/PresetExchange.h"

#include "presets/KXPresetsController.h"
#include "presets/PresetFields.h"
#include "presets/PresetRecord.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace presets {

namespace {

constexpr int version = 1;
constexpr qsizetype mostFilters = 1000; // far more than a user makes
constexpr qsizetype longestNamed = 100; // of a text that a sentence names
const QString selectionsKey = u"presetSelectionsArray"_s;
const QString settingsKey = u"presetSettingsArray"_s;

/// A sentence stays one that can be read.
QString named(const QString &text)
{
    return text.size() <= longestNamed ? text : text.left(longestNamed) + u'…';
}

/// A value as a sentence names it.
QString told(const QJsonValue &value)
{
    if (value.isObject() || value.isArray())
        return value.isObject() ? u"an object"_s : u"a list"_s;
    if (value.isString())
        return u'"' + named(value.toString()) + u'"';
    if (value.isBool())
        return value.toBool() ? u"true"_s : u"false"_s;
    return value.isDouble() ? QString::number(value.toDouble(), 'g', 12) : u"nothing"_s;
}

/// The value as a preset would store it, which counts in whole numbers.
QVariant storedForm(const QJsonValue &value)
{
    const bool isWhole = value.isDouble() && std::trunc(value.toDouble()) == value.toDouble() &&
                         std::abs(value.toDouble()) < 1e6;
    return isWhole ? QVariant(static_cast<int>(value.toDouble())) : value.toVariant();
}

/// A null text, or what is wrong with the value of that word.
QString problemOfValue(const QString &word, const QJsonValue &value, const ValueRule &rule)
{
    if (rule.holds(storedForm(value)))
        return {};
    return u"its \"%1\" is %2, and right is %3"_s.arg(word, told(value), rule.storedValues());
}

QString problemOfFilter(const QString &list, qsizetype position, const QJsonValue &value, FilterKind kind)
{
    const QString start = u"its \"%1\""_s.arg(list);
    if (!value.isObject())
        return u"%1 holds something else than filters"_s.arg(start);
    const QJsonObject filter = value.toObject();
    for (const QString &word : filterWords(kind)) {
        if (!filter.contains(word))
            return u"%1 has a filter, number %2, that lacks \"%3\""_s.arg(start, QString::number(position),
                                                                          word);
        const QString problem = problemOfValue(word, filter.value(word), filterRule(kind, word));
        if (!problem.isNull())
            return u"%1 has a filter, number %2: %3"_s.arg(start, QString::number(position), problem);
    }
    return {};
}

QString problemOfFilters(const QString &word, const QJsonValue &value)
{
    const FilterKind kind = word == u"pAudioFilterArray"_s ? FilterKind::Audio : FilterKind::Subtitle;
    const QJsonArray filters = value.toArray();
    if (!value.isArray())
        return u"its \"%1\" is no list of filters"_s.arg(word);
    if (filters.size() > mostFilters)
        return u"its \"%1\" holds more than %2 filters"_s.arg(word, QString::number(mostFilters));
    for (qsizetype i = 0; i < filters.size(); ++i) {
        const QString problem = problemOfFilter(word, i + 1, filters.at(i), kind);
        if (!problem.isNull())
            return problem;
    }
    return {};
}

/// What the records of one of the two lists are made of.
struct RecordKind
{
    QString key;
    QStringList words;
    ValueRule (*ruleFor)(const QString &word);
};

const RecordKind &tracksKind()
{
    static const RecordKind kind{selectionsKey, KXPresetSelections::recordWords(), &tracksRule};
    return kind;
}

const RecordKind &settingsKind()
{
    static const RecordKind kind{settingsKey, KXPresetSettings::recordWords(), &settingsRule};
    return kind;
}

QString problemOfWord(const QString &word, const QJsonValue &value, const RecordKind &kind)
{
    return word.endsWith(u"FilterArray"_s) ? problemOfFilters(word, value)
                                           : problemOfValue(word, value, kind.ruleFor(word));
}

/// A null text, or what is wrong with the record.
QString problemOf(const QJsonValue &value, const RecordKind &kind)
{
    if (!value.isObject())
        return u"it is no record"_s;
    const QJsonObject record = value.toObject();
    for (const QString &word : kind.words) {
        if (!record.contains(word))
            return u"it lacks \"%1\""_s.arg(word);
        const QString problem = problemOfWord(word, record.value(word), kind);
        if (!problem.isNull())
            return problem;
    }
    for (const QString &word : record.keys()) {
        if (!kind.words.contains(word))
            return u"it holds \"%1\", which no preset has"_s.arg(named(word));
    }
    if (!isFreeName(record.value(u"pName"_s).toString()))
        return u"the name \"%1\" can't be a user's preset's"_s.arg(
            named(record.value(u"pName"_s).toString()));
    return record.value(u"isEditable"_s).toBool() ? QString() : u"it is no user's preset"_s;
}

/// The entry as a sentence names it: by its place, and by its name where it has one.
QString entryName(qsizetype position, const RecordKind &kind, const QJsonValue &record)
{
    const QString name = record.toObject().value(u"pName"_s).toString();
    const QString place = u"Entry %1 of \"%2\""_s.arg(QString::number(position), kind.key);
    return name.isEmpty() ? place : u"%1, named \"%2\","_s.arg(place, named(name));
}

QString problemOfList(const QJsonValue &list, const RecordKind &kind)
{
    if (!list.isArray())
        return u"It has no list \"%1\"."_s.arg(kind.key);
    const QJsonArray records = list.toArray();
    for (qsizetype i = 0; i < records.size(); ++i) {
        const QString problem = problemOf(records.at(i), kind);
        if (!problem.isNull())
            return u"%1 does not fit: %2."_s.arg(entryName(i + 1, kind, records.at(i)), problem);
    }
    return {};
}

/// The user's presets that an import takes; what is wrong with the others is told.
template <typename List>
QJsonArray recordsOf(const List &presets, const RecordKind &kind, QStringList &problems)
{
    QJsonArray records;
    for (const auto &preset : presets) {
        if (!preset->isEditable())
            continue;
        const QJsonObject record = QJsonObject::fromVariantMap(preset->makeRecord());
        const QString problem = problemOf(record, kind);
        if (problem.isNull())
            records.append(record);
        else
            problems.append(u"The preset \"%1\" was left out: %2."_s.arg(named(preset->pName()), problem));
    }
    return records;
}

/// Names that are taken, and where the search for a free one goes on.
struct Names
{
    explicit Names(const QStringList &names)
        : taken(names.begin(), names.end())
    {
    }
    QString freeFor(const QString &name);

    QSet<QString> taken;
    QHash<QString, int> numbers;
};

QString Names::freeFor(const QString &name)
{
    QString candidate = name;
    int &number = numbers[name];
    for (number = std::max(number, 1); taken.contains(candidate);)
        candidate = u"%1 (%2)"_s.arg(name, QString::number(++number));
    taken.insert(candidate);
    return candidate;
}

/// The records with names that no stored preset has.
QVariantList renamed(const QJsonArray &records, const QStringList &taken)
{
    Names names(taken);
    QVariantList list;
    for (const QJsonValue &value : records) {
        QVariantMap record = value.toObject().toVariantMap();
        record.insert(u"pName"_s, names.freeFor(record.value(u"pName"_s).toString()));
        list.append(record);
    }
    return list;
}

QString problemOfFile(const QByteArray &contents, QJsonObject &file)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(contents, &error);
    if (error.error != QJsonParseError::NoError)
        return u"It is damaged, or no preset file at all: %1."_s.arg(error.errorString());
    file = document.object();
    if (!document.isObject() || !file.contains(u"version"_s))
        return u"It is no preset file."_s;
    if (file.value(u"version"_s) != QJsonValue(version))
        return u"It has a version that this program does not know."_s;
    for (const QString &key : file.keys()) {
        if (!QStringList{u"version"_s, selectionsKey, settingsKey}.contains(key))
            return u"It holds \"%1\", which no preset file has."_s.arg(named(key));
    }
    const QString problem = problemOfList(file.value(selectionsKey), tracksKind());
    return problem.isNull() ? problemOfList(file.value(settingsKey), settingsKind()) : problem;
}

} // namespace

Export exported(const KXPresetsController &presets)
{
    Export result;
    result.file = {{u"version"_s, version},
                   {selectionsKey, recordsOf(presets.presetSelectionsList(), tracksKind(), result.leftOut)},
                   {settingsKey, recordsOf(presets.presetSettingsList(), settingsKind(), result.leftOut)}};
    return result;
}

Import importInto(KXPresetsController &presets, const QByteArray &contents)
{
    QJsonObject file;
    Import result;
    result.problem = problemOfFile(contents, file);
    if (!result.problem.isNull())
        return result;
    const QVariantList selections =
        renamed(file.value(selectionsKey).toArray(), presets.presetSelectionsNamesList());
    const QVariantList settings =
        renamed(file.value(settingsKey).toArray(), presets.presetSettingsNamesList());
    result.problem = presets.addUserPresets(selections, settings);
    if (result.problem.isNull()) {
        result.selections = selections.size();
        result.settings = settings.size();
    }
    return result;
}

} // namespace presets
