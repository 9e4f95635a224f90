#include "../Bench.h"
#include "WindowBench.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr int patienceMs = 30000;
constexpr double bytesPerMegabyte = 1e6;
constexpr double milliseconds = 1000;

struct Start
{
    double seconds = -1; ///< negative when no window came
    double megabytes = 0;
};

Start startOf(const QString &program, const QStringList &arguments, const QString &plugins)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_PLUGIN_PATH"_s, plugins);
    environment.insert(u"QT_QPA_GENERIC_PLUGINS"_s, u"firstpaint"_s);
    QProcess process;
    process.setProcessEnvironment(environment);
    QElapsedTimer clock;
    clock.start();
    process.start(program, arguments);
    Start start;
    while (!process.canReadLine()) {
        if (!process.waitForReadyRead(patienceMs))
            return start;
    }
    start.seconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
    start.megabytes = process.readLine().simplified().split(' ').value(1).toDouble() / bytesPerMegabyte;
    process.waitForFinished(patienceMs);
    return start;
}

/// The starts of one program.
struct Starts
{
    QList<double> times;
    QList<double> memory;

    bool add(const Start &start)
    {
        times.append(start.seconds * milliseconds);
        memory.append(start.megabytes);
        return start.seconds >= 0;
    }
};

} // namespace

int startWindow(const QString &program, const QString &empty, const QString &plugins, int rounds)
{
    const QTemporaryDir folder;
    const QStringList settings{u"--defaults"_s, folder.filePath(u"defaults.json"_s)};
    (void)startOf(program, settings, plugins); // a user's very first start unpacks the tools
    (void)startOf(empty, {}, plugins);
    Starts ours;
    Starts theirs;
    for (int round = 0; round < rounds; ++round) {
        if (!ours.add(startOf(program, settings, plugins)) || !theirs.add(startOf(empty, {}, plugins))) {
            say(u"start: a program showed no window"_s);
            return 1;
        }
    }
    const double time = median(ours.times);
    const double memory = median(ours.memory);
    say(u"start to a painted window: median %1 ms; empty Qt window %2 ms; ratio %3, aim: at most 1.5"_s
            .arg(time, 0, 'f', 1)
            .arg(median(theirs.times), 0, 'f', 1)
            .arg(time / median(theirs.times), 0, 'f', 2));
    say(u"memory by then: median %1 MB; empty Qt window %2 MB; ratio %3, aim: at most 1.3"_s
            .arg(memory, 0, 'f', 1)
            .arg(median(theirs.memory), 0, 'f', 1)
            .arg(memory / median(theirs.memory), 0, 'f', 2));
    return 0;
}

} // namespace bench
