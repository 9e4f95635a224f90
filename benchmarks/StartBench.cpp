#include "Bench.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

/// Peak memory of a running process in MB, as Linux counts it; 0 where it can't be told.
double peakMegabytes(qint64 pid)
{
    QFile status(u"/proc/%1/status"_s.arg(pid));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024;
    }
    return 0;
}

double peakWhileConverting(const QString &cli, const QString &clip)
{
    const QTemporaryDir folder;
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(cli, {u"--save-dir"_s, folder.path(), u"--defaults"_s, folder.filePath(u"defaults.json"_s),
                        u"convert"_s, clip, u"--device"_s, u"PS3"_s, u"--video"_s, u"1pass"_s,
                        u"--video-bitrate"_s, u"1500"_s});
    process.waitForStarted();
    double peak = 0;
    while (!process.waitForFinished(50))
        peak = std::max(peak, peakMegabytes(process.processId()));
    return peak;
}

} // namespace

int start(const QString &cli, const QString &clip, int rounds)
{
    const QTemporaryDir folder;
    const QStringList words{u"--defaults"_s, folder.filePath(u"defaults.json"_s), u"prefs"_s, u"list"_s};
    runQuietly(cli, words); // the tools are unpacked by now
    QList<double> versions;
    QList<double> settings;
    for (int round = 0; round < rounds; ++round) {
        versions.append(seconds([&] { runQuietly(cli, {u"--version"_s}); }));
        settings.append(seconds([&] { runQuietly(cli, words); }));
    }
    say(u"start to end of --version: median %1 ms; of prefs list (settings read, tools looked at): median %2 ms"_s
            .arg(median(versions) * 1000, 0, 'f', 1)
            .arg(median(settings) * 1000, 0, 'f', 1));
    say(u"peak memory of the cli while it converts: %1 MB; aim: below 40 MB"_s.arg(
        peakWhileConverting(cli, clip), 0, 'f', 1));
    return 0;
}

} // namespace bench
