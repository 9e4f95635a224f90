#include "cli/FinishedFiles.h"

#include "cli/Session.h"
#include "jobs/KXJob.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;
using tools::ToolProcess;

namespace cli {

namespace {

constexpr int groupEndMs = 1000; // what a command gets to end after an interrupt

/// The program of a command's name, as a shell would find it; a null text when there is none.
QString programFor(const QString &command)
{
    if (!command.contains(u'/'))
        return QStandardPaths::findExecutable(command);
    const QFileInfo file(absolutePath(command));
    return file.isFile() && file.isExecutable() ? file.filePath() : QString();
}

} // namespace

FinishedFiles::FinishedFiles(Session &session)
    : m_session(session)
    , m_command(programFor(session.line().value(u"exec"_s)))
{
}

QString FinishedFiles::problemWith(const CommandLine &line)
{
    const QString print = line.value(u"print"_s);
    if (line.has(u"print"_s) && print != u"outputs"_s && print != u"outputs0"_s)
        return u"--print can't be \"%1\". Right is outputs or outputs0."_s.arg(print);
    for (const QString &other : {u"json"_s, u"dry-run"_s}) {
        if (line.has(u"print"_s) && line.has(other))
            return u"--print and --%1 exclude each other."_s.arg(other);
    }
    if (line.has(u"exec"_s) && programFor(line.value(u"exec"_s)).isEmpty())
        return u"--exec: there is no program \"%1\". It is the name of one program, without arguments."_s.arg(
            line.value(u"exec"_s));
    return {};
}

void FinishedFiles::take(const KXJob &job)
{
    const steps::Verdict verdict = job.outcome().verdict;
    if (verdict != steps::Verdict::Ok && verdict != steps::Verdict::Warnings)
        return;
    for (const QUrl &file : job.outputs()) {
        m_session.console().file(file.toLocalFile());
        if (!m_command.isEmpty())
            m_waiting.append(file.toLocalFile());
    }
    startNext();
}

void FinishedFiles::startNext()
{
    if (m_running || m_waiting.isEmpty() || m_session.isInterrupted())
        return;
    const QString path = m_waiting.takeFirst();
    ToolProcess::Request request;
    request.program = m_command;
    request.arguments = {path};
    request.environment = QProcessEnvironment::systemEnvironment();
    m_openChannels = 2;
    m_running = ToolProcess::start(request);
    connect(m_running.get(), &ToolProcess::chunkRead, this, &FinishedFiles::pass);
    connect(m_running.get(), &ToolProcess::channelEnded, this, [this, path] {
        if (--m_openChannels == 0)
            ended(path);
    });
}

void FinishedFiles::ended(const QString &path)
{
    const std::optional<int> status = m_running->exitStatus();
    if (status != 0) {
        const QString how = status ? u"ended with status %1"_s.arg(*status) : u"did not end by itself"_s;
        m_session.console().say(u"%1: %2 %3."_s.arg(path, m_command, how));
        m_worst = ExitStatus::Warnings;
    }
    m_running.reset();
    startNext();
}

/// What the command writes goes where it would have gone, but never among objects and paths.
void FinishedFiles::pass(ToolProcess::Channel channel, const QByteArray &bytes)
{
    m_session.console().pass(bytes, channel == ToolProcess::Channel::Output);
}

ExitStatus FinishedFiles::finish()
{
    QEventLoop loop;
    connect(&m_session.interrupts(), &app::Interrupts::interrupted, &loop, &QEventLoop::quit);
    while (m_running && !m_session.isInterrupted()) {
        connect(m_running.get(), &ToolProcess::channelEnded, &loop, &QEventLoop::quit, Qt::QueuedConnection);
        loop.exec();
    }
    if (m_running) {
        m_running->terminate();
        m_running->waitUntilExit(groupEndMs);
        m_running.reset();
    }
    return m_worst;
}

} // namespace cli
