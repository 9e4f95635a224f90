// How far and how fast a job is, from what its steps show.
#include "jobs/Pace.h"

#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using jobs::PaceKeeper;
using jobs::secondsLeft;
using jobs::shareIn;

class PaceTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sharesInTexts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("share");
        QTest::newRow("nothing yet") << u"0%"_s << 0.0;
        QTest::newRow("one pass") << u"45%"_s << 0.45;
        QTest::newRow("the first of two") << u"Pass #1 50%"_s << 0.25;
        QTest::newRow("between") << u"Pass 1 Complete"_s << 0.5;
        QTest::newRow("the second") << u"Pass #2 50%"_s << 0.75;
        QTest::newRow("done") << u"Complete"_s << 1.0;
        QTest::newRow("more than all") << u"120%"_s << 1.0;
        QTest::newRow("a phase") << u"moving moov atom"_s << -1.0;
        QTest::newRow("no number") << u"x%"_s << -1.0;
        QTest::newRow("empty") << QString() << -1.0;
    }

    void sharesInTexts()
    {
        QFETCH(QString, text);
        QTEST(shareIn(text).value_or(-1), "share");
    }

    void timeLeftNeedsAWhile()
    {
        QVERIFY(!secondsLeft(9.9, 0.5));
        QVERIFY(!secondsLeft(20, 0));
        QCOMPARE(*secondsLeft(10, 0.5), 10.0);
        QCOMPARE(*secondsLeft(30, 0.25), 90.0);
        QCOMPARE(*secondsLeft(30, 1), 0.0);
    }

    void stepsCountAlike()
    {
        PaceKeeper keeper;
        QCOMPARE(keeper.pace().percent, 0.0);
        keeper.take({{u"a"_s, u"Complete"_s}, {u"b"_s, u"50%"_s}, {u"c"_s, u"0%"_s}});
        QCOMPARE(keeper.pace().percent, 50.0);
        QVERIFY(!keeper.pace().leftSeconds);
    }

    void aPhaseChangesNothing()
    {
        PaceKeeper keeper;
        keeper.take({{u"a"_s, u"80%"_s}});
        keeper.take({{u"a"_s, u"moving moov atom"_s}});
        QCOMPARE(keeper.pace().percent, 80.0);
        keeper.take({});
        QCOMPARE(keeper.pace().percent, 80.0);
    }

    /// A pause costs nothing, however long; nor does what comes before the first step.
    void pausesDoNotCount()
    {
        PaceKeeper keeper;
        keeper.resume();
        QCOMPARE(keeper.pace().elapsedSeconds, 0.0);
        keeper.take({{u"a"_s, u"0%"_s}});
        keeper.pause();
        const double before = keeper.pace().elapsedSeconds;
        QTest::qWait(30);
        QCOMPARE(keeper.pace().elapsedSeconds, before);
        keeper.resume();
        QTest::qWait(30);
        QVERIFY(keeper.pace().elapsedSeconds > before);
    }

    void clocks()
    {
        QCOMPARE(jobs::clockText(7.9), u"0:07"_s);
        QCOMPARE(jobs::clockText(151), u"2:31"_s);
        QCOMPARE(jobs::clockText(3909), u"1:05:09"_s);
        QCOMPARE(jobs::clockText(-3), u"0:00"_s);
    }
};

TESSARAY_TEST(PaceTest)
#include "PaceTest.moc"
