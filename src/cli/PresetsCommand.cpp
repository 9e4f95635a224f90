#include "cli/PresetsCommand.h"

#include "cli/PresetEditing.h"
#include "cli/Session.h"
#include "platform/OrdinaryFile.h"
#include "presets/PresetExchange.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

const QString trackKind = u"tracks"_s;
const QString settingsKind = u"settings"_s;
constexpr qint64 mostBytes = 16 * 1024 * 1024; // a preset file is some kilobytes

template <typename List>
void listKind(Console &console, const QString &kind, const List &presets)
{
    for (const auto &preset : presets) {
        console.object(
            {{u"kind"_s, kind}, {u"name"_s, preset->pName()}, {u"isEditable"_s, preset->isEditable()}});
        console.result(kind + u": "_s + preset->pName());
    }
}

/// Writes a file that was not there; a null text, or why it could not.
QString writeNew(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return QFileInfo::exists(path) ? u"%1 exists already."_s.arg(path)
                                       : u"%1 can't be written: %2."_s.arg(path, file.errorString());
    if (file.write(contents) == contents.size() && file.flush())
        return {};
    const QString problem = u"%1 can't be written: %2."_s.arg(path, file.errorString());
    file.close();
    QFile::remove(path); // its own remove() gives up when what is left can't be written either
    return problem;
}

using Change = ExitStatus (*)(Session &, const QStringList &);

const QHash<QString, Change> &changesByVerb()
{
    static const QHash<QString, Change> changes{{u"add"_s, &addPreset},
                                                {u"set"_s, &setPreset},
                                                {u"rename"_s, &renamePreset},
                                                {u"remove"_s, &removePreset}};
    return changes;
}

} // namespace

ExitStatus PresetsCommand::execute(Session &session) const
{
    const QStringList words = session.line().arguments();
    const QString verb = words.value(0);
    if (session.line().has(u"for"_s) && verb != u"add"_s)
        return session.wrongUsage(u"The option --for belongs to \"presets add settings NAME\"."_s);
    if (changesByVerb().contains(verb))
        return changesByVerb().value(verb)(session, words.mid(1));
    if (verb == u"list"_s && words.size() == 1)
        return list(session);
    if (verb == u"show"_s && (words.size() == 2 || words.size() == 3))
        return show(session, words.mid(1));
    if (verb == u"export"_s && words.size() <= 2)
        return exportTo(session, absolutePath(words.value(1)));
    if (verb == u"import"_s && words.size() == 2)
        return importFrom(session, absolutePath(words.at(1)));
    return session.wrongUsage(u"Usage: tessaray-cli presets "_s + arguments());
}

ExitStatus PresetsCommand::list(Session &session) const
{
    const KXPresetsController &presets = session.program().presets();
    listKind(session.console(), trackKind, presets.presetSelectionsList());
    listKind(session.console(), settingsKind, presets.presetSettingsList());
    return ExitStatus::AllWell;
}

ExitStatus PresetsCommand::show(Session &session, const QStringList &words) const
{
    const QString kind = words.size() == 2 ? words.constFirst() : QString();
    if (!kind.isNull() && kind != trackKind && kind != settingsKind)
        return session.wrongUsage(u"Usage: tessaray-cli presets show [tracks|settings] NAME"_s);
    const NamedPreset preset = presetNamed(session.program().presets(), kind, words.constLast());
    if (!preset.problem.isNull())
        return session.wrongUsage(preset.problem);
    showPreset(session, preset);
    return ExitStatus::AllWell;
}

ExitStatus PresetsCommand::exportTo(Session &session, const QString &path) const
{
    const presets::Export presets = presets::exported(session.program().presets());
    const QByteArray bytes = QJsonDocument(presets.file).toJson(QJsonDocument::Indented);
    if (bytes.size() > mostBytes)
        return session.failed(u"Your presets are too large for a file that can be imported."_s);
    for (const QString &sentence : presets.leftOut)
        session.console().say(sentence);
    const ExitStatus status = presets.leftOut.isEmpty() ? ExitStatus::AllWell : ExitStatus::Warnings;
    if (path.isEmpty()) {
        session.console().object(presets.file);
        session.console().document(presets.file);
        return status;
    }
    const QString problem = writeNew(path, bytes);
    if (!problem.isNull())
        return session.failed(problem);
    session.console().object({{u"exported"_s, path}});
    session.console().result(path);
    return status;
}

ExitStatus PresetsCommand::importFrom(Session &session, const QString &path) const
{
    const platform::WholeFile file = platform::readWhole(path, mostBytes);
    if (!file.problem.isNull())
        return session.failed(u"%1 can't be read: %2."_s.arg(path, file.problem));
    const presets::Import import = presets::importInto(session.program().presets(), file.bytes);
    if (!import.problem.isNull())
        return session.failed(u"%1 was not imported. %2"_s.arg(path, import.problem));
    session.console().object(
        {{u"imported"_s, path}, {trackKind, import.selections}, {settingsKind, import.settings}});
    session.console().result(u"%1 track presets and %2 settings presets were imported."_s.arg(
        QString::number(import.selections), QString::number(import.settings)));
    return ExitStatus::AllWell;
}

} // namespace cli
