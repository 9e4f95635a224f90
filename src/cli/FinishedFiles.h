#pragma once

#include "cli/Command.h"
#include "tools/ToolProcess.h"

#include <QObject>
#include <QStringList>

class KXJob;

namespace cli {

class CommandLine;

/// What is done with each finished file as --print and --exec ask for it. The command of --exec is one
/// program; it gets the path as its only argument, no shell sees it, and it runs for one file after another
/// beside the jobs. Lives for one run.
class FinishedFiles final : public QObject
{
    Q_OBJECT

public:
    explicit FinishedFiles(Session &session);

    /// A null text, or why the command line can't ask for that.
    static QString problemWith(const CommandLine &line);

    /// What a job has made, unless it failed or was stopped.
    void take(const KXJob &job);
    /// Returns when the command has run for every file, or the program was interrupted; Warnings when it
    /// failed for one.
    ExitStatus finish();

private:
    void startNext();
    void ended(const QString &path);
    void pass(tools::ToolProcess::Channel channel, const QByteArray &bytes);

    Session &m_session;
    QString m_command; ///< empty: none
    QStringList m_waiting;
    tools::ToolProcessPointer m_running;
    int m_openChannels = 0;
    ExitStatus m_worst = ExitStatus::AllWell;
};

} // namespace cli
