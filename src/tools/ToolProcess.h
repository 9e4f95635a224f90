#pragma once

#include <QObject>
#include <QProcess>

#include <memory>
#include <optional>

namespace tools {

/// One running program: the process object of a converter. Made running by start() and shared by the
/// converter and its job. It drains both streams, closes standard input, leads a process group of its
/// own, and says exactly once for each stream that it has ended, also when the program never started.
/// The last holder may let go of it on any thread and while it reports.
class ToolProcess final : public QObject
{
    Q_OBJECT

public:
    enum class Channel { Output, Error };
    enum class End { StillRunning, Exited, Crashed, NotStarted };
    /// Merged: both streams come as Output, in the order in which the program wrote.
    enum class Streams { Apart, Merged };
    Q_ENUM(Channel)
    Q_ENUM(End)

    struct Request
    {
        QString program;
        QStringList arguments;
        QProcessEnvironment environment;
        QString workingFolder; ///< empty: ours
        Streams streams = Streams::Apart;
        bool atLowPriority = false; ///< for the processor; other programs go first
    };

    /// Signals come from the event loop, never from within this call.
    static std::shared_ptr<ToolProcess> start(const Request &request);
    /// Ends the whole group if it still runs.
    ~ToolProcess() override;

    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    bool isSuspended() const { return m_suspended; }
    qint64 processIdentifier() const { return m_process.processId(); }
    End end() const { return m_end; }
    /// No value while it runs, and when it crashed, was killed or never started.
    std::optional<int> exitStatus() const;
    /// The signal that ended it; no value where none did.
    std::optional<int> endingSignal() const;
    QString launchPath() const { return m_process.program(); }
    QStringList arguments() const { return m_process.arguments(); }

    void suspend();
    void resume();
    /// Asks the group to end; a suspended one is continued first, so that it can hear it.
    void terminate();
    /// Nothing that is still read is reported from here on.
    void closeReaders() { m_readersClosed = true; }
    /// Blocks until the program has ended; false when it still runs after that time (-1: no limit).
    bool waitUntilExit(int milliseconds);

Q_SIGNALS:
    void chunkRead(tools::ToolProcess::Channel channel, const QByteArray &bytes);
    void channelEnded(tools::ToolProcess::Channel channel);

private:
    ToolProcess();
    static void release(ToolProcess *tool);
    void report(Channel channel, const QByteArray &bytes);
    void read(Channel channel);
    void finish(End end);

    QProcess m_process;
    End m_end = End::StillRunning;
    bool m_suspended = false;
    bool m_readersClosed = false;
    bool m_reporting = false;
};

using ToolProcessPointer = std::shared_ptr<ToolProcess>;

} // namespace tools
