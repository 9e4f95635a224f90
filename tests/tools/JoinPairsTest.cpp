// Two films that are alike or differ in one thing are joined by the program: what comes out has all of both,
// or nothing comes out.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Seeds.h"
#include "support/TestMain.h"

#include <QFile>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// How a film of 4 s differs from the usual one.
struct Way
{
    QString name;
    QString words;              ///< ffmpeg's options for it, which stand behind the usual ones
    bool joins = false;         ///< whether a whole film can be made, in whichever order
    bool joinsBehindIt = false; ///< whether the usual film can follow it
    QString map = u"-map 0 -map 1"_s;
};

QList<Way> allWays()
{
    return {{u"alike"_s, {}, true},
            {u"rate"_s, u"-r 30"_s},
            {u"units"_s, u"-video_track_timescale 90000"_s, true},
            {u"samplerate"_s, u"-ar 44100"_s},
            {u"channels"_s, u"-ac 1"_s},
            {u"size"_s, u"-s 176x144"_s},
            {u"pixels"_s, u"-pix_fmt yuv444p"_s},
            {u"sound"_s, u"-c:a ac3"_s},
            {u"picture"_s, u"-c:v mpeg2video -pix_fmt yuv420p"_s},
            {u"order"_s, {}, false, false, u"-map 1 -map 0"_s},
            {u"silent"_s, {}, false, false, u"-map 0"_s},
            {u"subtitled"_s, u"-c:s SUBTITLE"_s, false, true, u"-map 0 -map 1 -map 2"_s}};
}

bool exists(const Way &way, const QString &container)
{
    if (way.name == u"units"_s)
        return container == u"mp4"_s || container == u"mov"_s; // the others have units of their own
    return way.name != u"subtitled"_s || (container != u"avi"_s && container != u"ts"_s);
}

/// The usual film of a container: 160x120, 25 frames a second, and a sound of 48 kHz in two channels. In an
/// AVI pictures that know other pixel formats too.
QString film(const Way &way, const QString &container)
{
    return clip(u"join-%1.%2"_s.arg(way.name, container), [&](const QString &path) {
        const QString text = path + u".srt"_s;
        writeContent(text, "1\n00:00:01,000 --> 00:00:02,000\nsaid\n");
        const QString codecs = container == u"avi"_s
                                   ? u"-c:v mjpeg -pix_fmt yuvj420p -c:a mp3"_s
                                   : u"-c:v libx264 -preset ultrafast -pix_fmt yuv420p -c:a aac"_s;
        QStringList words =
            u"-nostdin -y -v error -f lavfi -i testsrc2=size=160x120:rate=25:duration=4 -f lavfi -i "
            "sine=sample_rate=48000:duration=4 -i TEXT %1 %2 -ac 2 -ar 48000 %3"_s
                .arg(way.map, codecs, way.words)
                .split(u' ', Qt::SkipEmptyParts);
        words.replaceInStrings(u"SUBTITLE"_s, container == u"mkv"_s ? u"srt"_s : u"mov_text"_s);
        words.replaceInStrings(u"yuv444p"_s, container == u"avi"_s ? u"yuvj444p"_s : u"yuv444p"_s);
        words.replaceInStrings(u"TEXT"_s, text);
        runProgram(u"ffmpeg"_s, words << path);
        QFile::remove(text);
    });
}

/// Seconds of the packets of a stream together; what it lacks in the middle lacks here too.
double packetSeconds(const QString &path, const QString &stream)
{
    QProcess process;
    process.start(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-select_streams"_s, stream, u"-show_entries"_s,
                                 u"packet=duration_time"_s, u"-of"_s, u"csv=p=0"_s, path});
    process.waitForFinished(60000);
    double sum = 0;
    for (const QByteArray &line : process.readAllStandardOutput().split('\n'))
        sum += line.split(',').constFirst().trimmed().toDouble();
    return sum;
}

struct Decoded
{
    int status = -1;
    QByteArray said;
};

Decoded decoded(const QString &path)
{
    QProcess process;
    process.start(u"ffmpeg"_s, {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-i"_s, path, u"-map"_s, u"0:v"_s,
                                u"-map"_s, u"0:a"_s, u"-f"_s, u"null"_s, u"-"_s});
    process.waitForFinished(60000);
    return {process.exitCode(), process.readAllStandardError()};
}

