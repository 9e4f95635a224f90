#include "Bench.h"
#include "CliRun.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr double bytesPerMegabyte = 1e6;

/// One operation and the mkvmerge command that it launched, alternating.
bool measure(const QString &name, const QString &cli, const QStringList &words, int rounds)
{
    const Command bare = bareCommand(cli, words);
    QList<double> ours;
    QList<double> theirs;
    QList<double> growth;
    double most = 0;
    for (int round = 0; round < rounds; ++round) {
        QFile::remove(bare.output);
        const JobRun run = runJob(cli, words);
        QFile::remove(bare.output);
        bool isFine = false;
        theirs.append(seconds([&] { isFine = runQuietly(bare.program, bare.arguments); }));
        if (run.seconds < 0 || !isFine)
            return false;
        ours.append(run.seconds);
        growth.append(static_cast<double>(run.largest - run.smallest) / bytesPerMegabyte);
        most = std::max(most, static_cast<double>(run.largest) / bytesPerMegabyte);
        say(u"round %1: %2 %3 s, bare mkvmerge %4 s, memory grew by %5 MB"_s.arg(round + 1)
                .arg(name)
                .arg(ours.constLast(), 0, 'f', 2)
                .arg(theirs.constLast(), 0, 'f', 2)
                .arg(growth.constLast(), 0, 'f', 2));
    }
    const double a = median(ours);
    const double b = median(theirs);
    say(u"%1: median %2 s; bare mkvmerge: median %3 s; difference %4 s; aim: at most %5 s; memory at most %6 "
        "MB, grew by %7 MB"_s.arg(name)
            .arg(a, 0, 'f', 2)
            .arg(b, 0, 'f', 2)
            .arg(a - b, 0, 'f', 2)
            .arg(b * 1.02 + 0.2, 0, 'f', 2)
            .arg(most, 0, 'f', 1)
            .arg(median(growth), 0, 'f', 2));
    return true;
}

} // namespace

int mkv(const QString &cli, const QString &film, const QString &half, int rounds)
{
    const QTemporaryDir folder;
    const QString second = folder.filePath(u"second.mkv"_s);
    QFile::link(half, second);
    const QStringList common{u"--json"_s, u"--save-dir"_s, folder.path(), u"--defaults"_s,
                             folder.filePath(u"defaults.json"_s)};
    const bool isFine =
        measure(u"remux"_s, cli, common + QStringList{u"remux"_s, film, u"--force"_s}, rounds) &&
        measure(u"join"_s, cli, common + QStringList{u"join"_s, half, second, u"--force"_s}, rounds);
    if (!isFine)
        say(u"a run failed"_s);
    return isFine ? 0 : 1;
}

} // namespace bench
