#include "Bench.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <csignal>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr double aimSeconds = 1;
constexpr int interrupted = 128 + SIGINT;
constexpr int tries = 5; ///< for a stop that comes before the work has ended

/// What is stopped, and what standard output says, and how often, when a tool is in the middle of its work.
struct Work
{
    QString name;
    QStringList words;
    QByteArray sign;
    int times = 0;
};

QList<qint64> childrenOf(qint64 pid)
{
    QList<qint64> found;
    const QDir threads(u"/proc/%1/task"_s.arg(pid));
    for (const QString &thread : threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(threads.filePath(thread + u"/children"_s));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray &child : file.readAll().split(' ')) {
            if (const qint64 id = child.toLongLong(); id > 0)
                found << id << childrenOf(id);
        }
    }
    return found;
}

bool anyRuns(const QList<qint64> &pids)
{
    return std::any_of(pids.begin(), pids.end(),
                       [](qint64 pid) { return ::kill(static_cast<pid_t>(pid), 0) == 0; });
}

/// Seconds from an interrupt to the end of the program and of all its tools; negative when the work had ended
/// before.
double stopped(const QString &cli, const Work &work)
{
    QProcess process;
    process.start(cli, work.words);
    QByteArray said;
    QList<qint64> tools;
    while (process.state() != QProcess::NotRunning &&
           (tools.isEmpty() || said.count(work.sign) < work.times)) {
        process.waitForReadyRead(1);
        said += process.readAllStandardOutput();
        tools = childrenOf(process.processId());
    }
    QElapsedTimer clock;
    clock.start();
    if (process.state() != QProcess::NotRunning)
        ::kill(static_cast<pid_t>(process.processId()), SIGINT);
    process.waitForFinished(-1);
    while (anyRuns(tools))
        QThread::msleep(1);
    return process.exitCode() == interrupted ? static_cast<double>(clock.nsecsElapsed()) / 1e9 : -1;
}

bool measure(const QString &cli, const Work &work, int rounds)
{
    QList<double> values;
    for (int round = 0; round < rounds; ++round) {
        double value = -1;
        for (int attempt = 0; value < 0 && attempt < tries; ++attempt)
            value = stopped(cli, work);
        if (value < 0)
            return false;
        values.append(value);
    }
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    say(u"stop while %1, %2 rounds: median %3 s (%4 to %5 s); aim: at most %6 s"_s.arg(work.name)
            .arg(rounds)
            .arg(median(values), 0, 'f', 3)
            .arg(*least, 0, 'f', 3)
            .arg(*most, 0, 'f', 3)
            .arg(aimSeconds, 0, 'f', 0));
    return true;
}

} // namespace

int stop(const QString &cli, const QString &film, const QString &half, int rounds)
{
    const QTemporaryDir folder;
    const QStringList general{u"--json"_s, u"--save-dir"_s, folder.path(), u"--defaults"_s,
                              folder.filePath(u"defaults.json"_s)};
    const QList<Work> works{
        {u"opening"_s, general + QStringList{u"probe"_s} + QStringList(20, film), {}},
        {u"converting"_s, general + QStringList{u"convert"_s, film, u"--video"_s, u"1pass"_s}, "%\"", 3},
        {u"joining"_s, general + QStringList{u"join"_s, half, half, half, half}, "\"started\"", 1}};
    bool isFine = true;
    for (const Work &work : works)
        isFine = measure(cli, work, rounds) && isFine;
    if (!isFine)
        say(u"work had ended before it was stopped"_s);
    return isFine ? 0 : 1;
}

} // namespace bench
