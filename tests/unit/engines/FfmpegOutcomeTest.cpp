#include "engines/ffmpeg/FfmpegOutcome.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace engines;
using steps::Verdict;

namespace {

FfmpegRun whole(const QString &log)
{
    FfmpegRun run;
    run.log = log;
    run.hasVideo = true;
    return run;
}

const QString usual = u"Input #0, matroska,webm, from '/v/a.mkv':\n  Duration: 00:02:00.00\n"
                      "frame=   74 fps=0.0 q=21.0 size=       0kB time=00:02:00.00 bitrate=   0.1kbits/s\r"_s;

} // namespace

class FfmpegOutcomeTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aWholeRunIsOk()
    {
        const auto outcome = outcomeOfMessages(whole(usual));
        QCOMPARE(outcome.verdict, Verdict::Ok);
        QVERIFY(outcome.sentence.isEmpty());
    }

    void anOutputWithoutPicturesIsAWarning_data()
    {
        QTest::addColumn<QByteArray>("frames");
        QTest::addColumn<bool>("hasVideo");
        QTest::addColumn<bool>("isOk");
        QTest::newRow("none") << QByteArray("frame=    0 fps=0.0 q=-1.0 ") << true << false;
        QTest::newRow("one") << QByteArray("frame=    1 fps=0.0 q=-1.0 ") << true << true;
        QTest::newRow("many") << QByteArray("frame=100000 fps=0.0 q=-1.0 ") << true << true;
        QTest::newRow("sound alone") << QByteArray("frame=    0 fps=0.0 q=-1.0 ") << false << true;
        QTest::newRow("sound alone, without the word") << QByteArray() << true << true;
    }

    void anOutputWithoutPicturesIsAWarning()
    {
        QFETCH(QByteArray, frames);
        QFETCH(bool, hasVideo);
        QFETCH(bool, isOk);
        FfmpegRun run =
            whole(QString::fromLatin1("frame=    9 fps=0.0 q=-1.0 size=       1kB time=00:00:00.02\r" +
                                      frames + "Lsize=       2kB time=00:02:00.00 speed=3e+03x\n"));
        run.hasVideo = hasVideo;
        const auto outcome = outcomeOfMessages(run);
        QCOMPARE(outcome.verdict, isOk ? Verdict::Ok : Verdict::Warnings);
        QCOMPARE(outcome.sentence,
                 isOk ? QString() : u"There is nothing in the video track of the output."_s);
    }

    void aFullDiskIsAFailure()
    {
        const auto outcome =
            outcomeOfMessages(whole(usual + u"\nav_interleaved_write_frame(): No space left on device\n"_s));
        QCOMPARE(outcome.verdict, Verdict::Failed);
        QCOMPARE(outcome.sentence, u"ffmpeg failed: There is no room left for the output."_s);
        FfmpegRun run = whole(u"Error closing file /v/a.mkv: No space left on device\n"_s);
        run.output = QUrl::fromLocalFile(u"/v/s/a.mkv"_s);
        QCOMPARE(outcomeOfMessages(run).sentence, u"ffmpeg failed: There is no room left in /v/s."_s);
    }

    void aDamagedSourceIsAWarning_data()
    {
        QTest::addColumn<QString>("line");
        for (
            const QString &line :
            {u"Error while decoding stream #0:0: Invalid data"_s,
             u"/v/a.mkv: Invalid data found when processing input"_s,
             u"[h264 @ 0x1] error while decoding MB 7 0, bytestream 4353"_s,
             u"[avi @ 0x1] Packet corrupt (stream = 0, dts = 1819)."_s, u"[flv @ 0x1] Packet mismatch 1 2"_s,
             u"[asf @ 0x1] ff asf bad header 1"_s, u"/v/a.mkv: corrupt decoded frame in stream 0"_s,
             u"/v/a.ts: corrupt input packet in stream 0"_s,
             u"[matroska,webm @ 0x1] 0x00 at pos 9 (0x9) invalid as first byte of an EBML number"_s,
             u"[matroska,webm @ 0x1] Element at 0x9 ending at 0x99 exceeds containing master element ending at 0x9"_s})
            QTest::newRow(qPrintable(line)) << line;
    }

    void aDamagedSourceIsAWarning()
    {
        QFETCH(QString, line);
        const auto outcome = outcomeOfMessages(whole(usual + u'\n' + line + u'\n'));
        QCOMPARE(outcome.verdict, Verdict::Warnings);
        QString said = line.startsWith(u'[') ? line.section(u"] "_s, 1) : line;
        if (said.endsWith(u'.'))
            said.chop(1);
        QCOMPARE(outcome.sentence, u"The source seems damaged: "_s + said + u'.');
    }

    void aSourceThatWasCutIsToldToEndEarly()
    {
        for (const QString &line :
             {u"[matroska,webm @ 0x55c3] File ended prematurely"_s,
              u"[mov,mp4,m4a,3gp,3g2,mj2 @ 0x1] stream 1, offset 0x3a: partial file"_s}) {
            const auto outcome = outcomeOfMessages(whole(usual + u'\n' + line + u'\n'));
            QCOMPARE(outcome.verdict, Verdict::Warnings);
            QCOMPARE(outcome.sentence, u"The source ends early: "_s + line.section(u"] "_s, 1) + u'.');
        }
    }

    /// The banner repeats titles, indented.
    void titlesNeverCount()
    {
        const QString banner = u"  Metadata:\n    title           : No space left on device\n"
                               "                    : File ended prematurely\n"
                               "    comment         : packet with unknown timestamp\n"_s;
        QCOMPARE(outcomeOfMessages(whole(banner + usual)).verdict, Verdict::Ok);
        QVERIFY(!hasTimestampError(banner));
    }

    void namesNeverCount_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("full disk") << u"No space left on device"_s;
        QTest::newRow("damage") << u"File ended prematurely"_s;
        QTest::newRow("refused packet") << u"av_interleaved_write_frame(): Invalid argument"_s;
        QTest::newRow("a line of its own") << u"a\nNo space left on device"_s;
    }

    void namesNeverCount()
    {
        QFETCH(QString, name);
        const QString source = u"/v/"_s + name + u".mkv"_s;
        const QString output = u"/v/"_s + name + u".m4v"_s;
        const QString opening =
            u"[mov @ 0x1] Opening '%1' for reading\n[mp4 @ 0x2] Opening '%2' for writing\n"_s;
        auto run = whole(opening.arg(source, output) + usual);
        QVERIFY(outcomeOfMessages(run).verdict != Verdict::Ok || hasWriteError(run)); // the trap works
        run.files = {source, output};
        QCOMPARE(outcomeOfMessages(run).verdict, Verdict::Ok);
        QVERIFY(!hasWriteError(run));
        run.log += u"\n%1: Invalid data found when processing input\n"_s.arg(source);
        QCOMPARE(outcomeOfMessages(run).sentence,
                 u"The source seems damaged: the file: Invalid data found when processing input."_s);
    }

    void aWriteErrorIsSeen()
    {
        QVERIFY(!hasWriteError(whole(usual)));
        QVERIFY(hasWriteError(whole(QString())));
        QVERIFY(hasWriteError(whole(usual + u"\nav_interleaved_write_frame(): Invalid argument\n"_s)));
        QVERIFY(!hasWriteError(
            whole(usual + u"\n    title : av_interleaved_write_frame(): Invalid argument\n"_s)));
    }

    void missingTimestampsAreFound()
    {
        QVERIFY(
            hasTimestampError(usual + u"\n[matroska @ 0x1] Can't write packet with unknown timestamp\n"_s));
        QVERIFY(!hasTimestampError(usual));
        QVERIFY(!hasTimestampError({}));
    }
};

TESSARAY_TEST(FfmpegOutcomeTest)
#include "FfmpegOutcomeTest.moc"
