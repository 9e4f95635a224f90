// Numbers as a person reads them.
#include "summary/Figures.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

class FiguresTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sizes_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("not known") << qint64{0} << QString();
        QTest::newRow("negative") << qint64{-5} << QString();
        QTest::newRow("small") << qint64{1} << u"0.1 kB"_s;
        QTest::newRow("kilobytes") << qint64{64000} << u"64 kB"_s;
        QTest::newRow("a few megabytes") << qint64{4200000} << u"4.2 MB"_s;
        QTest::newRow("megabytes") << qint64{812345678} << u"812 MB"_s;
        QTest::newRow("nearly a gigabyte") << qint64{912345678} << u"0.9 GB"_s;
        QTest::newRow("gigabytes") << qint64{1540000000} << u"1.5 GB"_s;
        QTest::newRow("many") << qint64{41200000000} << u"41 GB"_s;
        QTest::newRow("a disk") << qint64{2500000000000} << u"2.5 TB"_s;
    }

    void sizes()
    {
        QFETCH(qint64, bytes);
        QFETCH(QString, text);
        QCOMPARE(summary::sizeText(bytes), text);
    }

    void lengthsAndRates()
    {
        QCOMPARE(summary::lengthText(5528), u"1:32:08"_s);
        QCOMPARE(summary::lengthText(8.02), u"0:00:08"_s);
        QCOMPARE(summary::lengthText(0), QString());
        QCOMPARE(summary::rateText(640), u"640 kb/s"_s);
        QCOMPARE(summary::rateText(6200), u"6.2 Mb/s"_s);
        QCOMPARE(summary::rateText(15000), u"15 Mb/s"_s);
        QCOMPARE(summary::rateText(-3), QString());
        QCOMPARE(summary::frameRateText(u"23.976024"_s), u"23.976 fps"_s);
        QCOMPARE(summary::frameRateText(u"25.000000"_s), u"25 fps"_s);
        QCOMPARE(summary::frameRateText(u"119.880120"_s), u"119.88 fps"_s);
        QCOMPARE(summary::frameRateText(u"nan"_s), QString());
        QCOMPARE(summary::frameRateText(u"0"_s), QString());
        QCOMPARE(summary::pictureText(u"1920"_s, u"1080"_s), u"1920 × 1080"_s);
        QCOMPARE(summary::pictureText(u"0"_s, u"0"_s), QString());
    }

    void times()
    {
        QCOMPARE(summary::elapsedText(860), u"14:20"_s);
        QCOMPARE(summary::elapsedText(3725), u"1:02:05"_s);
        QCOMPARE(summary::elapsedText(9), u"0:09"_s);
        QCOMPARE(summary::leftText(480), u"about 8 min left"_s);
        QCOMPARE(summary::leftText(59), u"less than a minute left"_s);
        QCOMPARE(summary::leftText(3720), u"about 1 h 2 min left"_s);
    }
};

TESSARAY_TEST(FiguresTest)
#include "FiguresTest.moc"
