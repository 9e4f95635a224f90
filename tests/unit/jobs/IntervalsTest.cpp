// The paces of the product. Other tests hand in shorter ones.
#include "jobs/Intervals.h"

#include "prefs/KXWatchModeController.h"
#include "support/TestMain.h"

#include <QTest>

class IntervalsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ofQueueAndJobs()
    {
        const jobs::Intervals intervals;
        QCOMPARE(intervals.tick, 1000);
        QCOMPARE(intervals.poll, 500);
        QCOMPARE(intervals.firstPoll, 100);
        QCOMPARE(intervals.flash, 1000);
    }

    void ofWatchMode()
    {
        const prefs::WatchIntervals intervals;
        QCOMPARE(intervals.poll, 5000);
        QCOMPARE(intervals.toggle, 400);
    }
};

TESSARAY_TEST(IntervalsTest)
#include "IntervalsTest.moc"
