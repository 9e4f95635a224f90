#include "Bench.h"
#include "CliRun.h"

#include <QFile>
#include <QTemporaryDir>
#include <QThreadPool>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

/// One look at each file, as many at a time as there are cores.
void probeAll(const QStringList &files)
{
    QThreadPool pool;
    for (const QString &file : files) {
        pool.start([file] {
            runQuietly(u"ffprobe"_s, {u"-i"_s, file, u"-show_streams"_s, u"-show_data_hash"_s, u"md5"_s,
                                      u"-print_format"_s, u"json"_s});
        });
    }
    pool.waitForDone();
}

} // namespace

int joins(const QString &cli, const QString &film, int count, int rounds)
{
    const QTemporaryDir folder;
    QStringList files;
    for (int i = 0; i < count; ++i) {
        files.append(folder.filePath(u"%1.%2"_s.arg(i).arg(film.section(u'.', -1))));
        QFile::copy(film, files.constLast());
    }
    const QStringList words =
        QStringList{u"--json"_s, u"--defaults"_s, folder.filePath(u"defaults.json"_s), u"join"_s} + files;
    const Command bare = bareCommand(cli, words);
    QList<double> starts;
    QList<double> probes;
    for (int round = 0; round < rounds; ++round) {
        probes.append(seconds([&] { probeAll(files); }));
        const JobRun run = runJob(cli, words + QStringList{u"--force"_s});
        QFile::remove(bare.output);
        bool isFine = false;
        const double tool = seconds([&] { isFine = runQuietly(bare.program, bare.arguments); });
        QFile::remove(bare.output);
        if (run.seconds < 0 || !isFine) {
            say(u"a run failed"_s);
            return 1;
        }
        starts.append(run.seconds - tool);
        say(u"round %1: join of %2 files %3 s, its tool alone %4 s, bare probes %5 s"_s.arg(round + 1)
                .arg(count)
                .arg(run.seconds, 0, 'f', 2)
                .arg(tool, 0, 'f', 2)
                .arg(probes.constLast(), 0, 'f', 2));
    }
    const double start = median(starts);
    const double bareProbes = median(probes);
    say(u"join of %1 files: before its tool median %2 s; bare probes on all cores: median %3 s; ratio %4; "
        u"aim: at "
        "most 5 s more"_s.arg(count)
            .arg(start, 0, 'f', 2)
            .arg(bareProbes, 0, 'f', 2)
            .arg(start / bareProbes, 0, 'f', 2));
    return 0;
}

} // namespace bench
