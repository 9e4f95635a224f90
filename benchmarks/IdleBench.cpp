#include "Bench.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr int settleSeconds = 5;
constexpr int lookSeconds = 20;
constexpr int pollSeconds = 5;
constexpr double aimBytes = 1000; // a film

/// The sum of a figure in the status files of a process's threads.
qint64 figureOf(qint64 pid, const QByteArray &name)
{
    qint64 sum = 0;
    const QDir threads(u"/proc/%1/task"_s.arg(pid));
    for (const QString &thread : threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(threads.filePath(thread + u"/status"_s));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray &line : file.readAll().split('\n')) {
            if (line.startsWith(name + ':'))
                sum += line.mid(name.size() + 1).trimmed().split(' ').constFirst().toLongLong();
        }
    }
    return sum;
}

qint64 memoryOf(qint64 pid)
{
    QFile file(u"/proc/%1/statm"_s.arg(pid));
    const QByteArrayList pages =
        file.open(QIODevice::ReadOnly) ? file.readAll().split(' ') : QByteArrayList();
    return (pages.value(1).toLongLong() - pages.value(2).toLongLong()) * ::sysconf(_SC_PAGESIZE);
}

void tellIdle(const QString &name, QProcess &process, int most)
{
    QThread::sleep(settleSeconds);
    const qint64 before = figureOf(process.processId(), "voluntary_ctxt_switches");
    QThread::sleep(lookSeconds);
    const qint64 wakes = figureOf(process.processId(), "voluntary_ctxt_switches") - before;
    say(u"%1, idle: %2 wake-ups in %3 s (aim: at most %4)"_s.arg(name).arg(wakes).arg(lookSeconds).arg(most));
    process.terminate();
    process.waitForFinished();
}

/// A watch of a folder in which nothing lies, with settings of its own.
struct Watch
{
    explicit Watch(const QString &cli)
    {
        const QString settings = place.filePath(u"settings.json"_s);
        QDir(place.path()).mkpath(u"in"_s);
        QDir(place.path()).mkpath(u"out"_s);
        if (!runQuietly(cli, {u"--defaults"_s, settings, u"presets"_s, u"add"_s, u"settings"_s, u"Set"_s}))
            qFatal("The preset can't be stored.");
        process.start(cli, {u"--defaults"_s, settings, u"watch"_s, place.filePath(u"in"_s),
                            u"--track-preset"_s, u"All Tracks"_s, u"--settings-preset"_s, u"Set"_s,
                            u"--save-dir"_s, place.filePath(u"out"_s), u"--no-keep-logs"_s});
        if (!process.waitForReadyRead())
            qFatal("The watch does not begin.");
    }
    /// Lets so many more films land there and waits until each has ended.
    void take(const QString &film, int more)
    {
        for (int i = 0; i < more; ++i) {
            const QString name = place.filePath(u"in/Some film of usual length %1.mkv"_s.arg(++films));
            if (!QFile::copy(film, name))
                qFatal("Can't write %s.", qPrintable(name));
        }
        while (ended < films && process.waitForReadyRead(-1)) {
            for (const QByteArray &line : process.readAllStandardOutput().split('\n'))
                ended += line.contains("  done ") || line.contains("  failed ") ? 1 : 0;
        }
    }

    QTemporaryDir place;
    QProcess process;
    int films = 0;
    int ended = 0;
};

} // namespace

int idle(const QString &cli, const QString &window)
{
    constexpr int polls = lookSeconds / pollSeconds;
    Watch watch(cli);
    tellIdle(u"watch"_s, watch.process, polls + 1);
    QTemporaryDir place;
    QProcess process;
    process.start(window, {u"--defaults"_s, place.filePath(u"settings.json"_s)});
    if (!process.waitForStarted())
        return 1;
    tellIdle(u"window"_s, process, polls + 1);
    return 0;
}

int watched(const QString &cli, const QString &film, int count)
{
    Watch watch(cli);
    watch.take(film, count / 4); // whatever is made once is made
    const qint64 before = memoryOf(watch.process.processId());
    watch.take(film, count - count / 4);
    const qint64 after = memoryOf(watch.process.processId());
    const double each = static_cast<double>(after - before) / (count - count / 4);
    say(u"watch, %1 films: memory %2 MB after %3, %4 MB after all, %5 bytes a film (aim: at most %6)"_s
            .arg(count)
            .arg(static_cast<double>(before) / 1e6, 0, 'f', 2)
            .arg(count / 4)
            .arg(static_cast<double>(after) / 1e6, 0, 'f', 2)
            .arg(each, 0, 'f', 0)
            .arg(aimBytes));
    watch.process.terminate();
    watch.process.waitForFinished();
    return each <= aimBytes ? 0 : 1;
}

} // namespace bench
