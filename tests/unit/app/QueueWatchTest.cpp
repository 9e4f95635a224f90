// The machine stays awake while the queue works, and its end is told once.
#include "app/QueueWatch.h"

#include "jobs/KXQueueController.h"
#include "support/RecordingDesktop.h"
#include "support/TestMain.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using steps::Outcome;
using support::JobFixture;
using support::TestJob;

namespace {

/// A queue with a watch; its jobs run until they are ended.
struct Watched
{
    explicit Watched(int jobs = 0)
    {
        support::registerTestJob(factory, jobs::JobKind::Conversion);
        queue.initialize();
        add(jobs);
    }
    void add(int jobs)
    {
        for (int i = 0; i < jobs; ++i)
            queue.addToQueue(fixture.selectionFor(u"/v/a.mkv"_s, u"MKV Conversion"_s));
    }
    /// Starts the next job and ends it so.
    void runOne(const Outcome &outcome)
    {
        queue.manageQueue();
        auto *job = static_cast<TestJob *>(queue.currentJob().get());
        job->addOutcome(outcome);
        job->jobDone();
    }

    JobFixture fixture{JobFixture::Tools::Fake};
    jobs::JobFactory factory;
    KXQueueController queue{fixture.jobContext(), factory, nullptr};
    support::RecordingDesktop desktop;
    app::QueueWatch watch{queue, desktop};
    QSignalSpy ended{&watch, &app::QueueWatch::queueEnded};
};

} // namespace

class QueueWatchTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyQueueLetsTheMachineSleepAndTellsNothing()
    {
        const Watched watched;
        QVERIFY(!watched.desktop.awake);
        QVERIFY(watched.desktop.told.isEmpty());
    }

    void theMachineStaysAwakeFromTheFirstJobToTheEndOfTheLast()
    {
        Watched watched(2);
        QVERIFY(watched.desktop.awake); // it only waits for the next tick
        watched.queue.manageQueue();
        QVERIFY(watched.desktop.awake);
        watched.queue.currentJob()->jobDone();
        QVERIFY(watched.desktop.awake); // the second waits
        watched.runOne(Outcome::ok());
        QVERIFY(!watched.desktop.awake);
    }

    void itSaysWhy()
    {
        const Watched watched(1);
        QCOMPARE(watched.desktop.reasons.constFirst(), u"Videos are being processed"_s);
    }

    void aPausedQueueLetsItSleep()
    {
        Watched watched(2);
        watched.queue.manageQueue();
        watched.queue.pauseQueueButton(u"Pause"_s);
        QVERIFY(!watched.desktop.awake); // though another job waits
        watched.queue.pauseQueueButton(u"Resume"_s);
        QVERIFY(watched.desktop.awake);
        QVERIFY(watched.desktop.told.isEmpty());
    }

    void theEndIsToldOnceWithCounts()
    {
        Watched watched(7);
        for (const Outcome &outcome :
             {Outcome::ok(), Outcome::failed(u"x"_s), Outcome::ok(), Outcome::warnings(u"x"_s), Outcome::ok(),
              Outcome::stopped(), Outcome::failed(u"x"_s)}) {
            QVERIFY(watched.desktop.told.isEmpty());
            watched.runOne(outcome);
        }
        const QString summary = u"3 done, 1 done with warnings, 2 failed, 1 stopped"_s;
        QCOMPARE(watched.desktop.told, QStringList{u"Tessaray has finished: "_s + summary});
        QCOMPARE(watched.watch.summary(), summary);
        QCOMPARE(watched.ended.size(), 1);
        QCOMPARE(watched.ended.constFirst().constFirst().toString(), summary);
        watched.queue.theQueueLoop(); // idle rounds tell nothing more
        watched.queue.clearQueueButton();
        QCOMPARE(watched.desktop.told.size(), 1);
    }

    void aJobThatHasEndedIsCountedOnceHoweverOftenItChanges()
    {
        Watched watched(2);
        watched.runOne(Outcome::ok());
        Q_EMIT watched.queue.currentJob()->outcomeChanged();
        watched.runOne(Outcome::ok());
        QCOMPARE(watched.watch.summary(), u"2 done"_s);
    }

    /// The first of several films can be done before the next is added.
    void theEndIsNotToldWhileMoreAreComing()
    {
        Watched watched(1);
        watched.watch.expectMore(true);
        watched.runOne(Outcome::ok());
        QCOMPARE(watched.ended.size(), 0);
        watched.add(1);
        watched.watch.expectMore(false);
        QCOMPARE(watched.ended.size(), 0);
        watched.runOne(Outcome::ok());
        QCOMPARE(watched.ended.size(), 1);
        QCOMPARE(watched.watch.summary(), u"2 done"_s);
    }

    void whereNoMoreCameTheEndIsToldThen()
    {
        Watched watched(1);
        watched.watch.expectMore(true);
        watched.runOne(Outcome::ok());
        watched.watch.expectMore(false);
        QCOMPARE(watched.ended.size(), 1);
        QCOMPARE(watched.watch.summary(), u"1 done"_s);
    }

    void kindsThatDidNotOccurAreNotNamed()
    {
        Watched watched(1);
        watched.runOne(Outcome::failed(u"x"_s));
        QCOMPARE(watched.watch.summary(), u"1 failed"_s);
    }

    void theNextRunIsCountedAnew()
    {
        Watched watched(1);
        watched.runOne(Outcome::failed(u"x"_s));
        watched.add(2);
        QVERIFY(watched.desktop.awake);
        watched.runOne(Outcome::ok());
        watched.runOne(Outcome::ok());
        QCOMPARE(watched.desktop.told,
                 (QStringList{u"Tessaray has finished: 1 failed"_s, u"Tessaray has finished: 2 done"_s}));
    }

    void waitingJobsThatAreRemovedAreNoEndToTell()
    {
        Watched watched(2);
        watched.queue.deleteJobRow(0, 1);
        QVERIFY(watched.desktop.awake);
        watched.queue.deleteJobRow(0, 0);
        QVERIFY(!watched.desktop.awake);
        QVERIFY(watched.desktop.told.isEmpty()); // nothing was done
    }

    void theRunningJobIsRemovedAndTheOthersAreTold()
    {
        Watched watched(2);
        watched.runOne(Outcome::ok());
        watched.queue.manageQueue();
        watched.queue.stopCurrentJob();
        QVERIFY(!watched.desktop.awake);
        QCOMPARE(watched.desktop.told, QStringList{u"Tessaray has finished: 1 done"_s});
    }
};

TESSARAY_TEST(QueueWatchTest)
#include "QueueWatchTest.moc"
