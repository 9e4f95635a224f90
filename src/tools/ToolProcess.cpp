#include "tools/ToolProcess.h"

#include "tools/ProcessGroup.h"

#include <QScopedValueRollback>
#include <QThread>

#include <csignal>
#include <functional>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace tools {

namespace {

/// Runs between fork and exec; what the tool starts inherits it.
void lowerPriority()
{
    constexpr int low = 10; // of 0 to 19
    if (::getpriority(PRIO_PROCESS, 0) < low)
        ::setpriority(PRIO_PROCESS, 0, low);
}

} // namespace

ToolProcess::ToolProcess()
{
    connect(&m_process, &QProcess::readyReadStandardOutput, this, [this] { read(Channel::Output); });
    connect(&m_process, &QProcess::readyReadStandardError, this, [this] { read(Channel::Error); });
    connect(&m_process, &QProcess::finished, this, [this](int, QProcess::ExitStatus status) {
        finish(status == QProcess::NormalExit ? End::Exited : End::Crashed);
    });
    // Queued: a start that fails at once must not end the run before the caller holds it.
    connect(
        &m_process, &QProcess::errorOccurred, this,
        [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                finish(End::NotStarted);
        },
        Qt::QueuedConnection);
}

std::shared_ptr<ToolProcess> ToolProcess::start(const Request &request)
{
    std::shared_ptr<ToolProcess> tool(new ToolProcess, &ToolProcess::release);
    tool->m_process.setProcessEnvironment(request.environment);
    tool->m_process.setWorkingDirectory(request.workingFolder);
    if (request.streams == Streams::Merged)
        tool->m_process.setProcessChannelMode(QProcess::MergedChannels);
    startInOwnGroup(tool->m_process, request.program, request.arguments,
                    request.atLowPriority ? lowerPriority : std::function<void()>());
    tool->m_process.closeWriteChannel(); // no tool can wait for a key
    return tool;
}

void ToolProcess::release(ToolProcess *tool)
{
    // Who is told of the end often lets go at once, in the middle of our call; a monitor may let go too.
    if (tool->thread() != QThread::currentThread() || tool->m_reporting)
        tool->deleteLater();
    else
        delete tool;
}

ToolProcess::~ToolProcess()
{
    m_process.disconnect(this);
    if (!isRunning())
        return;
    signalGroupOf(processIdentifier(), SIGKILL);
    m_process.waitForFinished(1000);
}

std::optional<int> ToolProcess::exitStatus() const
{
    return m_end == End::Exited ? std::optional<int>(m_process.exitCode()) : std::nullopt;
}

/// Of a program that did not exit by itself Qt's status is the signal.
std::optional<int> ToolProcess::endingSignal() const
{
    return m_end == End::Crashed ? std::optional<int>(m_process.exitCode()) : std::nullopt;
}

void ToolProcess::suspend()
{
    if (!isRunning())
        return;
    signalGroupOf(processIdentifier(), SIGSTOP);
    m_suspended = true;
}

void ToolProcess::resume()
{
    if (!isRunning())
        return;
    signalGroupOf(processIdentifier(), SIGCONT);
    m_suspended = false;
}

void ToolProcess::terminate()
{
    if (!isRunning())
        return;
    resume();
    signalGroupOf(processIdentifier(), SIGTERM);
}

bool ToolProcess::waitUntilExit(int milliseconds)
{
    if (isRunning())
        m_process.waitForFinished(milliseconds);
    return !isRunning();
}

void ToolProcess::report(Channel channel, const QByteArray &bytes)
{
    if (!bytes.isEmpty() && !m_readersClosed)
        Q_EMIT chunkRead(channel, bytes);
}

void ToolProcess::read(Channel channel)
{
    const QScopedValueRollback reporting(m_reporting, true);
    report(channel,
           channel == Channel::Output ? m_process.readAllStandardOutput() : m_process.readAllStandardError());
}

void ToolProcess::finish(End end)
{
    if (m_end != End::StillRunning)
        return;
    const QScopedValueRollback reporting(m_reporting, true);
    m_end = end;
    const bool isMerged = m_process.processChannelMode() == QProcess::MergedChannels;
    if (end == End::NotStarted) {
        const QString message = u"%1 could not be started: %2\n"_s.arg(launchPath(), m_process.errorString());
        report(isMerged ? Channel::Output : Channel::Error, message.toUtf8());
    } else {
        read(Channel::Output);
        if (!isMerged)
            read(Channel::Error);
    }
    for (const Channel channel : {Channel::Output, Channel::Error}) {
        if (!m_readersClosed)
            Q_EMIT channelEnded(channel);
    }
}

} // namespace tools
