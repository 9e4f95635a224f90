#pragma once

#include <QString>
#include <QStringList>

namespace bench {

/// A tool as the program launches it.
struct Command
{
    QString program;
    QStringList arguments;
    QString output;
};

/// One job of the command-line program.
struct JobRun
{
    double seconds = -1; ///< between its "started" and its "done" event; negative when it failed
    qint64 smallest = 0; ///< resident memory of the program meanwhile, in bytes
    qint64 largest = 0;
};

/// The commands that the program would launch.
QList<Command> bareCommands(const QString &cli, const QStringList &words);
/// The first of them.
Command bareCommand(const QString &cli, const QStringList &words);
JobRun runJob(const QString &cli, const QStringList &words);

} // namespace bench
