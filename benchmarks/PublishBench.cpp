#include "Bench.h"
#include "CliRun.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <optional>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr double mostShare = 1.05;
constexpr double mostSecondsBehindTheTool = 0.3;

double secondsOf(const timeval &time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// CPU time of all programs that were started and have ended so far, with what these started.
double cpuOfPrograms()
{
    rusage usage = {};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    return secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
}

struct Cost
{
    double seconds = 0;
    double cpu = 0;
};

Cost costOf(const std::function<void()> &work)
{
    const double before = cpuOfPrograms();
    Cost cost;
    cost.seconds = seconds(work);
    cost.cpu = cpuOfPrograms() - before;
    return cost;
}

/// The program, from its job's start to its done event, beside the bare tool and a flush, alternating. Ratios
/// are taken round by round: what others run on the machine changes from round to round, not within one.
/// Without an aim it is only measured.
bool measureShare(const QString &name, const QString &cli, const QStringList &words, int rounds,
                  std::optional<double> aim)
{
    const Command bare = bareCommand(cli, words);
    QList<double> wall;
    QList<double> cpu;
    for (int round = 0; round < rounds; ++round) {
        bool isFine = false;
        QFile::remove(bare.output);
        double job = -1;
        const double start = costOf([&] { bareCommand(cli, words); }).cpu; // and opening the film
        Cost ours = costOf([&] { job = runJob(cli, words).seconds; });
        ours = {job, ours.cpu - start};
        QFile::remove(bare.output);
        const Cost theirs = costOf([&] {
            isFine =
                job >= 0 && runQuietly(bare.program, bare.arguments) && runQuietly(u"sync"_s, {bare.output});
        });
        if (!isFine)
            return false;
        wall.append(ours.seconds / theirs.seconds);
        cpu.append(ours.cpu / theirs.cpu);
        say(u"round %1: %2 %3 s (CPU %4 s), bare tool and sync %5 s (CPU %6 s)"_s.arg(round + 1)
                .arg(name)
                .arg(ours.seconds, 0, 'f', 2)
                .arg(ours.cpu, 0, 'f', 2)
                .arg(theirs.seconds, 0, 'f', 2)
                .arg(theirs.cpu, 0, 'f', 2));
    }
    say(u"%1, %2 rounds: median of the ratios %3 (CPU %4)%5"_s.arg(name)
            .arg(rounds)
            .arg(median(wall), 0, 'f', 3)
            .arg(median(cpu), 0, 'f', 3)
            .arg(aim ? u"; aim: at most %1"_s.arg(*aim, 0, 'f', 2) : QString()));
    return true;
}

/// Whether a child of that process, or of one of them, is called so.
bool runsBelow(qint64 pid, const QByteArray &name)
{
    const QDir threads(u"/proc/%1/task"_s.arg(pid));
    for (const QString &thread : threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile children(threads.filePath(thread + u"/children"_s));
        if (!children.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray &child : children.readAll().split(' ')) {
            const qint64 id = child.toLongLong();
            QFile called(u"/proc/%1/comm"_s.arg(id));
            if (id > 0 && ((called.open(QIODevice::ReadOnly) && called.readAll().trimmed() == name) ||
                           runsBelow(id, name)))
                return true;
        }
    }
    return false;
}

/// Seconds from the end of the tool to the end of the job; negative when it failed.
double secondsBehindTheTool(const QString &cli, const QStringList &words)
{
    QProcess process;
    process.start(cli, words);
    QElapsedTimer behind;
    bool isStarted = false;
    bool hasRun = false;
    double result = -1;
    while (process.state() != QProcess::NotRunning || process.canReadLine()) {
        process.waitForReadyRead(1);
        while (process.canReadLine()) {
            const QJsonObject event = QJsonDocument::fromJson(process.readLine()).object();
            isStarted = isStarted || event.value(u"event"_s) == u"started"_s;
            if (event.value(u"event"_s) == u"done"_s && event.value(u"outcome"_s) == u"ok"_s &&
                behind.isValid())
                result = static_cast<double>(behind.nsecsElapsed()) / 1e9;
        }
        const bool runs = isStarted && !behind.isValid() && runsBelow(process.processId(), "mkvmerge");
        if (hasRun && !runs && !behind.isValid())
            behind.start();
        hasRun = hasRun || runs;
    }
    return result;
}

bool measureEnd(const QString &name, const QString &cli, const QStringList &words, const QString &output,
                int rounds)
{
    QList<double> values;
    for (int round = 0; round < rounds; ++round) {
        values.append(secondsBehindTheTool(cli, words));
        QFile::remove(output);
        if (values.constLast() < 0)
            return false;
    }
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    say(u"%1, %2 rounds: %3 s from the tool's end to the job's (%4 to %5 s); aim: at most %6 s"_s.arg(name)
            .arg(rounds)
            .arg(median(values), 0, 'f', 3)
            .arg(*least, 0, 'f', 3)
            .arg(*most, 0, 'f', 3)
            .arg(mostSecondsBehindTheTool, 0, 'f', 1));
    return true;
}

QStringList commonWords(const QTemporaryDir &folder)
{
    return {u"--json"_s, u"--save-dir"_s, folder.path(), u"--defaults"_s,
            folder.filePath(u"defaults.json"_s)};
}

int told(bool isFine)
{
    if (!isFine)
        say(u"a run failed"_s);
    return isFine ? 0 : 1;
}

} // namespace

int publish(const QString &cli, const QString &film, int rounds)
{
    const QTemporaryDir folder;
    const QStringList remux = commonWords(folder) + QStringList{u"remux"_s, film, u"--force"_s};
    const bool isFine = measureShare(u"remux"_s, cli, remux, rounds, mostShare);
    const QStringList proved = remux + QStringList{u"--verify"_s};
    return told(measureShare(u"remux --verify"_s, cli, proved, rounds, std::nullopt) && isFine);
}

int publishEnd(const QString &cli, const QString &film, int rounds)
{
    const QTemporaryDir folder;
    const QStringList remux = commonWords(folder) + QStringList{u"remux"_s, film, u"--force"_s};
    return told(
        measureEnd(u"large remux"_s, cli, remux, bareCommand(cli, remux).output, std::min(rounds, 5)));
}

} // namespace bench
