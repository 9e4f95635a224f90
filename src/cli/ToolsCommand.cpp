#include "cli/ToolsCommand.h"

#include "cli/BugReport.h"
#include "cli/Session.h"
#include "prefs/ToolCheck.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

QJsonObject objectOf(const prefs::ToolReport &report)
{
    const auto textOrNull = [](const QString &text) {
        return text.isNull() ? QJsonValue() : QJsonValue(text);
    };
    return {{u"tool"_s, report.name},
            {u"location"_s, report.location.toLocalFile()},
            {u"program"_s, textOrNull(report.program)},
            {u"works"_s, report.works()},
            {u"state"_s, prefs::describe(report.state)},
            {u"version"_s, textOrNull(report.version)},
            {u"switchesOff"_s, report.works() ? QJsonValue() : QJsonValue(report.switchesOff)}};
}

QString lineOf(const prefs::ToolReport &report)
{
    const QString start = report.name.leftJustified(14) + report.location.toLocalFile() + u"  "_s;
    if (report.works())
        return start + (report.version.isNull() ? u"works; its version is unknown"_s : report.version);
    return start + prefs::describe(report.state) + u". "_s + report.switchesOff;
}

/// What was saved where logs may lie: here, in the save folder, in the watched one.
ExitStatus report(Session &session)
{
    const KXPreferences &preferences = session.program().preferences();
    const KeptLog log =
        newestLog({QDir::currentPath(), preferences.saveDirectoryPath(), preferences.watchFolderPath()});
    const QStringList lines = bugReport(prefs::ToolCheck(preferences).checkAll(), log);
    session.console().object({{u"report"_s, lines.join(u'\n')}});
    for (const QString &line : lines)
        session.console().result(line);
    return ExitStatus::AllWell;
}

} // namespace

ExitStatus ToolsCommand::execute(Session &session) const
{
    if (!session.line().arguments().isEmpty())
        return session.wrongUsage(u"The command tools takes no arguments."_s);
    if (session.line().has(u"report"_s))
        return report(session);
    const KXPreferences &preferences = session.program().preferences();
    for (const prefs::ToolReport &report : prefs::ToolCheck(preferences).checkAll()) {
        session.console().object(objectOf(report));
        session.console().result(lineOf(report));
    }
    for (const QString &problem : preferences.toolsProblem().split(u'\n', Qt::SkipEmptyParts))
        session.console().say(problem);
    return preferences.toolsProblem().isEmpty() ? ExitStatus::AllWell : ExitStatus::Failed;
}

} // namespace cli