struct Row
{
    Way way;
    QString container;
    bool usualFirst = true;
};

QList<Row> allRows()
{
    QList<Row> rows;
    for (const QString &container : {u"mkv"_s, u"mp4"_s, u"mov"_s, u"avi"_s, u"ts"_s}) {
        for (const Way &way : allWays()) {
            if (!exists(way, container))
                continue;
            rows << Row{way, container, true} << Row{way, container, false};
        }
    }
    return rows;
}

void addRow(const Row &row)
{
    const QString name =
        u"%1 %2 %3"_s.arg(row.container, row.way.name, row.usualFirst ? u"behind"_s : u"in front"_s);
    QTest::newRow(qPrintable(name)) << row.container << film(row.way, row.container) << row.usualFirst
                                    << (row.way.joins || (row.way.joinsBehindIt && !row.usualFirst));
}

} // namespace

class JoinPairsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Joins of files whose units of time differ are always made, and one pair that has to be refused.
    void aJoinHasAllOfBothFilmsOrIsNotMade_data()
    {
        QTest::addColumn<QString>("container");
        QTest::addColumn<QString>("other");
        QTest::addColumn<bool>("usualFirst");
        QTest::addColumn<bool>("joins");
        const QList<Row> rows = allRows();
        QList<Row> others;
        for (const Row &row : rows) {
            if (row.way.name == u"units"_s && row.container == u"mp4"_s)
                addRow(row);
            else
                others.append(row);
        }
        for (const Row &row : drawn(others, 6))
            addRow(row);
    }

    void aJoinHasAllOfBothFilmsOrIsNotMade()
    {
        QFETCH(QString, container);
        QFETCH(QString, other);
        QFETCH(bool, usualFirst);
        QFETCH(bool, joins);
        CliFixture fixture;
        const QString one = fixture.clip(film(allWays().constFirst(), container), u"one."_s + container);
        const QString two = fixture.clip(other, u"two."_s + container);
        const QStringList files = usualFirst ? QStringList{one, two} : QStringList{two, one};
        const auto run = fixture.run(QStringList{u"join"_s} + files);
        const QString output = files.constFirst() + u".joined."_s + container;
        QVERIFY2((run.status == 0) == joins, run.error.constData());
        QCOMPARE(QFile::exists(output), joins);
        if (!joins) {
            QVERIFY2(run.said().contains(u"can't be joined to"_s), run.error.constData());
            return;
        }
        for (const QString &stream : {u"v:0"_s, u"a:0"_s})
            QVERIFY2(std::abs(packetSeconds(output, stream) - 8) < 0.2,
                     qPrintable(stream + u' ' + QString::number(packetSeconds(output, stream))));
        QVERIFY2(std::abs(secondsOf(output) - 8) < 0.2, qPrintable(QString::number(secondsOf(output))));
        const Decoded played = decoded(output);
        QCOMPARE(played.said, QByteArray());
        QCOMPARE(played.status, 0);
        QVERIFY(fixture.temporaryNames().isEmpty());
        QCOMPARE(fixture.mediaNames().filter(u"retimed"_s), QStringList());
    }

    /// They are as large as the films.
    void copiesInOtherUnitsLieWhereTheOutputIsMade()
    {
        CliFixture fixture;
        const QList<Way> ways = allWays();
        const auto units =
            std::find_if(ways.begin(), ways.end(), [](const Way &way) { return way.name == u"units"_s; });
        QVERIFY(units != ways.end());
        const QString one = fixture.clip(film(ways.constFirst(), u"mp4"_s), u"one.mp4"_s);
        const QString two = fixture.clip(film(*units, u"mp4"_s), u"two.mp4"_s);
        fixture.useOwnTools();
        const auto run = fixture.run({u"join"_s, one, two});
        QVERIFY2(run.status == 0, run.error.constData());
        QByteArrayList copies;
        for (const QByteArrayList &words : fixture.recorded()) {
            if (words.constLast().contains("retimed"))
                copies.append(words.constLast());
        }
        QCOMPARE(copies.size(), 1);
        QVERIFY2(copies.constFirst().startsWith(fixture.media(u".tessaray-"_s).toUtf8()),
                 copies.constFirst().constData());
    }
};

TESSARAY_TEST(JoinPairsTest)
#include "JoinPairsTest.moc"
