#include "steps/ToolLog.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using steps::ToolLog;

class ToolLogTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesEndAtBothKindsOfLineEnd()
    {
        const ToolLog log(u"Progress: 1%\rProgress: 100%\r\nWarning: one\n\n\rError: two"_s);
        QVERIFY(log.hasLineStartingWith(u"Progress: 100%"_s));
        QCOMPARE(log.firstLineStartingWith(u"Warning:"_s), u"Warning: one"_s);
        QVERIFY(log.hasLineStartingWith(u"Error:"_s));
        QVERIFY(!log.hasLineStartingWith(u"rror:"_s));
    }

    void textsOfTheFileNeverCount_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("title") << u"    title           : Error: no"_s;
        QTest::newRow("indented by one") << u" Error: no"_s;
        QTest::newRow("name of an input") << u"Input #0, matroska,webm, from 'Error: no'"_s;
        QTest::newRow("name of an output") << u"Output #12, mp4, to 'Error: no'"_s;
    }

    void textsOfTheFileNeverCount()
    {
        QFETCH(QString, line);
        const ToolLog log(line);
        QVERIFY(!log.hasLineContaining(u"Error: no"_s));
        QVERIFY(log.firstLineContaining({u"Error: no"_s}).isNull());
        QVERIFY(log.lastMessage().isNull());
    }

    void firstLineWithOneOfThePartsIsFound()
    {
        const ToolLog log(u"one\ntwo and three \nthree"_s);
        QCOMPARE(log.firstLineContaining({u"three"_s, u"four"_s}), u"two and three"_s);
        QVERIFY(log.firstLineContaining({u"five"_s}).isNull());
        QVERIFY(log.firstLineContaining({}).isNull());
        QVERIFY(log.firstLineStartingWith(u"four"_s).isNull());
    }

    void lastStatusLineIsFound()
    {
        const ToolLog log(u"frame= 1 time=00:00:01.00 \rframe= 2 Lsize= 5kB time=00:00:02.00 \nvideo:35kB"_s);
        QCOMPARE(log.lastStatusLine(), u"frame= 2 Lsize= 5kB time=00:00:02.00 "_s);
        QVERIFY(ToolLog(u"video:35kB"_s).lastStatusLine().isNull());
    }

    void lastMessageSaysMoreThanThatItFailed_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("message");
        QTest::newRow("ffmpeg")
            << u"Stream mapping:\n  Stream #0:0 -> #0:0\nPress [q] to stop, [?] for help\n"
               "[libx264 @ 0x1] width not divisible by 2 (321x241)\nframe= 0 time=00:00:00.00 \r"
               "Conversion failed!\n"_s
            << u"[libx264 @ 0x1] width not divisible by 2 (321x241)"_s;
        QTest::newRow("encoders close with figures")
            << u"av_interleaved_write_frame(): Broken pipe\n"
               "video:1kB audio:1kB subtitle:0kB other streams:0kB global headers:0kB muxing overhead: 1%\n"
               "[libx264 @ 0x5a] frame I:2     Avg QP:20.00  size:  9000\n[libx264 @ 0x5a] mb I  I16..4: 1%\n"
               "[libx264 @ 0x5a] 8x8 transform intra:50%\n[libx264 @ 0x5a] coded y,uvDC,uvAC intra: 9%\n"
               "[libx264 @ 0x5a] i16 v,h,dc,p: 90%\n[libx264 @ 0x5a] Weighted P-Frames: Y:0.0% UV:0.0%\n"
               "[libx264 @ 0x5a] ref P L0: 60%\n[libx264 @ 0x5a] consecutive B-frames: 10%\n"
               "[libx264 @ 0x5a] kb/s:476.35\n[aac @ 0x5b] Qavg: 2098.709\nConversion failed!\n"_s
            << u"av_interleaved_write_frame(): Broken pipe"_s;
        QTest::newRow("interrupted") << u"What it did\nExiting normally, received signal 15.\n"_s
                                     << u"What it did"_s;
        QTest::newRow("only that") << u"Conversion failed!\n"_s << QString();
        QTest::newRow("nothing") << QString() << QString();
    }

    void lastMessageSaysMoreThanThatItFailed()
    {
        QFETCH(QString, text);
        QFETCH(QString, message);
        QCOMPARE(ToolLog(text).lastMessage(), message);
        QCOMPARE(ToolLog(text).lastMessage().isNull(), message.isNull());
    }
};

TESSARAY_TEST(ToolLogTest)
#include "ToolLogTest.moc"
