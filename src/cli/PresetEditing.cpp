#include "cli/PresetEditing.h"

#include "cli/Session.h"
#include "presets/PresetFields.h"
#include "presets/PresetSentence.h"
#include "presets/ReadyPresets.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

const QString tracksWord = u"tracks"_s;
const QString settingsWord = u"settings"_s;
constexpr int firstRow = 1; // the sheets' rows, by which presets are changed, leave "Manual" out

bool isKind(const QString &word)
{
    return word == tracksWord || word == settingsWord;
}

/// The kind that stands in front of a name, taken out of the words; null where none does.
QString takeKind(QStringList &words, qsizetype wordsBehind)
{
    return words.size() > wordsBehind && isKind(words.constFirst()) ? words.takeFirst() : QString();
}

QString shownValue(const QVariant &value)
{
    if (value.typeId() != QMetaType::QVariantList)
        return value.toString();
    return QString::fromUtf8(QJsonDocument::fromVariant(value.toList()).toJson(QJsonDocument::Compact));
}

template <typename Preset>
void show(Console &console, const QString &kind, const Preset &preset)
{
    const QVariantMap record = preset.makeRecord();
    const QString sentence = presets::sentenceFor(preset);
    console.object(
        {{u"kind"_s, kind}, {u"sentence"_s, sentence}, {u"record"_s, QJsonObject::fromVariantMap(record)}});
    console.result(kind + u": "_s + preset.pName());
    console.result(u"  "_s + sentence);
    for (const QString &word : preset.recordWords())
        console.result(u"  "_s + word + u" = "_s + shownValue(record.value(word)));
}

/// A null text, or what is wrong with the first field that is.
template <typename Preset>
QString setFields(Preset &preset, const QStringList &fields)
{
    for (const QString &field : fields) {
        const qsizetype sign = field.indexOf(u'=');
        if (sign < 0)
            return u"\"%1\" is no FIELD=VALUE."_s.arg(field);
        const QString problem = presets::setField(preset, field.first(sign), field.sliced(sign + 1));
        if (!problem.isNull())
            return problem;
    }
    return {};
}

QString setFieldsOf(const KXPresetsController &presets, const NamedPreset &preset, const QStringList &fields)
{
    return preset.isTracks ? setFields(*presets.presetSelectionsList().at(preset.index), fields)
                           : setFields(*presets.presetSettingsList().at(preset.index), fields);
}

bool isUsers(const KXPresetsController &presets, const NamedPreset &preset)
{
    return preset.isTracks ? presets.presetSelectionsList().at(preset.index)->isEditable()
                           : presets.presetSettingsList().at(preset.index)->isEditable();
}

/// Gives a preset that is in its list a name; a null text, or why it can't have it.
QString giveName(KXPresetsController &presets, const NamedPreset &preset, const QString &name)
{
    const QStringList &taken =
        preset.isTracks ? presets.presetSelectionsNamesList() : presets.presetSettingsNamesList();
    if (taken.contains(name))
        return u"There is a preset \"%1\" already."_s.arg(name);
    if (!presets::settingsRule(u"pName"_s).holds(name))
        return u"A preset can't have a name that long."_s;
    const int row = preset.index - firstRow;
    return preset.isTracks ? presets.renamePresetSelection(row, name)
                           : presets.renamePresetSettings(row, name);
}

NamedPreset appended(KXPresetsController &presets, const QString &kind)
{
    if (kind == tracksWord) {
        presets.addPresetSelection();
        return {true, static_cast<int>(presets.presetSelectionsList().size()) - 1, {}};
    }
    presets.addPresetSettings();
    return {false, static_cast<int>(presets.presetSettingsList().size()) - 1, {}};
}

QString store(KXPresetsController &presets, const NamedPreset &preset)
{
    return preset.isTracks ? presets.savePresetSelectionsListToUserDefaults()
                           : presets.savePresetSettingsListToUserDefaults();
}

ExitStatus storedAndShown(Session &session, const NamedPreset &preset)
{
    const QString problem = store(session.program().presets(), preset);
    if (!problem.isNull())
        return session.failed(problem);
    showPreset(session, preset);
    return ExitStatus::AllWell;
}

/// A preset of the user's that is to be changed.
NamedPreset changeable(const KXPresetsController &presets, const QString &kind, const QString &name)
{
    NamedPreset preset = presetNamed(presets, kind, name);
    if (preset.problem.isNull() && !isUsers(presets, preset))
        preset.problem = u"The preset \"%1\" is built in and can't be changed."_s.arg(name);
    return preset;
}

ExitStatus wrongWords(Session &session, const QString &usage)
{
    return session.wrongUsage(u"Usage: tessaray-cli presets "_s + usage);
}

