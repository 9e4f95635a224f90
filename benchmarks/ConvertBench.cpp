#include "Bench.h"
#include "CliRun.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

QStringList cliWords(const QString &clip, const QString &folder, const QString &defaults)
{
    return {u"--json"_s, u"--save-dir"_s, folder,        u"--defaults"_s, defaults,   u"convert"_s,
            clip,        u"--device"_s,   u"iPhone 4"_s, u"--video"_s,    u"1pass"_s, u"--video-bitrate"_s,
            u"1500"_s,   u"--force"_s};
}

} // namespace

int convert(const QString &cli, const QString &clip, int rounds)
{
    const QTemporaryDir folder;
    const QStringList words = cliWords(clip, folder.path(), folder.filePath(u"defaults.json"_s));
    const Command bare = bareCommand(cli, words);
    QList<double> ours;
    QList<double> theirs;
    for (int round = 0; round < rounds; ++round) {
        QFile::remove(bare.output);
        ours.append(runJob(cli, words).seconds);
        QFile::remove(bare.output);
        bool isFine = false;
        theirs.append(seconds([&] { isFine = runQuietly(bare.program, bare.arguments); }));
        if (ours.last() < 0 || !isFine) {
            say(u"a conversion failed"_s);
            return 1;
        }
        say(u"round %1: convert %2 s, bare ffmpeg %3 s"_s.arg(round + 1)
                .arg(ours.last(), 0, 'f', 2)
                .arg(theirs.last(), 0, 'f', 2));
    }
    const double a = median(ours);
    const double b = median(theirs);
    say(u"convert: median %1 s; bare ffmpeg: median %2 s; ratio %3, difference %4 s; aim: at most %5 s"_s
            .arg(a, 0, 'f', 2)
            .arg(b, 0, 'f', 2)
            .arg(a / b, 0, 'f', 3)
            .arg(a - b, 0, 'f', 2)
            .arg(b * 1.02 + 0.2, 0, 'f', 2));
    return 0;
}

} // namespace bench
