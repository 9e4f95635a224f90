#include "tools/ShellRunner.h"

#include "tools/ProcessGroup.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QThread>
#include <QTimer>

#include <csignal>

using namespace Qt::StringLiterals;

namespace tools
{

namespace
{

constexpr int sliceMs = 50;

bool mustStop(const ShellRequest &request, const QElapsedTimer &clock)
{
    return (request.stop && *request.stop) || (request.timeoutMs >= 0 && clock.elapsed() >= request.timeoutMs);
}

void endNow(QProcess &process)
{
    signalGroupOf(process.processId(), SIGKILL);
    process.waitForFinished(1000);
}

void waitBlocking(QProcess &process, const ShellRequest &request, const QElapsedTimer &clock)
{
    const bool limited = request.stop || request.timeoutMs >= 0;
    while (process.state() != QProcess::NotRunning && !process.waitForFinished(limited ? sliceMs : -1)) {
        if (process.state() != QProcess::NotRunning && mustStop(request, clock))
            return endNow(process);
    }
}

void waitWithEventLoop(QProcess &process, const ShellRequest &request, const QElapsedTimer &clock)
{
    QEventLoop loop;
    QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
    QObject::connect(&process, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &loop, [&] {
        if (mustStop(request, clock))
            loop.quit();
    });
    watch.start(sliceMs);
    if (process.state() != QProcess::NotRunning)
        loop.exec();
    if (process.state() != QProcess::NotRunning)
        endNow(process);
}

bool isMainThread()
{
    const auto *application = QCoreApplication::instance();
    return application != nullptr && QThread::currentThread() == application->thread();
}

} // namespace

ShellReply runShell(const ShellRequest &request)
{
    QProcess process;
    leadOwnGroup(process);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessEnvironment(request.environment);
    if (!request.workingFolder.isEmpty())
        process.setWorkingDirectory(request.workingFolder);
    QElapsedTimer clock;
    clock.start();
    process.start(u"/bin/sh"_s, {u"-c"_s, request.line});
    if (request.waiting == Waiting::WithEventLoop && isMainThread())
        waitWithEventLoop(process, request, clock);
    else
        waitBlocking(process, request, clock);
    ShellReply reply;
    reply.output = process.readAllStandardOutput();
    reply.error = process.readAllStandardError();
    if (process.error() == QProcess::FailedToStart)
        reply.error = process.errorString().toUtf8();
    else if (process.exitStatus() == QProcess::NormalExit)
        reply.status = process.exitCode();
    return reply;
}

ShellKind shellKind()
{
    // A plain Bourne shell reads "echo x &> FILE" as a background echo and an emptied file.
    const auto answerOf = [](const QString &line) {
        ShellRequest request;
        request.line = line;
        return runShell(request).output;
    };
    static const ShellKind kind = answerOf(u"echo x &> /dev/null; wait"_s).isEmpty()
                                      ? ShellKind::KnowsAmpersandRedirect
                                      : ShellKind::PlainBourne;
    return kind;
}

} // namespace tools
