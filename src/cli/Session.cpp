#include "cli/Session.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

#include <csignal>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

constexpr int flushAfterInterruptMs = 500;

/// Told to a user who waits for the result; a watched folder runs unattended.
steps::WhenTaken whenTakenFor(const CommandLine &line)
{
    if (line.command() == u"watch"_s)
        return steps::WhenTaken::NextFreeName;
    return line.has(u"force"_s) ? steps::WhenTaken::Replace : steps::WhenTaken::Refuse;
}

} // namespace

Session::Session(const CommandLine &line)
    : m_line(line)
    , m_alerts(m_console)
{
    m_console.setJson(line.has(u"json"_s));
    m_console.setQuiet(line.has(u"quiet"_s));
    m_console.setPrint(line.value(u"print"_s));
    m_console.setWhenUnread([this] { m_interrupts.interruptAs(SIGPIPE); });
}

app::Program &Session::program()
{
    if (m_program)
        return *m_program;
    app::Program::Options options;
    if (m_line.has(u"defaults"_s))
        options.defaultsPath = absolutePath(m_line.value(u"defaults"_s));
    options.whenTaken = whenTakenFor(m_line);
    m_program = std::make_unique<app::Program>(options, m_alerts);
    QObject::connect(&m_program->preferences(), &KXPreferences::storeMended, &m_program->preferences(),
                     [this](const QString &sentence) { sayUnsettled(sentence); });
    const QString problem = m_program->initialize();
    if (!problem.isNull())
        sayUnsettled(problem);
    applyOptions();
    return *m_program;
}

void Session::sayUnsettled(const QString &sentence)
{
    m_console.say(sentence);
    m_isUnsettled = true;
}

void Session::applyOptions()
{
    KXPreferences &preferences = m_program->preferences();
    if (m_line.has(u"keep-logs"_s))
        preferences.overrideForThisRun(u"keepLogsFlag"_s, true);
    if (m_line.has(u"no-keep-logs"_s))
        preferences.overrideForThisRun(u"keepLogsFlag"_s, false);
    if (m_line.has(u"verify"_s))
        preferences.overrideForThisRun(u"verifyFlag"_s, true);
    if (m_line.has(u"newer-codecs"_s))
        preferences.overrideForThisRun(u"newerCodecsFlag"_s, true);
    if (m_line.has(u"nice"_s))
        preferences.overrideForThisRun(u"lowPriorityFlag"_s, true);
    if (m_line.has(u"save-dir"_s))
        preferences.overrideForThisRun(u"saveDirectoryPath"_s, absolutePath(m_line.value(u"save-dir"_s)));
}

ExitStatus Session::wrongUsage(const QString &sentence)
{
    m_console.say(sentence);
    return ExitStatus::WrongUsage;
}

ExitStatus Session::failed(const QString &sentence)
{
    m_console.say(sentence);
    return ExitStatus::Failed;
}

ExitStatus Session::unlessInterrupted(ExitStatus status) const
{
    if (!isInterrupted())
        return status;
    switch (m_interrupts.signalNumber()) {
    case SIGINT:
        return ExitStatus::Interrupted;
    case SIGPIPE:
        return ExitStatus::Unread;
    default:
        return ExitStatus::Terminated;
    }
}

/// Somebody who interrupts us does not want to wait for a reader that has stopped reading.
void Session::flush()
{
    QElapsedTimer sinceInterrupt;
    m_console.flush([&] {
        if (isInterrupted() && !sinceInterrupt.isValid())
            sinceInterrupt.start();
        return !sinceInterrupt.isValid() || sinceInterrupt.elapsed() < flushAfterInterruptMs;
    });
}

QString absolutePath(const QString &path)
{
    if (path.isEmpty())
        return {};
    // Not by QFileInfo, which takes a name like ":a" for something built into the program.
    const QString whole = path.startsWith(u'/') ? path : QDir::currentPath() + u'/' + path;
    // What ".." leads to is for the file system to say: the folder in front of it may be a link.
    const QStringList parts = whole.split(u'/');
    const qsizetype lastUp = parts.lastIndexOf(u".."_s);
    const QString folder = QFileInfo(parts.first(lastUp + 1).join(u'/')).canonicalFilePath();
    if (lastUp < 0 || folder.isEmpty())
        return QDir::cleanPath(whole);
    return QDir::cleanPath(folder + u'/' + parts.mid(lastUp + 1).join(u'/'));
}

} // namespace cli
