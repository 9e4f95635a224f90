#include "tools/KXHelpers.h"

#include "platform/AlertPresenter.h"
#include "tools/Languages.h"
#include "tools/Numbers.h"
#include "tools/Processes.h"
#include "tools/ShellRunner.h"
#include "tools/Times.h"
#include "tools/ToolPlaces.h"
#include "tools/Values.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

// What is run so often that a log would hold little else.

bool isQuietTool(const QUrl &tool)
{
    const QString name = tool.fileName().toLower();
    return name.contains(u"mediainfo"_s) || name.contains(u"mkvinfo"_s);
}

bool isQuietCommand(const QString &command)
{
    const QStringList quiet{u"ps"_s, u"tr '\\r' '\\n' < "_s, u"dscacheutil"_s, u"ls"_s};
    return quiet.contains(command);
}

} // namespace

KXHelpers::KXHelpers(const tools::ToolPlaces *places, platform::AlertPresenter *presenter)
    : m_places(places)
    , m_presenter(presenter)
    , m_waiting(tools::Waiting::WithEventLoop)
{
}

const QStringList &KXHelpers::languageList() const
{
    return tools::languageMenu();
}

const QList<QStringList> &KXHelpers::languageArrayMatrix() const
{
    return tools::languageTable();
}

QString KXHelpers::doShellScriptForWithOptions(const QUrl &tool, const tools::OptionList &options) const
{
    const auto line = tools::toolLine(tool, options, *m_places, tools::shellKind());
    if (!isQuietTool(tool))
        logObjectWithString(line.meant, u"doShellScript String: "_s);
    tools::ShellRequest request = tools::toolRequest(line.launched, tool, *m_places);
    request.waiting = m_waiting;
    request.stop = m_stop;
    return tools::runShell(request).text();
}

QString KXHelpers::doUnixCommandWithOptions(tools::Literal command, const tools::OptionList &options) const
{
    const auto line = tools::commandLine(command, options, tools::shellKind());
    if (!isQuietCommand(command.text()))
        logObjectWithString(line.meant, u"doUnixCommand string: "_s);
    return tools::runShell(tools::commandRequest(line.launched)).text();
}

QUrl KXHelpers::urlOfApp(const QString &name) const
{
    return tools::locationOf(name, *m_places);
}

QString KXHelpers::doubleQuotedFormOf(const QString &text)
{
    return tools::doubleQuoted(text);
}

QString KXHelpers::singleQuotedFormOf(const QString &text)
{
    return tools::singleQuoted(text);
}

bool KXHelpers::processIsRunningWithPID(const QString &pid) const
{
    return tools::processRuns(pid);
}

bool KXHelpers::terminatePIDWaitUntilTerminated(const QString &pid, Wait wait) const
{
    if (!tools::signalProcess(pid, tools::ProcessSignal::Kill))
        return false;
    if (wait == Wait::UntilTerminated) {
        do {
            logString(u"Waiting to terminate"_s);
        } while (processIsRunningWithPID(pid));
    }
    return true;
}

void KXHelpers::suspendPID(const QString &pid) const
{
    tools::signalProcess(pid, tools::ProcessSignal::Stop);
}

void KXHelpers::resumePID(const QString &pid) const
{
    tools::signalProcess(pid, tools::ProcessSignal::Continue);
}

bool KXHelpers::fileExistsAtURL(const QUrl &location)
{
    return !location.path().isEmpty() && QFileInfo::exists(location.toLocalFile());
}

bool KXHelpers::directoryPathExistsFor(const QString &path)
{
    return tools::isFolder(path);
}

bool KXHelpers::directoryPathIsNotEmptyFor(const QString &path)
{
    return tools::isFolderWithEntries(path);
}

bool KXHelpers::isEmpty(const QVariant &value)
{
    return tools::isEmptyValue(value);
}

bool KXHelpers::theStringContainsString(const QVariant &text, const QVariant &part)
{
    return tools::isTextWith(text, part);
}

bool KXHelpers::isStringInteger(const QString &text)
{
    return tools::leadingInteger(text) != 0 || text == u"0"_s;
}

QString KXHelpers::language2CodeFor(const QString &nameOrCode)
{
    return tools::twoLetterCodeOf(nameOrCode);
}

QString KXHelpers::language3CodeFor(const QString &nameOrCode)
{
    return tools::threeLetterCodeOf(nameOrCode);
}

QString KXHelpers::languageForCode3(const QString &nameOrCode)
{
    return tools::languageNameOf(nameOrCode);
}

QString KXHelpers::standardizedLanguage3CodeFor(const QString &code)
{
    return tools::standardizedCodeOf(code);
}

qint64 KXHelpers::convertToTimeInSecondsFrom(const QString &time)
{
    return tools::secondsIn(time);
}

void KXHelpers::openAlertSheet(const platform::AlertPointer &alert) const
{
    if (m_presenter != nullptr)
        m_presenter->show(alert, {});
}

void KXHelpers::alertTimedOut(const platform::AlertPointer &alert) const
{
    if (m_presenter != nullptr)
        m_presenter->close(alert);
}

void KXHelpers::logString(const QString &) const {}

void KXHelpers::logObjectWithString(const QVariant &, const QString &) const {}

void KXHelpers::logIntegerWithString(qint64, const QString &) const {}
