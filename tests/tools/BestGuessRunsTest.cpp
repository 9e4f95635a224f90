// Films that are guessed for a device and converted, by the command line and by presets.
#include "selection/Targets.h"
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/PresetLists.h"
#include "support/PresetRecords.h"
#include "support/Seeds.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::shownStreams;

namespace {

/// A film of 1 s: its picture and its sound as ffmpeg is told them, and which devices play these, of
/// "small" (480p), "hd" (720p) and "full" (1080p), and "ac3" or "surround" among them.
struct Film
{
    const char *name;
    const char *picture;
    const char *sound;
    QStringList playsPicture;
    QStringList playsSound;
};

const QStringList small{u"iPod (All non-Touch)"_s, u"iPhone (3 and Earlier)"_s,
                        u"iPod Touch (3 and Earlier)"_s};
const QStringList hd{u"iPad (2 and Earlier)"_s, u"Apple TV 2"_s, u"iPhone 4"_s,
                     u"iPod Touch (4 and Later)"_s};
const QStringList full{u"Apple TV (3 and Later)"_s,
                       u"iPad (3 and Later)"_s,
                       u"iPad Mini (All)"_s,
                       u"iPhone (4S and Later)"_s,
                       u"PS3"_s,
                       u"Xbox"_s};
const QStringList passingAc3{u"Apple TV 2"_s, u"Apple TV (3 and Later)"_s, u"PS3"_s};

QList<Film> films()
{
    const QStringList all = small + hd + full;
    return {
        {"baseline", "-s 320x240 -c:v libx264 -profile:v baseline -level 13", "-ac 2 -c:a aac -b:a 96k", all,
         all},
        {"main", "-s 1280x720 -c:v libx264 -profile:v main -level 31", "-ac 2 -c:a ac3 -b:a 192k", hd + full,
         passingAc3},
        {"high",
         "-s 1920x1080 -c:v libx264 -preset ultrafast -profile:v high -x264-params 8x8dct=1 -level 40",
         "-ac 6 -c:a ac3 -b:a 384k", full, passingAc3},
        {"mpeg2", "-s 720x576 -c:v mpeg2video -b:v 3000k", "-ac 2 -c:a mp2 -b:a 192k", {}, {}},
        {"mpeg4", "-s 640x360 -c:v mpeg4 -b:v 800k", "-ac 2 -c:a libmp3lame -b:a 128k", {}, {}},
        {"surround",
         "-s 640x480 -c:v libx264 -profile:v baseline -level 30 -b:v 500k",
         "-ac 6 -c:a aac -b:a 320k",
         all,
         {}},
    };
}

QString clipOf(const Film &film)
{
    return support::clip(u"guess-%1.mkv"_s.arg(QString::fromLatin1(film.name)), [&](const QString &path) {
        support::runProgram(
            u"ffmpeg"_s,
            u"-nostdin -y -v error -f lavfi -i testsrc2=s=320x240:r=25:d=1 -f lavfi -i sine=d=1:r=48000 -pix_fmt yuv420p"_s
                    .split(u' ') +
                QString::fromLatin1(film.picture).split(u' ') + QString::fromLatin1(film.sound).split(u' ') +
                QStringList{path});
    });
}

int widestOf(const QString &device)
{
    return small.contains(device) ? 720 : hd.contains(device) ? 1280 : 1920;
}

/// What the device should get of the sound: "aac 2", "aac 2, ac3 6".
QStringList expectedSound(const Film &film, const QString &device)
{
    const QString words = QString::fromLatin1(film.sound);
    const QString channels = words.section(u' ', 1, 1);
    if (words.contains(u"ac3"_s) && film.playsSound.contains(device))
        return {u"aac 2 und"_s, u"ac3 %1 und"_s.arg(channels)};
    if (film.playsSound.contains(device))
        return {u"aac %1 und"_s.arg(channels)};
    return passingAc3.contains(device) && channels == u"6"_s ? QStringList{u"aac 2 und"_s, u"ac3 6 und"_s}
                                                             : QStringList{u"aac 2 und"_s};
}

} // namespace

class BestGuessRunsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFilmForEveryDevice_data()
    {
        QTest::addColumn<int>("film");
        QTest::addColumn<QString>("device");
        QList<std::pair<int, QString>> rows;
        for (int film = 0; film < films().size(); ++film) {
            for (const QString &device : selection::deviceNames())
                rows.append({film, device});
        }
        for (const auto &[film, device] : support::drawn(rows, 5))
            QTest::addRow("%s for %s", films().at(film).name, qPrintable(device)) << film << device;
    }

    void everyFilmForEveryDevice()
    {
        QFETCH(int, film);
        QFETCH(QString, device);
        const Film made = films().at(film);
        const CliFixture cli;
        cli.clip(clipOf(made), u"film.mkv"_s);
        const auto run = cli.run(
            {u"convert"_s, u"film.mkv"_s, u"--device"_s, device, u"--auto"_s, u"speed"_s, u"--json"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        const QJsonObject done = run.objects().constLast();
        const QString output = done.value(u"outputs"_s).toArray().at(0).toString();
        const QJsonObject picture = done.value(u"tracks"_s).toArray().at(0).toObject();
        const bool isCopied = picture.value(u"became"_s).toString() == u"copied"_s;
        QCOMPARE(isCopied, made.playsPicture.contains(device));
        QVERIFY(!picture.value(u"reason"_s).toString().isEmpty());
        const auto streams = support::streamsOf(output);
        QCOMPARE(streams.first().value(u"codec_name"_s).toString(), u"h264"_s);
        QVERIFY(streams.first().value(u"width"_s).toInt() <= widestOf(device));
        QCOMPARE(shownStreams(output).mid(1), expectedSound(made, device));
    }

    void aPresetThatGuesses()
    {
        CliFixture cli;
        cli.clip(clipOf(films().at(3)), u"film.mkv"_s);
        support::storePresets(cli, {},
                              {support::settingsPreset(u"Guess"_s, u"PS3"_s, u"video=3"_s),
                               support::settingsPreset(u"Nowhere"_s, u"MKV"_s, u"video=4"_s)});
        const auto plan =
            cli.run({u"convert"_s, u"film.mkv"_s, u"--settings-preset"_s, u"Guess"_s, u"--dry-run"_s});
        QVERIFY2(plan.status == 0, plan.error.constData());
        QCOMPARE(plan.lines().size(), 2); // two passes
        const auto other = cli.run({u"convert"_s, u"film.mkv"_s, u"--settings-preset"_s, u"Guess"_s,
                                    u"--auto"_s, u"speed"_s, u"--dry-run"_s});
        QCOMPARE(other.lines().size(), 1);
        const auto run = cli.run({u"convert"_s, u"film.mkv"_s, u"--settings-preset"_s, u"Nowhere"_s});
        QCOMPARE(run.status, 64);
        QVERIFY(run.said().contains(u"\"MKV\""_s));
    }
};

TESSARAY_TEST(BestGuessRunsTest)
#include "BestGuessRunsTest.moc"
