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
    QString program;
    QStringList arguments;
    QList<double> times = {};
    QList<double> memory = {};

    bool once(const QString &plugins)
    {
        const Start start = startOf(program, arguments, plugins);
        times.append(start.seconds * milliseconds);
        memory.append(start.megabytes);
        return start.seconds >= 0;
    }
};

void compare(const Starts &ours, const Starts &theirs, const QString &what)
{
    const double time = median(ours.times) / median(theirs.times);
    const double memory = median(ours.memory) / median(theirs.memory);
    say(u"start: %1: median %2 ms, %3 MB: ratio %4 of its time (aim: at most 1.5), %5 of its memory (aim: at "
        "most 1.3)"_s.arg(what)
            .arg(median(theirs.times), 0, 'f', 1)
            .arg(median(theirs.memory), 0, 'f', 1)
            .arg(time, 0, 'f', 2)
            .arg(memory, 0, 'f', 2));
}

} // namespace

int startWindow(const QString &program, const QString &empty, const QString &plugins, int rounds)
{
    const QTemporaryDir folder;
    Starts ours{program, {u"--defaults"_s, folder.filePath(u"defaults.json"_s)}};
    Starts window{empty, {}};
    Starts bare{empty, {u"bare"_s}};
    for (int round = 0; round <= rounds; ++round) {
        if (!ours.once(plugins) || !window.once(plugins) || !bare.once(plugins)) {
            say(u"start: a program showed no window"_s);
            return 1;
        }
        if (round > 0)
            continue;
        for (Starts *starts : {&ours, &window, &bare}) { // the first one only fills the caches
            starts->times.clear();
            starts->memory.clear();
        }
    }
    say(u"start to a painted window: median %1 ms, peak memory %2 MB"_s.arg(median(ours.times), 0, 'f', 1)
            .arg(median(ours.memory), 0, 'f', 1));
    compare(ours, window, u"beside an empty main window"_s);
    compare(ours, bare, u"beside a bare widget"_s);
    return 0;
}

} // namespace bench