/// What --for asks of a new preset; a null text, or why that can't be.
QString makeReady(const CommandLine &line, const KXPresetsController &presets, const NamedPreset &preset)
{
    if (!line.has(u"for"_s))
        return {};
    if (preset.isTracks)
        return u"Only a settings preset is made --for a device."_s;
    return presets::makeReadyFor(line.value(u"for"_s), *presets.presetSettingsList().at(preset.index));
}

} // namespace

QString kindWordOf(const NamedPreset &preset)
{
    return preset.isTracks ? tracksWord : settingsWord;
}

NamedPreset presetNamed(const KXPresetsController &presets, const QString &kind, const QString &name)
{
    const auto indexIn = [&](const QStringList &names, const QString &word) {
        return kind.isNull() || kind == word ? static_cast<int>(names.indexOf(name)) : -1;
    };
    const int tracks = indexIn(presets.presetSelectionsNamesList(), tracksWord);
    const int settings = indexIn(presets.presetSettingsNamesList(), settingsWord);
    if (tracks >= 0 && settings >= 0)
        return {false, -1,
                u"There is a preset \"%1\" of both kinds. Write tracks or settings in front of the "
                "name."_s.arg(name)};
    if (tracks < 0 && settings < 0)
        return {false, -1, u"There is no preset \"%1\"."_s.arg(name)};
    return {tracks >= 0, std::max(tracks, settings), {}};
}

void showPreset(Session &session, const NamedPreset &preset)
{
    const KXPresetsController &presets = session.program().presets();
    if (preset.isTracks)
        show(session.console(), tracksWord, *presets.presetSelectionsList().at(preset.index));
    else
        show(session.console(), settingsWord, *presets.presetSettingsList().at(preset.index));
}

ExitStatus addPreset(Session &session, const QStringList &words)
{
    if (words.size() < 2 || !isKind(words.constFirst()))
        return wrongWords(session, u"add tracks|settings NAME [FIELD=VALUE...]"_s);
    KXPresetsController &presets = session.program().presets();
    const NamedPreset preset = appended(presets, words.constFirst());
    QString problem = giveName(presets, preset, words.at(1));
    if (problem.isNull())
        problem = makeReady(session.line(), presets, preset);
    if (problem.isNull())
        problem = setFieldsOf(presets, preset, words.mid(2));
    return problem.isNull() ? storedAndShown(session, preset) : session.wrongUsage(problem);
}

ExitStatus setPreset(Session &session, const QStringList &words)
{
    QStringList rest = words;
    const QString kind = takeKind(rest, 2);
    if (rest.size() < 2)
        return wrongWords(session, u"set [tracks|settings] NAME FIELD=VALUE..."_s);
    const KXPresetsController &presets = session.program().presets();
    const NamedPreset preset = changeable(presets, kind, rest.constFirst());
    const QString problem =
        preset.problem.isNull() ? setFieldsOf(presets, preset, rest.mid(1)) : preset.problem;
    return problem.isNull() ? storedAndShown(session, preset) : session.wrongUsage(problem);
}

ExitStatus renamePreset(Session &session, const QStringList &words)
{
    QStringList rest = words;
    const QString kind = takeKind(rest, 2);
    if (rest.size() != 2)
        return wrongWords(session, u"rename [tracks|settings] NAME NEW"_s);
    KXPresetsController &presets = session.program().presets();
    const NamedPreset preset = changeable(presets, kind, rest.constFirst());
    const QString problem =
        preset.problem.isNull() ? giveName(presets, preset, rest.constLast()) : preset.problem;
    return problem.isNull() ? storedAndShown(session, preset) : session.wrongUsage(problem);
}

ExitStatus removePreset(Session &session, const QStringList &words)
{
    QStringList rest = words;
    const QString kind = takeKind(rest, 1);
    if (rest.size() != 1)
        return wrongWords(session, u"remove [tracks|settings] NAME"_s);
    KXPresetsController &presets = session.program().presets();
    const NamedPreset preset = changeable(presets, kind, rest.constFirst());
    if (!preset.problem.isNull())
        return session.wrongUsage(preset.problem);
    if (preset.isTracks) {
        presets.selectionListTableClicked(preset.index - firstRow);
        presets.removePresetSelection();
    } else {
        presets.settingsListTableClicked(preset.index - firstRow);
        presets.removePresetSettings();
    }
    const QString problem = store(presets, preset);
    if (!problem.isNull())
        return session.failed(problem);
    session.console().object({{u"removed"_s, rest.constFirst()}, {u"kind"_s, kindWordOf(preset)}});
    session.console().result(u"Removed %1: %2"_s.arg(kindWordOf(preset), rest.constFirst()));
    return ExitStatus::AllWell;
}

} // namespace cli
