#include "steps/FfmpegProgress.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using steps::FfmpegProgressReader;
using steps::FfmpegReading;

namespace {

const QByteArray first =
    "frame=    1 fps=0.0 q=-1.0 size=       0kB time=-00:00:00.07 bitrate=N/A speed=N/A    \r";
const QByteArray second =
    "frame=   74 fps=0.0 q=21.0 size=       0kB time=00:00:03.23 bitrate=   0.1kbits/s speed=   6x    \r";
const QByteArray last =
    "frame=  200 fps=0.0 q=-1.0 Lsize=      36kB time=00:00:07.96 bitrate= 337.5kbits/s speed=3e+03x    \n";
const QByteArray moov =
    "[mp4 @ 0x55c503ed2180] Starting second pass: moving the moov atom to the beginning of the file\n";

/// A banner that says all the words we look for, each in a place where only the file speaks.
const QByteArray hostileBanner =
    "Input #0, matroska,webm, from '/v/moving the moov atom time=09:00:00.00 .mkv':\n"
    "  Metadata:\n"
    "    title           : frame= size= time=08:00:00.00 bitrate\n"
    "                    : moving the moov atom time=07:00:00.00 bitrate\n"
    "    time=06:00:00.00 : a tag of that name\n"
    "    size=1 time=05:00:00.00 : another\n"
    "  Stream #0:0: Video: h264\n"
    "      title           : Starting second pass: moving the moov atom\n"
    "Output #0, mp4, to '/v/time=04:00:00.00 moving the moov atom.m4v':\n"
    "[matroska,webm @ 0x1] moved '] moving the moov atom' time=03:00:00.00 \n";

/// Everything a reader says about a text that comes in chunks of one size.
struct Heard
{
    QStringList times;
    int moov = 0;
};

Heard heardIn(const QByteArray &text, qsizetype chunk)
{
    FfmpegProgressReader reader;
    Heard heard;
    for (qsizetype at = 0; at < text.size(); at += chunk) {
        const FfmpegReading reading = reader.feed(text.mid(at, chunk));
        if (!reading.time.isNull())
            heard.times.append(reading.time);
        heard.moov += reading.movesMoov ? 1 : 0;
    }
    return heard;
}

} // namespace

class FfmpegProgressTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void speedsInStatusLines_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<double>("fps");
        QTest::addColumn<double>("speed");
        QTest::newRow("both") << u"frame=  74 fps= 25 q=2.0 size= 0kB time=00:00:03.2 speed=1.25x    "_s
                              << 25.0 << 1.25;
        QTest::newRow("wide blanks") << u"frame=1 fps=0.0 time=00:00:00.04 speed=   6x"_s << 0.0 << 6.0;
        QTest::newRow("not known") << u"frame=1 fps=N/A time=00:00:00.04 speed=N/A"_s << -1.0 << -1.0;
        QTest::newRow("cut") << u"frame=1 fps=2"_s << -1.0 << -1.0;
        QTest::newRow("cut in the speed") << u"frame=1 fps=25 time=00:00:00.04 speed=1.2"_s << 25.0 << -1.0;
        QTest::newRow("large") << u"frame=1 fps=25 time=00:00:00.04 speed=1.2e+03x"_s << 25.0 << 1200.0;
        QTest::newRow("not a number") << u"frame=1 fps=nan time=00:00:00.04 speed=infx"_s << -1.0 << -1.0;
    }

    void speedsInStatusLines()
    {
        QFETCH(QString, line);
        QTEST(steps::framesASecondInStatusLine(line), "fps");
        QTEST(steps::speedInStatusLine(line), "speed");
        FfmpegProgressReader reader;
        QTEST(reader.feed(line.toUtf8()).speed, "speed");
    }

    void statusLines_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("isStatus");
        QTest::newRow("video") << u"frame=   74 fps=0.0 q=21.0 size=       0kB time=00:00:03.23 "_s << true;
        QTest::newRow("audio only") << u"size=     128kB time=00:00:03.23 bitrate"_s << true;
        QTest::newRow("last size") << u"Lsize=     128kB time=00:00:03.23 bitrate"_s << true;
        QTest::newRow("bare time") << u"time=00:00:03.23 bitrate"_s << true;
        QTest::newRow("indented") << u" frame= 1 time=00:00:03.23 "_s << false;
        QTest::newRow("title") << u"    title           : frame= time=00:00:03.23 "_s << false;
        QTest::newRow("input") << u"Input #0, matroska, from 'time=00:00:03.23 '"_s << false;
        QTest::newRow("summary") << u"video:35kB audio:0kB subtitle:0kB"_s << false;
        QTest::newRow("empty") << QString() << false;
    }

    void statusLines()
    {
        QFETCH(QString, line);
        QFETCH(bool, isStatus);
        QCOMPARE(steps::isStatusLine(line), isStatus);
    }

    void timeIsTakenUpToItsBlank_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("time");
        QTest::newRow("video") << QString::fromLatin1(second) << u"00:00:03.23"_s;
        QTest::newRow("negative") << QString::fromLatin1(first) << u"-00:00:00.07"_s;
        QTest::newRow("the last of two")
            << u"frame=1 time=00:00:01.00 bitrate frame=2 time=00:00:02.00 bitrate"_s << u"00:00:02.00"_s;
        QTest::newRow("not known") << u"frame=1 time=N/A bitrate=N/A"_s << QString();
        QTest::newRow("half a value") << u"frame=1 time=00:00:0"_s << QString();
        QTest::newRow("whole value, no blank yet") << u"frame=1 time=00:00:03.23"_s << QString();
        QTest::newRow("no value") << u"frame=1 fps=0.0 "_s << QString();
        QTest::newRow("nothing behind it") << u"frame=1 time="_s << QString();
    }

    void timeIsTakenUpToItsBlank()
    {
        QFETCH(QString, line);
        QFETCH(QString, time);
        const QString taken = steps::timeInStatusLine(line);
        QCOMPARE(taken, time);
        QCOMPARE(taken.isNull(), time.isNull());
    }

    void chunksOfEverySizeTellEachValueOnce()
    {
        const QByteArray text = hostileBanner + first + second + moov + last;
        for (qsizetype size = 1; size <= text.size(); ++size) {
            const Heard heard = heardIn(text, size);
            QVERIFY2(!heard.times.isEmpty(), qPrintable(QString::number(size)));
            QCOMPARE(heard.times.last(), u"00:00:07.96"_s);
            if (size <= 20) { // shorter than what lies between two values
                QCOMPARE(heard.times, (QStringList{u"-00:00:00.07"_s, u"00:00:03.23"_s, u"00:00:07.96"_s}));
                QCOMPARE(heard.moov, 1);
            }
        }
    }

    void lineFeedsCountLikeCarriageReturns()
    {
        QByteArray text = first + second;
        text.replace('\r', '\n');
        QCOMPARE(heardIn(text, 10).times, (QStringList{u"-00:00:00.07"_s, u"00:00:03.23"_s}));
    }

    void lastOfSeveralValuesInAChunkIsTold()
    {
        FfmpegProgressReader reader;
        QCOMPARE(reader.feed(first + second).time, u"00:00:03.23"_s);
    }

    void unfinishedLineCountsOnceItHoldsAWholeValue()
    {
        FfmpegProgressReader reader;
        QVERIFY(reader.feed("frame=   74 fps=0.0 time=00:0").time.isNull());
        QVERIFY(reader.feed("0:03.2").time.isNull());
        QCOMPARE(reader.feed("3 bit").time, u"00:00:03.23"_s);
        QVERIFY(reader.feed("rate= 0.1kbits/s").time.isNull()); // told already
        QVERIFY(reader.feed("\r").time.isNull());
        QCOMPARE(reader.feed("frame=   74 time=00:00:03.23 \r").time, u"00:00:03.23"_s); // another line
    }

    void notKnownTimeIsNoValue()
    {
        FfmpegProgressReader reader;
        QVERIFY(reader.feed("frame=    0 fps=0.0 size=       0kB time=N/A bitrate=N/A speed=N/A    \r")
                    .time.isNull());
        QCOMPARE(reader.feed(second + "frame=   75 time=N/A bitrate=N/A \r").time, u"00:00:03.23"_s);
    }

    void titlesAndNamesInTheBannerNeverCount()
    {
        for (const qsizetype size : {1, 7, 64, 100000}) {
            const Heard heard = heardIn(hostileBanner, size);
            QCOMPARE(heard.times, QStringList());
            QCOMPARE(heard.moov, 0);
        }
    }

    void movingTheIndexIsTold_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("as ffmpeg says it") << moov;
        QTest::newRow("without the head") << moov.mid(moov.indexOf("Starting"));
        QTest::newRow("only the words") << QByteArray("moving the moov atom\n");
        QTest::newRow("not finished yet") << moov.left(moov.indexOf(" to the"));
    }

    void movingTheIndexIsTold()
    {
        QFETCH(QByteArray, line);
        FfmpegProgressReader reader;
        const FfmpegReading reading = reader.feed(second + line);
        QVERIFY(reading.movesMoov);
        QCOMPARE(reading.time, u"00:00:03.23"_s);
    }

    void laterValueEndsTheMovingOfTheIndex()
    {
        FfmpegProgressReader reader;
        const FfmpegReading reading = reader.feed(moov + last);
        QVERIFY(!reading.movesMoov);
        QCOMPARE(reading.time, u"00:00:07.96"_s);
    }

    void charactersAreDecodedAcrossChunkBorders()
    {
        const QByteArray text = "\xe2\x82\xac \xc3\xa9\r" + second;
        for (qsizetype size = 1; size <= 5; ++size)
            QCOMPARE(heardIn(text, size).times, QStringList{u"00:00:03.23"_s});
        FfmpegProgressReader reader;
        reader.feed("frame=1 \xe2\x82");
        QCOMPARE(reader.feed("\xac time=00:00:09.00 ").time, u"00:00:09.00"_s);
    }

    void clearForgetsTheUnfinishedLine()
    {
        FfmpegProgressReader reader;
        QCOMPARE(reader.feed("frame=1 time=00:00:01.00 bit").time, u"00:00:01.00"_s);
        reader.clear();
        QCOMPARE(reader.feed("frame=1 time=00:00:01.00 bit").time, u"00:00:01.00"_s);
    }

    void percentOfDuration_data()
    {
        QTest::addColumn<QString>("time");
        QTest::addColumn<QString>("duration");
        QTest::addColumn<int>("percent");
        QTest::newRow("30 s of 120 s") << u"00:00:30.00"_s << u"120"_s << 25;
        QTest::newRow("truncated") << u"00:01:59.99"_s << u"120"_s << 99;
        QTest::newRow("whole") << u"00:02:00.00"_s << u"120"_s << 100;
        QTest::newRow("beyond") << u"00:03:00.00"_s << u"120"_s << 100;
        QTest::newRow("fraction dropped") << u"00:00:00.99"_s << u"10"_s << 0;
        QTest::newRow("a little negative") << u"-00:00:00.07"_s << u"120"_s << 0;
        QTest::newRow("negative by a minute") << u"-00:01:00.00"_s << u"120"_s << 0;
        QTest::newRow("no duration") << u"00:00:30.00"_s << u"0"_s << 0;
        QTest::newRow("absent duration") << u"00:00:30.00"_s << QString() << 0;
        QTest::newRow("negative duration") << u"00:00:30.00"_s << u"-5"_s << 0;
        QTest::newRow("no time") << QString() << u"120"_s << 0;
        QTest::newRow("no time text") << u"N/A"_s << u"120"_s << 0;
        QTest::newRow("absurd time") << u"999999999999:00:00"_s << u"1"_s << 100;
    }

    void percentOfDuration()
    {
        QFETCH(QString, time);
        QFETCH(QString, duration);
        QFETCH(int, percent);
        QCOMPARE(steps::percentOfDuration(time, duration), percent);
    }

    void bytesInAStatusLine_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<qint64>("bytes");
        const auto row = [](const QString &line, qint64 bytes) {
            QTest::newRow(qPrintable(line)) << line << bytes;
        };
        row(u"frame=   74 fps=0.0 q=21.0 size=       0kB time=00:00:03.23 "_s, 0);
        row(u"frame=  200 fps=0.0 q=-1.0 Lsize=      36kB time=00:00:07.96 "_s, 36864);
        row(u"size=     128KiB time=00:00:03.23 bitrate"_s, 131072);
        row(u"size=12kB time=N/A"_s, 12288);
        row(u"frame=1 size=N/A time=00:00:03.23 "_s, -1);
        row(u"frame=1 size=     12"_s, -1);
        row(u"frame=1 size=  "_s, -1);
        row(u"frame=1 time=00:00:03.23 "_s, -1);
    }

    void bytesInAStatusLine()
    {
        QFETCH(QString, line);
        QTEST(steps::bytesInStatusLine(line), "bytes");
    }

    /// Also where no time is told beside it.
    void theSizeIsHeardToo()
    {
        FfmpegProgressReader reader;
        const FfmpegReading reading =
            reader.feed("frame=  2 size=       7kB time=N/A bitrate=N/A speed=N/A    \r");
        QVERIFY(reading.time.isNull());
        QCOMPARE(reading.written, 7168);
        QCOMPARE(reader.feed(last).written, 36864);
        QCOMPARE(reader.feed(moov).written, -1);
    }

    void percentOfBytes_data()
    {
        QTest::addColumn<qint64>("written");
        QTest::addColumn<qint64>("sources");
        QTest::addColumn<int>("percent");
        QTest::newRow("a quarter") << qint64(25) << qint64(100) << 25;
        QTest::newRow("truncated") << qint64(19) << qint64(1000) << 1;
        QTest::newRow("all, and not finished") << qint64(100) << qint64(100) << 99;
        QTest::newRow("more than all") << qint64(900) << qint64(100) << 99;
        QTest::newRow("nothing") << qint64(0) << qint64(100) << 0;
        QTest::newRow("of nothing") << qint64(5) << qint64(0) << 0;
        QTest::newRow("terabytes") << qint64(4'000'000'000'000) << qint64(8'000'000'000'000) << 50;
    }

    void percentOfBytes()
    {
        QFETCH(qint64, written);
        QFETCH(qint64, sources);
        QFETCH(int, percent);
        QCOMPARE(steps::percentOfBytes(written, sources), percent);
    }
};

TESSARAY_TEST(FfmpegProgressTest)
#include "FfmpegProgressTest.moc"
