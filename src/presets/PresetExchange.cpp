#include "presets/PresetExchange.h"

#include "presets/KXPresetsController.h"
#include "presets/PresetRecord.h"
#include "presets/TrackFilters.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMetaProperty>
#include <QSet>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace presets {

namespace {

constexpr int version = 1;
// Far more than a user makes or types.
constexpr qsizetype mostPresets = 1000;
constexpr qsizetype mostFilters = 1000;
constexpr qsizetype longestText = 10000;
constexpr qsizetype longestNamed = 100; // of a text that a sentence names
const QString selectionsKey = u"presetSelectionsArray"_s;
const QString settingsKey = u"presetSettingsArray"_s;

template <typename List>
QJsonArray recordsOf(const List &presets)
{
    QJsonArray records;
    for (const auto &preset : presets) {
        if (preset->isEditable())
            records.append(QJsonObject::fromVariantMap(preset->makeRecord()));
    }
    return records;
}

bool isText(const QJsonValue &value)
{
    return value.isString() && value.toString().size() <= longestText;
}

/// A sentence stays one that can be read.
QString named(const QString &text)
{
    return text.size() <= longestNamed ? text : text.left(longestNamed) + u'…';
}

bool isFilter(const QJsonValue &value, FilterKind kind)
{
    const QJsonObject filter = value.toObject();
    const QStringList &words = filterWords(kind);
    return std::all_of(words.begin(), words.end(),
                       [&](const QString &word) { return isText(filter.value(word)); });
}

bool isFilterList(const QJsonValue &value, FilterKind kind)
{
    const QJsonArray filters = value.toArray();
    return value.isArray() && filters.size() <= mostFilters &&
           std::all_of(filters.begin(), filters.end(),
                       [kind](const QJsonValue &filter) { return isFilter(filter, kind); });
}

bool isWholeNumber(const QJsonValue &value)
{
    return value.isDouble() && std::trunc(value.toDouble()) == value.toDouble() &&
           std::abs(value.toDouble()) < 1e6;
}

/// Whether a value is of the kind in which the property is stored.
bool fits(const QJsonValue &value, const QMetaProperty &property)
{
    switch (property.typeId()) {
    case QMetaType::Bool:
        return value.isBool();
    case QMetaType::Int:
        return isWholeNumber(value);
    case QMetaType::QVariantList: {
        const bool isAudio = QByteArrayView(property.name()) == "pAudioFilterArray";
        return isFilterList(value, isAudio ? FilterKind::Audio : FilterKind::Subtitle);
    }
    default:
        return isText(value);
    }
}

/// A null text, or what is wrong with the record.
QString problemOf(const QJsonValue &value, const QStringList &words, const QMetaObject &meta)
{
    if (!value.isObject())
        return u"it is no record"_s;
    const QJsonObject record = value.toObject();
    for (const QString &word : words) {
        if (!record.contains(word))
            return u"it lacks \"%1\""_s.arg(word);
        if (!fits(record.value(word), meta.property(meta.indexOfProperty(word.toLatin1().constData()))))
            return u"its \"%1\" is not what a preset holds there"_s.arg(word);
    }
    for (const QString &word : record.keys()) {
        if (!words.contains(word))
            return u"it holds \"%1\", which no preset has"_s.arg(named(word));
    }
    if (!isFreeName(record.value(u"pName"_s).toString()))
        return u"the name \"%1\" can't be a user's preset's"_s.arg(
            named(record.value(u"pName"_s).toString()));
    return record.value(u"isEditable"_s).toBool() ? QString() : u"it is no user's preset"_s;
}

QString problemOfList(const QJsonValue &list, const QString &key, const QStringList &words,
                      const QMetaObject &meta)
{
    if (!list.isArray())
        return u"It has no list \"%1\"."_s.arg(key);
    const QJsonArray records = list.toArray();
    if (records.size() > mostPresets)
        return u"Its list \"%1\" holds more than %2 presets."_s.arg(key, QString::number(mostPresets));
    for (qsizetype i = 0; i < records.size(); ++i) {
        const QString problem = problemOf(records.at(i), words, meta);
        if (!problem.isNull())
            return u"Entry %1 of \"%2\" does not fit: %3."_s.arg(QString::number(i + 1), key, problem);
    }
    return {};
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
    const QString problem =
        problemOfList(file.value(selectionsKey), selectionsKey, KXPresetSelections::recordWords(),
                      KXPresetSelections::staticMetaObject);
    if (!problem.isNull())
        return problem;
    return problemOfList(file.value(settingsKey), settingsKey, KXPresetSettings::recordWords(),
                         KXPresetSettings::staticMetaObject);
}

} // namespace

QJsonObject exported(const KXPresetsController &presets)
{
    return {{u"version"_s, version},
            {selectionsKey, recordsOf(presets.presetSelectionsList())},
            {settingsKey, recordsOf(presets.presetSettingsList())}};
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
