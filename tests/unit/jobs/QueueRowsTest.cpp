// What can be done with rows beside deleting them: move, run again, stop after the running one; and a held
// queue.
#include "jobs/KXQueueController.h"

#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"

#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::JobFixture;
using support::TestJob;
using support::waitFor;

namespace {

/// A queue of conversions of "a", "b", ... whose jobs run until the test ends them.
struct Rows
{
    explicit Rows(int jobs)
    {
        support::registerTestJob(factory, jobs::JobKind::Conversion);
        queue.initialize();
        queue.rememberChoices();
        for (int i = 0; i < jobs; ++i)
            add(QString(QChar(u'a' + i)));
    }

    void add(const QString &name)
    {
        fixture.scratch.write(name, "film");
        queue.addToQueue(fixture.selectionFor(fixture.scratch.path(name), u"MKV Conversion"_s));
    }
    TestJob *job(qsizetype row) const { return static_cast<TestJob *>(queue.qJobList().at(row).get()); }
    QString rows() const
    {
        QStringList all;
        for (const JobPointer &job : queue.qJobList())
            all.append(job->jobFileName() + job->jobStatus().first(1));
        return all.join(u' ');
    }
    void endCurrent() { queue.currentJob()->jobDone(); }
    bool runs(const QString &name)
    {
        return waitFor([&] { return queue.qJobIsRunning() && queue.currentJob()->jobFileName() == name; });
    }

    JobFixture fixture{JobFixture::Tools::Fake};
    jobs::JobFactory factory;
    KXQueueController queue{fixture.jobContext(), factory, nullptr};
    QSignalSpy moved{&queue, &KXQueueController::jobMoved};
};

} // namespace

class QueueRowsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theLoopTakesTheFirstThatWaits()
    {
        Rows r(4);
        r.queue.manageQueue();
        QVERIFY(r.queue.moveJob(3, 1));
        QCOMPARE(r.rows(), u"aR dQ bQ cQ"_s);
        QCOMPARE(r.moved.takeFirst(), (QVariantList{3, 1}));
        r.endCurrent();
        QVERIFY(r.runs(u"d"_s));
        QCOMPARE(r.queue.currentJobRowIndex(), 1);
    }

    void theRunningRowIsKnownWhereverItStands()
    {
        Rows r(3);
        r.queue.manageQueue();
        QVERIFY(r.queue.moveJob(2, 0));
        QCOMPARE(r.rows(), u"cQ aR bQ"_s);
        QCOMPARE(r.queue.currentJobRowIndex(), 1);
        QVERIFY(r.queue.moveJob(0, 2));
        QCOMPARE(r.rows(), u"aR bQ cQ"_s);
        QCOMPARE(r.queue.currentJobRowIndex(), 0);
    }

    void onlyWaitingRowsMove()
    {
        Rows r(3);
        r.queue.manageQueue();
        r.endCurrent();
        r.queue.manageQueue();
        for (const int row : {0, 1, -1, 3}) {
            QVERIFY(!r.queue.canMoveJob(row));
            QVERIFY(!r.queue.moveJob(row, 2));
        }
        for (const int to : {-1, 3})
            QVERIFY(!r.queue.moveJob(2, to));
        QVERIFY(r.queue.canMoveJob(2));
        QVERIFY(r.queue.moveJob(2, 2));
        QCOMPARE(r.rows(), u"aC bR cQ"_s);
        QCOMPARE(r.moved.size(), 0);
    }

    void anEndedJobRunsAgainBehindTheOthers()
    {
        Rows r(2);
        r.job(0)->onStart = [](TestJob &self) {
            self.jobSelection()->trackList().constFirst()->setTrackTitle(u"changed by its run"_s);
            self.addOutcome(steps::Outcome::failed(u"why"_s));
        };
        r.job(0)->jobSelection()->setTrackList(
            {JobFixture::track(u"Video"_s, r.fixture.scratch.path(u"a"_s))});
        r.queue.manageQueue();
        r.endCurrent();
        QCOMPARE(r.queue.runAgainRefusal(0), QString());
        QCOMPARE(r.queue.runJobAgain(0), 1);
        QCOMPARE(r.rows(), u"bQ aQ"_s);
        QCOMPARE(r.job(1)->outcome().verdict, steps::Verdict::Unknown);
        QCOMPARE(r.job(1)->jobType(), u"MKV Conversion"_s);
        QVERIFY(r.runs(u"b"_s));
        r.endCurrent();
        QVERIFY(r.runs(u"a"_s));
        QCOMPARE(r.job(1)->starts, 1);
    }

    void itRunsAgainAsItWasChosen()
    {
        Rows r(0);
        const QString film = r.fixture.scratch.write(u"f"_s, "film");
        const SelectionPointer selection = r.fixture.selectionFor(film, u"MKV Conversion"_s);
        selection->setTrackList({JobFixture::track(u"Video"_s, film, u"h264"_s)});
        selection->setAddedAudioTrackList({JobFixture::track(u"Audio"_s, film, u"aac"_s)});
        r.queue.addToQueue(selection);
        QCOMPARE(r.job(0)->jobSelection()->trackList().size(), 2);
        r.job(0)->jobSelection()->trackList().constFirst()->setTrackMkvmergeID({});
        r.queue.manageQueue();
        r.endCurrent();
        QCOMPARE(r.queue.runJobAgain(0), 0);
        const TrackList tracks = r.job(0)->jobSelection()->trackList();
        QCOMPARE(tracks.size(), 2); // what was added is not added once more
        QCOMPARE(tracks.constFirst()->trackMkvmergeID(), u"0"_s);
        QCOMPARE(tracks.constFirst()->userCodec(), u"h264"_s);
    }

    void onlyEndedJobsRunAgain()
    {
        Rows r(2);
        r.queue.manageQueue();
        for (const int row : {0, 1, -1, 2}) {
            QVERIFY(!r.queue.runAgainRefusal(row).isNull());
            QCOMPARE(r.queue.runJobAgain(row), -1);
        }
        QCOMPARE(r.rows(), u"aR bQ"_s);
    }

    void notWithASourceThatIsGoneOrHasChanged()
    {
        Rows r(1);
        r.queue.manageQueue();
        r.endCurrent();
        const QString source = r.fixture.scratch.path(u"a"_s);
        r.fixture.scratch.write(u"a"_s, "another film");
        QVERIFY(r.queue.runAgainRefusal(0).contains(source + u" has changed"_s));
        QVERIFY(QFile::remove(source));
        QVERIFY(r.queue.runAgainRefusal(0).contains(source + u" is not there"_s));
        QCOMPARE(r.queue.runJobAgain(0), -1);
        QCOMPARE(r.rows(), u"aC"_s);
    }

    void withoutMemoryOfChoicesNothingRunsAgain()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        jobs::JobFactory factory;
        support::registerTestJob(factory, jobs::JobKind::Conversion);
        KXQueueController queue(fixture.jobContext(), factory, nullptr);
        queue.initialize();
        queue.addToQueue(fixture.selectionFor(u"/v/a.mkv"_s, u"MKV Conversion"_s));
        queue.manageQueue();
        queue.currentJob()->jobDone();
        QVERIFY(!queue.runAgainRefusal(0).isNull());
    }

    void aHeldQueueStartsNothingUntilResume()
    {
        Rows r(2);
        QSignalSpy held(&r.queue, &KXQueueController::heldChanged);
        r.queue.hold();
        QVERIFY(r.queue.isHeld() && r.queue.canPauseOrResume());
        QCOMPARE(r.queue.pauseButtonTitle(), u"Resume"_s);
        r.queue.theQueueLoop();
        r.add(u"c"_s);
        QTest::qWait(100);
        QCOMPARE(r.rows(), u"aQ bQ cQ"_s);
        r.queue.pauseQueueButton(u"Pause"_s);
        QVERIFY(r.queue.isHeld());
        r.queue.pauseQueueButton(u"Resume"_s);
        QVERIFY(!r.queue.isHeld());
        QCOMPARE(r.queue.pauseButtonTitle(), u"Pause"_s);
        QVERIFY(r.runs(u"a"_s));
        QCOMPARE(held.size(), 2);
    }

    void withNothingThatWaitsItIsNotHeld()
    {
        Rows r(1);
        r.queue.hold();
        r.queue.deleteJobRow(0, 0);
        QVERIFY(!r.queue.isHeld());
        QCOMPARE(r.queue.pauseButtonTitle(), u"Pause"_s);
        r.queue.hold();
        QVERIFY(!r.queue.isHeld());
        r.add(u"b"_s);
        QVERIFY(r.runs(u"b"_s));
    }

    void afterThisOneItStops()
    {
        Rows r(3);
        r.queue.setStopsAfterThisJob(true);
        QVERIFY(!r.queue.stopsAfterThisJob()); // none runs
        r.queue.manageQueue();
        r.queue.setStopsAfterThisJob(true);
        QVERIFY(r.queue.stopsAfterThisJob());
        QCOMPARE(r.queue.pauseButtonTitle(), u"Pause"_s); // the running one can be paused
        r.endCurrent();
        QVERIFY(r.queue.isHeld() && !r.queue.stopsAfterThisJob());
        QCOMPARE(r.queue.pauseButtonTitle(), u"Resume"_s);
        QTest::qWait(100);
        QCOMPARE(r.rows(), u"aC bQ cQ"_s);
        r.queue.pauseQueueButton(u"Resume"_s);
        QVERIFY(r.runs(u"b"_s));
        r.endCurrent();
        QVERIFY(r.runs(u"c"_s)); // once
    }

    void theWishToStopEndsWithAJobThatIsStopped()
    {
        Rows r(2);
        r.queue.manageQueue();
        r.queue.setStopsAfterThisJob(true);
        r.queue.stopCurrentJob();
        QVERIFY(!r.queue.stopsAfterThisJob() && !r.queue.isHeld());
    }
};

TESSARAY_TEST(QueueRowsTest)
#include "QueueRowsTest.moc"
