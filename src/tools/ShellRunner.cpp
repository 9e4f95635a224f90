#include "tools/ShellRunner.h"

#include "tools/ProcessGroup.h"
#include "tools/ShellStreams.h"
#include "tools/ToolEnvironment.h"
#include "tools/ToolPlaces.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QSocketNotifier>
#include <QStringDecoder>
#include <QThread>
#include <QTimer>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace tools {

namespace {

constexpr int sliceMs = 50;

/// One shell line on its way: the shell itself and its two streams, which a program that it left in
/// the background can hold open longer.
class Run final
{
public:
    explicit Run(const ShellRequest &request);
    ShellReply reply() const;
    void waitBlocking();
    void waitWithEventLoop();

private:
    bool hasEnded() const { return m_process.state() == QProcess::NotRunning && m_streams.haveEnded(); }
    bool mustStop() const;
    void endNow();

    const ShellRequest &m_request;
    ShellStreams m_streams;
    QProcess m_process;
    QElapsedTimer m_clock;
    qint64 m_leader = 0;
};

Run::Run(const ShellRequest &request)
    : m_request(request)
{
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.setProcessEnvironment(request.environment);
    m_process.setWorkingDirectory(request.workingFolder);
    m_clock.start();
    if (m_streams.areOpen())
        m_leader = startInOwnGroup(m_process, u"/bin/sh"_s, {u"-c"_s, request.line},
                                   [this] { m_streams.claimInChild(); });
    m_streams.closeWriters();
}

bool Run::mustStop() const
{
    return (m_request.stop && *m_request.stop) ||
           (m_request.timeoutMs >= 0 && m_clock.elapsed() >= m_request.timeoutMs);
}

void Run::endNow()
{
    killGroupLedBy(m_leader, m_process.state() == QProcess::NotRunning ? Leader::Ended : Leader::Runs);
    m_process.waitForFinished(1000);
    m_streams.waitAndRead(0); // what came before; a process that left the group is not waited for
}

void Run::waitBlocking()
{
    const int slice = m_request.stop || m_request.timeoutMs >= 0 ? sliceMs : -1;
    while (!hasEnded()) {
        if (!m_streams.haveEnded())
            m_streams.waitAndRead(slice);
        else
            m_process.waitForFinished(slice);
        if (!hasEnded() && mustStop())
            return endNow();
    }
}

void Run::waitWithEventLoop()
{
    if (hasEnded())
        return;
    QEventLoop loop;
    const auto quitAtEnd = [&] {
        if (hasEnded() || mustStop())
            loop.quit();
    };
    QSocketNotifier output(m_streams.reader(ShellStreams::Output), QSocketNotifier::Read);
    QSocketNotifier error(m_streams.reader(ShellStreams::Error), QSocketNotifier::Read);
    const auto serve = [&](QSocketNotifier &notifier, ShellStreams::Stream stream) {
        QObject::connect(&notifier, &QSocketNotifier::activated, &loop, [&, stream] {
            m_streams.read(stream);
            notifier.setEnabled(!m_streams.hasEnded(stream));
            quitAtEnd();
        });
    };
    serve(output, ShellStreams::Output);
    serve(error, ShellStreams::Error);
    QObject::connect(&m_process, &QProcess::finished, &loop, quitAtEnd);
    QObject::connect(&m_process, &QProcess::errorOccurred, &loop, quitAtEnd);
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &loop, quitAtEnd);
    watch.start(sliceMs);
    loop.exec();
    if (!hasEnded())
        endNow();
}

ShellReply Run::reply() const
{
    ShellReply reply;
    reply.output = m_streams.bytes(ShellStreams::Output);
    reply.error = m_streams.bytes(ShellStreams::Error);
    if (!m_streams.areOpen())
        reply.error = "no pipe: " + qt_error_string(EMFILE).toUtf8();
    else if (m_process.error() == QProcess::FailedToStart)
        reply.error = m_process.errorString().toUtf8();
    else if (m_process.exitStatus() == QProcess::NormalExit)
        reply.status = m_process.exitCode();
    return reply;
}

bool isMainThread()
{
    const auto *application = QCoreApplication::instance();
    return application != nullptr && QThread::currentThread() == application->thread();
}

} // namespace

QString ShellReply::text() const
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(selected());
    if (decoder.hasError()) // not ASCII either, which is a part of UTF-8
        return {};
    if (text.endsWith(u'\n'))
        text.chop(1);
    return text.isNull() ? u""_s : text;
}

ShellRequest toolRequest(const QString &line, const QUrl &tool, const ToolPlaces &places)
{
    ShellRequest request;
    request.line = line;
    request.workingFolder = places.workingFolder();
    request.environment = shellEnvironment(tool);
    return request;
}

ShellRequest commandRequest(const QString &line)
{
    ShellRequest request;
    request.line = line;
    request.environment.insert(u"LC_ALL"_s,
                               u"C"_s); // else grep takes foreign bytes in a log for a binary file
    return request;
}

ShellReply runShell(const ShellRequest &request)
{
    Run run(request);
    if (request.waiting == Waiting::WithEventLoop && isMainThread())
        run.waitWithEventLoop();
    else
        run.waitBlocking();
    return run.reply();
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
