#include "CliRun.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <algorithm>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr int lookMs = 50;

qint64 residentBytes(qint64 pid)
{
    QFile file(u"/proc/%1/statm"_s.arg(pid));
    const bool isThere = file.open(QIODevice::ReadOnly);
    return isThere ? file.readAll().split(' ').value(1).toLongLong() * ::sysconf(_SC_PAGESIZE) : 0;
}

void look(JobRun &run, qint64 pid)
{
    const qint64 bytes = residentBytes(pid);
    if (bytes == 0)
        return;
    run.smallest = run.smallest == 0 ? bytes : std::min(run.smallest, bytes);
    run.largest = std::max(run.largest, bytes);
}

} // namespace

QList<Command> bareCommands(const QString &cli, const QStringList &words)
{
    QProcess process;
    process.start(cli, words + QStringList{u"--dry-run"_s});
    process.waitForFinished(-1);
    QList<Command> commands;
    while (process.canReadLine()) {
        const auto object = QJsonDocument::fromJson(process.readLine()).object();
        Command command;
        command.program = object.value(u"program"_s).toString();
        const auto list =
            object.value(object.contains(u"launched"_s) ? u"launched"_s : u"arguments"_s).toArray();
        for (const auto &word : list)
            command.arguments.append(word.toString());
        command.output = object.value(u"output"_s).toString();
        commands.append(command);
    }
    return commands;
}

Command bareCommand(const QString &cli, const QStringList &words)
{
    return bareCommands(cli, words).value(0);
}

JobRun runJob(const QString &cli, const QStringList &words)
{
    QProcess process;
    QElapsedTimer timer;
    JobRun run;
    QObject::connect(&process, &QProcess::readyReadStandardOutput, &process, [&] {
        while (process.canReadLine()) {
            const auto event = QJsonDocument::fromJson(process.readLine()).object();
            if (event.value(u"event"_s) == u"started"_s)
                timer.start();
            if (event.value(u"event"_s) == u"done"_s && event.value(u"outcome"_s) == u"ok"_s)
                run.seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
        }
    });
    process.start(cli, words);
    while (!process.waitForFinished(lookMs) && process.state() != QProcess::NotRunning) {
        if (timer.isValid() && run.seconds < 0)
            look(run, process.processId());
    }
    return run;
}

} // namespace bench
