// How the queue runs its jobs; what the user does is in KXQueueActionsTest.
#include "jobs/KXQueueController.h"

#include "prefs/KXWatchModeController.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::JobFixture;
using support::TestJob;

namespace {

const QString conversion = u"MKV Conversion"_s;

struct Queue
{
    Queue()
    {
        support::registerTestJob(factory, jobs::JobKind::Conversion);
        queue.initialize();
    }

    SelectionPointer selection(const QString &type, const QString &source = u"/v/film.mkv"_s) const
    {
        return fixture.selectionFor(source, type);
    }
    int add(const QString &type, const QString &source = u"/v/film.mkv"_s)
    {
        return queue.addToQueue(selection(type, source));
    }
    TestJob *job(qsizetype row) const { return static_cast<TestJob *>(queue.qJobList().at(row).get()); }
    QStringList names() const
    {
        QStringList list;
        for (const JobPointer &job : queue.qJobList())
            list.append(job->jobFileName());
        return list;
    }
    QStringList states() const
    {
        QStringList list;
        for (const JobPointer &job : queue.qJobList())
            list.append(job->jobStatus());
        return list;
    }

    JobFixture fixture{JobFixture::Tools::Fake};
    jobs::JobFactory factory;
    KXWatchModeController watchMode;
    KXQueueController queue{fixture.jobContext(), factory, &watchMode};
    QSignalSpy drawer{&queue, &KXQueueController::drawerWanted};
    QSignalSpy changed{&queue, &KXQueueController::jobChanged};
};

} // namespace

class KXQueueRunTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstJobOpensTheDrawerAndStartsTheTimer()
    {
        Queue q;
        q.add(conversion);
        q.add(conversion);
        QCOMPARE(q.drawer.size(), 1);
        QVERIFY(q.drawer.first().first().toBool());
        QVERIFY(q.queue.timerIsRunning());
    }

    void tickStartsTheFirstJobByItself()
    {
        Queue q;
        q.add(conversion);
        QCOMPARE(q.job(0)->starts, 0);
        QVERIFY(support::waitFor([&] { return q.job(0)->starts == 1; }));
        QCOMPARE(q.states(), QStringList{u"Running"_s});
    }

    void noTickIsWaitedFor()
    {
        Queue q;
        q.fixture.intervals.tick = 10 * support::patience;
        KXQueueController queue(q.fixture.jobContext(), q.factory, nullptr);
        queue.initialize();
        for (const QString &source : {u"/v/a.mkv"_s, u"/v/b.mkv"_s})
            queue.addToQueue(q.selection(conversion, source));
        const auto starts = [&](qsizetype row) {
            return static_cast<TestJob *>(queue.qJobList().at(row).get())->starts;
        };
        QCOMPARE(starts(0), 0); // the code that adds returns first
        QVERIFY(support::waitFor([&] { return starts(0) == 1; }));
        QVERIFY(!support::waitFor([&] { return starts(1) > 0; }, 100));
        queue.qJobList().first()->jobDone();
        QVERIFY(support::waitFor([&] { return starts(1) == 1; }));
    }

    void emptyQueueClosesTheDrawerAndStopsTheTimer()
    {
        Queue q;
        q.add(u"Baking"_s);
        q.drawer.clear();
        q.queue.theQueueLoop();
        QCOMPARE(q.drawer.size(), 1);
        QVERIFY(!q.drawer.first().first().toBool());
        QVERIFY(!q.queue.timerIsRunning());
        q.add(conversion);
        QVERIFY(q.queue.timerIsRunning());
    }

    void watchModeKeepsTheDrawerShut_data()
    {
        QTest::addColumn<bool>("watches");
        QTest::newRow("watching") << true;
        QTest::newRow("not watching") << false;
    }

    void watchModeKeepsTheDrawerShut()
    {
        QFETCH(bool, watches);
        Queue q;
        q.watchMode.setAppIsInWatchMode(watches);
        q.add(conversion);
        q.drawer.clear();
        q.queue.theQueueLoop();
        QCOMPARE(q.drawer.size(), watches ? 0 : 1);
        QCOMPARE(q.job(0)->starts, 1);
    }

    void secondJobStartsOnlyAfterTheFirstIsDone()
    {
        Queue q;
        q.add(conversion, u"/v/a.mkv"_s);
        q.add(conversion, u"/v/b.mkv"_s);
        QCOMPARE(q.names(), (QStringList{u"a.mkv"_s, u"b.mkv"_s}));
        q.queue.theQueueLoop();
        q.queue.theQueueLoop();
        QCOMPARE(q.states(), (QStringList{u"Running"_s, u"Queued"_s}));
        QCOMPARE(q.job(0)->starts, 1);
        QCOMPARE(q.job(1)->starts, 0);
        q.job(0)->jobDone();
        QCOMPARE(q.states(), (QStringList{u"Completed"_s, u"Queued"_s}));
        QVERIFY(!q.queue.qJobIsRunning());
        q.queue.theQueueLoop();
        QCOMPARE(q.states(), (QStringList{u"Completed"_s, u"Running"_s}));
        QCOMPARE(q.queue.currentJobRowIndex(), 1);
        q.job(1)->jobDone();
        q.queue.theQueueLoop();
        QCOMPARE(q.states(), (QStringList{u"Completed"_s, u"Completed"_s}));
        QCOMPARE(q.job(0)->starts + q.job(1)->starts, 2);
    }

    void allIsSaidBeforeTheJobStarts()
    {
        Queue q;
        q.add(conversion);
        QStringList seen;
        q.job(0)->onStart = [&](TestJob &job) {
            seen = {job.jobStatus(), q.queue.qJobIsRunning() ? u"running"_s : u"idle"_s};
            QCOMPARE(q.queue.currentJob().get(), &job);
            q.queue.theQueueLoop(); // a start that waits serves the timer
        };
        q.queue.manageQueue();
        QCOMPARE(seen, (QStringList{u"Running"_s, u"running"_s}));
        QCOMPARE(q.job(0)->starts, 1);
        QCOMPARE(q.changed.size(), 1);
    }

    void jobThatEndsWhileItStartsIsCompleted()
    {
        Queue q;
        q.add(conversion);
        q.job(0)->onStart = [](TestJob &job) { job.jobDone(); };
        q.queue.manageQueue();
        QVERIFY(!q.queue.qJobIsRunning());
        QCOMPARE(q.states(), QStringList{u"Completed"_s});
    }

    void currentJobCanBeStartedFromElsewhere()
    {
        Queue q;
        q.queue.startJobThread(); // there is none
        q.add(conversion);
        q.queue.manageQueue();
        q.queue.startJobThread();
        QCOMPARE(q.job(0)->starts, 2);
    }

    void progressOfTheJobIsShownAndGoesWithItsEnd()
    {
        Queue q;
        QSignalSpy shown(&q.queue, &KXQueueController::jobProgressListChanged);
        q.add(conversion);
        q.queue.manageQueue();
        const jobs::ProgressList list{{u"Converting"_s, u"45%"_s}};
        q.job(0)->updateProgressWithProgressList(list);
        QCOMPARE(q.queue.jobProgressList(), list);
        q.job(0)->jobDone();
        QVERIFY(q.queue.jobProgressList().isEmpty());
        QCOMPARE(shown.size(), 2);
    }

    void endOfAFinishedOrStoppedJobIsIgnored()
    {
        Queue q;
        q.add(conversion, u"/v/a.mkv"_s);
        q.add(conversion, u"/v/b.mkv"_s);
        q.queue.manageQueue();
        const auto first = q.queue.qJobList().first();
        const auto endAgain = [&] {
            q.fixture.notifications.post(u"jobDone"_s, QVariant::fromValue(jobs::ProgressList()),
                                         {{u"theJob"_s, QVariant::fromValue<QObject *>(first.get())}});
        };
        first->jobDone();
        endAgain(); // nothing runs
        q.queue.manageQueue();
        endAgain(); // another runs
        QVERIFY(q.queue.qJobIsRunning());
        QCOMPARE(q.states(), (QStringList{u"Completed"_s, u"Running"_s}));
    }

    void outcomeIsAMarkOnTheRow()
    {
        Queue q;
        q.add(conversion, u"/v/a.mkv"_s);
        q.add(conversion, u"/v/b.mkv"_s);
        q.queue.manageQueue();
        q.job(0)->addOutcome(steps::Outcome::failed(u"No."_s));
        q.changed.clear();
        q.job(0)->jobDone();
        QCOMPARE(q.states().first(), u"Completed"_s); // the texts of the queue stay as they are
        QCOMPARE(q.job(0)->outcome().verdict, steps::Verdict::Failed);
        QVERIFY(!q.changed.isEmpty());
        for (const auto &change : std::as_const(q.changed))
            QCOMPARE(change.first().toInt(), 0);
    }

    void ownOutputsAreKnownToWatchMode_data()
    {
        QTest::addColumn<bool>("watches");
        QTest::addColumn<QString>("output");
        QTest::addColumn<bool>("isKnown");
        QTest::newRow("movie") << true << u"/w/a.m4v"_s << true;
        QTest::newRow("capitals") << true << u"/w/a.M4V"_s << true;
        QTest::newRow("no movie") << true << u"/w/a.srt"_s << false;
        QTest::newRow("no extension") << true << u"/w/mkv"_s << false;
        QTest::newRow("not watching") << false << u"/w/a.m4v"_s << false;
    }

    void ownOutputsAreKnownToWatchMode()
    {
        QFETCH(bool, watches);
        QFETCH(QString, output);
        QFETCH(bool, isKnown);
        Queue q;
        const QUrl before = QUrl::fromLocalFile(u"/w/before.mkv"_s);
        q.watchMode.setBaseWatchFolderMovieList({before});
        q.watchMode.setAppIsInWatchMode(watches);
        q.fixture.notifications.post(u"conversionStarted"_s, QUrl::fromLocalFile(output));
        QList<QUrl> expected{before};
        if (isKnown)
            expected.append(QUrl::fromLocalFile(output));
        QCOMPARE(q.watchMode.baseWatchFolderMovieList(), expected);
    }

    void queueWithoutWatchModeWorks()
    {
        Queue q;
        KXQueueController queue(q.fixture.jobContext(), q.factory, nullptr);
        queue.initialize();
        QSignalSpy drawer(&queue, &KXQueueController::drawerWanted);
        queue.addToQueue(q.selection(conversion));
        queue.theQueueLoop();
        q.fixture.notifications.post(u"conversionStarted"_s, QUrl::fromLocalFile(u"/w/a.m4v"_s));
        QCOMPARE(drawer.size(), 2);
        QVERIFY(queue.qJobIsRunning());
    }
};

TESSARAY_TEST(KXQueueRunTest)
#include "KXQueueRunTest.moc"
