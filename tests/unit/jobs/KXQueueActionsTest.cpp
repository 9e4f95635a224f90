// What the user does to the queue: pause, resume, clear, delete a row, stop the running job.
#include "jobs/KXQueueController.h"

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

constexpr int ok = 1000;
constexpr int cancel = 1001;

/// A queue of conversions of "a", "b", ...; each job runs a real tool that hangs.
struct Queue
{
    explicit Queue(int jobs, int completed = 0)
    {
        const QUrl tool =
            fixture.installTool(u"tool"_s, {u"pid "_s + fixture.scratch.path(u"pids"_s), u"hang"_s});
        support::registerTestJob(factory, jobs::JobKind::Conversion, [this, tool](TestJob &job) {
            job.onStart = [this, tool](TestJob &self) {
                self.runStep(u"Converting"_s, fixture.scratch.url(self.jobFileName()), tool);
            };
        });
        queue.initialize();
        for (int i = 0; i < jobs; ++i)
            queue.addToQueue(fixture.selectionFor(u"/v/"_s + QChar(u'a' + i), u"MKV Conversion"_s));
        for (int i = 0; i < completed; ++i) {
            job(i)->onStart = {};
            queue.manageQueue();
            job(i)->jobDone();
        }
    }

    /// Starts the next job and waits until its tool runs.
    void start()
    {
        queue.manageQueue();
        QVERIFY(support::waitFor([&] { return !fixture.scratch.read(u"pids"_s).isEmpty(); }));
    }
    TestJob *job(qsizetype row) const { return static_cast<TestJob *>(queue.qJobList().at(row).get()); }
    qint64 tool() const { return fixture.scratch.read(u"pids"_s).split('\n').first().toLongLong(); }
    bool isPaused() const
    {
        return support::waitFor([this] { return support::stateOf(tool()) == 'T'; });
    }
    bool goesOn() const
    {
        return support::waitFor([this] { return support::stateOf(tool()) == 'S'; });
    }
    bool isGone() const
    {
        return support::waitFor([this] { return !support::runs(tool()); });
    }
    QString names() const
    {
        QString all;
        for (const JobPointer &job : queue.qJobList())
            all += job->jobFileName();
        return all;
    }

    JobFixture fixture{JobFixture::Tools::Fake};
    jobs::JobFactory factory;
    KXQueueController queue{fixture.jobContext(), factory, nullptr};
    QSignalSpy removed{&queue, &KXQueueController::jobRemoved};
};

} // namespace

class KXQueueActionsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pauseAndResumeAct()
    {
        Queue q(1);
        QSignalSpy titles(&q.queue, &KXQueueController::pauseButtonTitleChanged);
        q.start();
        q.queue.pauseQueueButton(u"Pause"_s);
        QCOMPARE(q.queue.pauseButtonTitle(), u"Resume"_s);
        QVERIFY(q.isPaused());
        q.queue.pauseQueueButton(u"Resume"_s);
        QCOMPARE(q.queue.pauseButtonTitle(), u"Pause"_s);
        QVERIFY(q.goesOn());
        QCOMPARE(titles.size(), 2);
    }

    void anyOtherTitleDoesNothing()
    {
        Queue q(1);
        q.start();
        for (const QString &title : {u"pause"_s, u""_s, QString(), u"Halt"_s})
            q.queue.pauseQueueButton(title);
        QCOMPARE(q.queue.pauseButtonTitle(), u"Pause"_s);
        QVERIFY(q.goesOn());
    }

    void nothingIsPausedWhileNoJobRuns()
    {
        Queue q(1);
        q.queue.pauseQueueButton(u"Pause"_s);
        QCOMPARE(q.queue.pauseButtonTitle(), u"Pause"_s);
        q.start();
        q.job(0)->jobDone();
        q.queue.pauseQueueButton(u"Pause"_s);
        QCOMPARE(q.queue.pauseButtonTitle(), u"Pause"_s);
    }

    void titleIsPauseAgainForTheNextJob()
    {
        Queue q(2);
        q.start();
        q.queue.pauseQueueButton(u"Pause"_s);
        q.job(0)->jobDone(); // its tool had ended before the pause
        QCOMPARE(q.queue.pauseButtonTitle(), u"Pause"_s);
    }

    void clearingRemovesOnlyCompletedRows()
    {
        Queue q(4, 2);
        q.start();
        q.queue.clearQueueButton();
        QCOMPARE(q.names(), u"cd"_s);
        QCOMPARE(q.job(0)->jobStatus(), u"Running"_s);
        QCOMPARE(q.job(1)->jobStatus(), u"Queued"_s);
        QVERIFY(q.queue.qJobIsRunning());
        QCOMPARE(q.queue.currentJobRowIndex(), 0); // rows above it went
        QCOMPARE(q.removed.size(), 2);
        QVERIFY(q.goesOn());
    }

    void jobAfterAClearEndsInItsOwnRow()
    {
        Queue q(3, 1);
        q.start();
        q.queue.clearQueueButton();
        QSignalSpy changed(&q.queue, &KXQueueController::jobChanged);
        q.job(0)->jobDone();
        QCOMPARE(q.job(0)->jobStatus(), u"Completed"_s);
        QCOMPARE(q.job(1)->jobStatus(), u"Queued"_s);
        for (const auto &change : std::as_const(changed))
            QCOMPARE(change.first().toInt(), 0);
    }

    void clearingAnEmptyQueueDoesNothing()
    {
        Queue q(0);
        q.queue.clearQueueButton();
        QVERIFY(q.removed.isEmpty());
    }

    void onlyTheFirstColumnDeletes()
    {
        Queue q(2);
        for (const int column : {1, 2, -1})
            q.queue.deleteJobRow(column, 0);
        QCOMPARE(q.names(), u"ab"_s);
    }

    void rowsThatAreNotThereAreNotDeleted()
    {
        Queue q(2);
        for (const int row : {-1, 2, 99})
            q.queue.deleteJobRow(0, row);
        QCOMPARE(q.names(), u"ab"_s);
        q.start();
        q.queue.deleteJobRow(0, 2);
        QVERIFY(q.goesOn());
    }

    void rowIsDeletedWhileNothingRuns()
    {
        Queue q(3);
        const auto job = q.queue.qJobList().at(1);
        q.queue.deleteJobRow(0, 1);
        QCOMPARE(q.names(), u"ac"_s);
        QCOMPARE(q.removed.first().first().toInt(), 1);
        q.fixture.notifications.post(u"taskCompletion"_s, u"Complete"_s);
        QCOMPARE(static_cast<TestJob *>(job.get())->heard, 0);
        QVERIFY(q.fixture.alerts.shown().isEmpty());
    }

    void rowAfterTheRunningOneIsDeleted()
    {
        Queue q(3, 1);
        q.start();
        q.queue.deleteJobRow(0, 2);
        QCOMPARE(q.names(), u"ab"_s);
        QCOMPARE(q.queue.currentJobRowIndex(), 1);
        QVERIFY(q.goesOn());
        QVERIFY(q.fixture.alerts.shown().isEmpty());
    }

    void rowBeforeTheRunningOneIsDeleted()
    {
        Queue q(3, 1);
        q.start();
        q.queue.deleteJobRow(0, 0);
        QCOMPARE(q.names(), u"bc"_s);
        QCOMPARE(q.queue.currentJobRowIndex(), 0);
        QCOMPARE(q.queue.qJobList().at(0), q.queue.currentJob());
        QVERIFY(q.goesOn());
        q.queue.deleteJobRow(0, 0); // and now that row is the running one
        QCOMPARE(q.fixture.alerts.shown().size(), 1);
    }

    void deletingAnotherRowResumesAPausedJob()
    {
        Queue q(2);
        q.start();
        q.queue.pauseQueueButton(u"Pause"_s);
        q.queue.deleteJobRow(0, 1);
        QVERIFY(q.goesOn());
        QCOMPARE(q.queue.pauseButtonTitle(), u"Pause"_s); // as it runs
    }

    void runningRowIsAskedAbout()
    {
        Queue q(2);
        q.start();
        q.queue.deleteJobRow(0, 0);
        QCOMPARE(q.fixture.alerts.messages(), QStringList{u"Stop the currently running job?"_s});
        const auto alert = q.fixture.alerts.shown().first();
        QCOMPARE(alert->buttons, (QStringList{u"OK"_s, u"Cancel"_s}));
        QCOMPARE(alert->style, platform::AlertStyle::Plain);
        QCOMPARE(alert->closesAfter.count(), 0);
        QVERIFY(q.isPaused());
        QCOMPARE(q.names(), u"ab"_s);
    }

    void cancelLeavesTheJobRunningAndTheRowInPlace()
    {
        Queue q(2);
        q.start();
        q.queue.deleteJobRow(0, 0);
        QVERIFY(q.fixture.alerts.answer(cancel));
        QVERIFY(q.goesOn());
        QCOMPARE(q.names(), u"ab"_s);
        QCOMPARE(q.job(0)->jobStatus(), u"Running"_s);
        QVERIFY(q.queue.qJobIsRunning());
        QVERIFY(q.removed.isEmpty());
    }

    void okStopsTheJobAndRemovesItsRow()
    {
        Queue q(2);
        q.fixture.alerts.willAnswer({ok});
        q.start();
        const auto job = q.queue.currentJob();
        q.queue.deleteJobRow(0, 0);
        QVERIFY(q.isGone());
        QCOMPARE(job->outcome().verdict, steps::Verdict::Stopped);
        QCOMPARE(q.names(), u"b"_s);
        QVERIFY(!q.queue.qJobIsRunning());
        QVERIFY(q.queue.jobProgressList().isEmpty());
        q.queue.manageQueue();
        QCOMPARE(q.job(0)->jobStatus(), u"Running"_s);
        QCOMPARE(q.queue.currentJobRowIndex(), 0);
    }

    void answerIsAboutTheJobThatWasAskedAbout()
    {
        for (const int answer : {ok, cancel}) {
            Queue q(2);
            q.start();
            q.queue.deleteJobRow(0, 0);
            q.job(0)->jobDone(); // meanwhile
            q.queue.manageQueue();
            q.queue.pauseQueueButton(u"Pause"_s);
            QVERIFY(q.fixture.alerts.answer(answer));
            QCOMPARE(q.names(), u"ab"_s);
            QVERIFY(!q.job(1)->jobIsCancelled());
            QVERIFY(q.queue.qJobIsRunning());
            QCOMPARE(q.queue.pauseButtonTitle(), u"Resume"_s);
        }
    }

    void answerAfterRowsWereClearedStopsTheRightRow()
    {
        Queue q(3, 1);
        q.start();
        q.queue.deleteJobRow(0, 1);
        q.queue.clearQueueButton();
        QVERIFY(q.fixture.alerts.answer(ok));
        QCOMPARE(q.names(), u"c"_s);
        QVERIFY(q.isGone());
    }

    void answerThatIsNoButtonChangesNothing()
    {
        Queue q(1);
        q.start();
        q.queue.pauseQueueButton(u"Pause"_s);
        q.queue.deleteJobRow(0, 0);
        q.queue.quitJobAlertClosedReturnCode(1002);
        QCOMPARE(q.names(), u"a"_s);
        QVERIFY(q.isPaused());
        QCOMPARE(q.queue.pauseButtonTitle(), u"Resume"_s);
    }

    void answerWithoutAQuestionIsIgnored()
    {
        Queue q(1);
        q.start();
        q.queue.quitJobAlertClosedReturnCode(ok);
        QCOMPARE(q.names(), u"a"_s);
        QVERIFY(!q.job(0)->jobIsCancelled());
    }

    void answerAfterTheQueueIsGoneIsIgnored()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        jobs::JobFactory factory;
        support::registerTestJob(factory, jobs::JobKind::Conversion);
        auto queue = std::make_unique<KXQueueController>(fixture.jobContext(), factory, nullptr);
        queue->initialize();
        queue->addToQueue(fixture.selectionFor(u"/v/a"_s, u"MKV Conversion"_s));
        queue->manageQueue();
        queue->deleteJobRow(0, 0);
        queue.reset();
        QVERIFY(fixture.alerts.answer(ok));
    }

    void runningJobIsStoppedWithoutAQuestion()
    {
        Queue q(2);
        q.queue.stopCurrentJob(); // nothing runs
        QCOMPARE(q.names(), u"ab"_s);
        q.start();
        q.queue.pauseQueueButton(u"Pause"_s);
        q.queue.stopCurrentJob();
        QVERIFY(q.isGone());
        QCOMPARE(q.names(), u"b"_s);
        QCOMPARE(q.queue.pauseButtonTitle(), u"Pause"_s);
        QVERIFY(q.fixture.alerts.shown().isEmpty());
    }

    void queueThatGoesStopsItsRunningJob()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        jobs::JobFactory factory;
        const QUrl tool =
            fixture.installTool(u"tool"_s, {u"pid "_s + fixture.scratch.path(u"pid"_s), u"hang"_s});
        support::registerTestJob(factory, jobs::JobKind::Conversion, [&](TestJob &job) {
            job.onStart = [&](TestJob &self) {
                self.runBackgroundStep(u"x"_s, fixture.scratch.url(u"x"_s), tool);
            };
        });
        {
            KXQueueController queue(fixture.jobContext(), factory, nullptr);
            queue.initialize();
            queue.addToQueue(fixture.selectionFor(u"/v/a"_s, u"MKV Conversion"_s));
            queue.manageQueue();
            QVERIFY(support::waitFor([&] { return !fixture.scratch.read(u"pid"_s).isEmpty(); }));
        }
        const qint64 pid = fixture.scratch.read(u"pid"_s).trimmed().toLongLong();
        QVERIFY(support::waitFor([&] { return !support::runs(pid); }));
    }
};

TESSARAY_TEST(KXQueueActionsTest)
#include "KXQueueActionsTest.moc"
