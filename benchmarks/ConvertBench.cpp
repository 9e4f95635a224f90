#include "Bench.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

struct Command
{
    QString program;
    QStringList arguments;
    QString output;
};

QStringList twinWords(const QString &clip, const QString &folder, const QString &defaults)
{
    return {u"--json"_s, u"--save-dir"_s, folder,        u"--defaults"_s, defaults,   u"convert"_s,
            clip,        u"--device"_s,   u"iPhone 4"_s, u"--video"_s,    u"1pass"_s, u"--video-bitrate"_s,
            u"1500"_s,   u"--force"_s};
}

Command bareCommand(const QString &twin, const QStringList &words)
{
    QProcess process;
    process.start(twin, words + QStringList{u"--dry-run"_s});
    process.waitForFinished(-1);
    const auto object =
        QJsonDocument::fromJson(process.readAllStandardOutput().split('\n').value(0)).object();
    Command command;
    command.program = object.value(u"program"_s).toString();
    const auto list = object.value(object.contains(u"launched"_s) ? u"launched"_s : u"arguments"_s).toArray();
    for (const auto &word : list)
        command.arguments.append(word.toString());
    command.output = object.value(u"output"_s).toString();
    return command;
}

/// Seconds between the "started" and the "done" event; negative when the conversion failed.
double jobSeconds(const QString &twin, const QStringList &words)
{
    QProcess process;
    QElapsedTimer timer;
    double result = -1;
    QObject::connect(&process, &QProcess::readyReadStandardOutput, &process, [&] {
        while (process.canReadLine()) {
            const auto event = QJsonDocument::fromJson(process.readLine()).object();
            if (event.value(u"event"_s) == u"started"_s)
                timer.start();
            if (event.value(u"event"_s) == u"done"_s && event.value(u"outcome"_s) == u"ok"_s)
                result = static_cast<double>(timer.nsecsElapsed()) / 1e9;
        }
    });
    process.start(twin, words);
    process.waitForFinished(-1);
    return result;
}

} // namespace

int convert(const QString &twin, const QString &clip, int rounds)
{
    const QTemporaryDir folder;
    const QStringList words = twinWords(clip, folder.path(), folder.filePath(u"defaults.json"_s));
    const Command bare = bareCommand(twin, words);
    QList<double> ours;
    QList<double> theirs;
    for (int round = 0; round < rounds; ++round) {
        QFile::remove(bare.output);
        ours.append(jobSeconds(twin, words));
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
