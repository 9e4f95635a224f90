// How a job follows tools that run in the shell's background: the loop itself.
#include "jobs/KXJob.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"

#include <QElapsedTimer>
#include <QTest>
#include <QThread>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// A job with the loop's doors open.
class PolledJob final : public KXJob
{
public:
    using KXJob::firstProgress;
    using KXJob::KXJob;
    using KXJob::poll;
    using KXJob::pollSoon;
    using KXJob::runOnMain;
};

class PollFixture final
{
public:
    explicit PollFixture(int pollMs = 20)
        : base(JobFixture::Tools::Fake)
        , record(base.notifications, {u"progressUpdate"_s})
        , job(std::make_shared<PolledJob>(contextOf(pollMs)))
    {
    }
    ~PollFixture()
    {
        if (job)
            job->stopJob();
    }
    Q_DISABLE_COPY_MOVE(PollFixture)

    /// Polls so many cycles, each with its number as the progress.
    void poll(int cycles)
    {
        const auto cycle = [this, cycles](const jobs::ProgressList &previous, jobs::ProgressList &current) {
            before << textOf(previous);
            onMain = onMain || QThread::currentThread() == main;
            current.append({u"Step"_s, QString::number(++count)});
            return count >= cycles;
        };
        job->poll({{u"Step"_s, u"first"_s}}, cycle, [this] {
            finishedOnMain = QThread::currentThread() == main;
            ++finished;
        });
    }
    /// Lets go of the job and answers where it was destroyed; null when it was not.
    QThread *threadOfItsEnd()
    {
        const auto where = std::make_shared<std::atomic<QThread *>>(nullptr);
        QObject::connect(
            job.get(), &QObject::destroyed, job.get(), [where] { *where = QThread::currentThread(); },
            Qt::DirectConnection);
        job.reset();
        waitFor([&] { return where->load() != nullptr; });
        return *where;
    }
    static QString textOf(const jobs::ProgressList &list)
    {
        return list.isEmpty() ? QString() : list.first().progress;
    }

    jobs::JobContext contextOf(int pollMs)
    {
        base.intervals.poll = pollMs;
        return base.jobContext();
    }

    JobFixture base;
    QThread *main = QThread::currentThread();
    NotificationRecord record;
    std::shared_ptr<PolledJob> job;
    QStringList before;
    std::atomic_int count = 0;
    std::atomic_bool onMain = false;
    int finished = 0;
    bool finishedOnMain = false;
};

} // namespace

class KXJobPollingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachCycleGetsTheItemsOfTheOneBefore()
    {
        PollFixture fixture;
        fixture.poll(3);
        QVERIFY(waitFor([&] { return fixture.finished > 0; }));
        QCOMPARE(fixture.before, QStringList({u"first"_s, u"1"_s, u"2"_s}));
        QCOMPARE(fixture.count.load(), 3);
        QCOMPARE(fixture.finished, 1);
        QVERIFY(fixture.finishedOnMain);
        QVERIFY(!fixture.onMain); // the tools are asked on the job's own thread
        QCOMPARE(fixture.record.count(u"progressUpdate"_s), 3);
        QCOMPARE(PollFixture::textOf(fixture.job->progressList()), u"3"_s);
    }

    void itRestsBetweenTwoCycles()
    {
        PollFixture fixture(300);
        QElapsedTimer clock;
        clock.start();
        fixture.poll(3);
        QVERIFY(waitFor([&] { return fixture.finished > 0; }));
        QVERIFY2(clock.elapsed() >= 2 * 290, qPrintable(QString::number(clock.elapsed())));
    }

    void newsEndARest()
    {
        PollFixture fixture(10 * support::patience);
        fixture.poll(3);
        QVERIFY(waitFor([&] { return fixture.count == 1; }));
        fixture.job->pollSoon();
        fixture.job->pollSoon(); // one look sees both
        QVERIFY(waitFor([&] { return fixture.count == 2; }));
        QVERIFY(!waitFor([&] { return fixture.count > 2; }, 200));
        fixture.job->pollSoon();
        QVERIFY(waitFor([&] { return fixture.finished > 0; }));
    }

    void aStopEndsItWithoutTheNextStep()
    {
        PollFixture fixture;
        fixture.poll(1'000'000);
        QVERIFY(waitFor([&] { return fixture.count > 0; }));
        fixture.job->stopJob();
        QVERIFY(fixture.job->monitorQueue()->waitForDone(support::patience));
        const int polls = fixture.count;
        QVERIFY(!waitFor([&] { return fixture.finished > 0 || fixture.count > polls; }, 700));
    }

    /// The main thread may be waiting for the loop that waits for it.
    void aStopIsNotWaitedFor()
    {
        PollFixture fixture;
        std::atomic_bool returned = false;
        fixture.job->monitorQueue()->start([&] {
            fixture.job->runOnMain([] {}, Qt::BlockingQueuedConnection); // no event loop runs now
            returned = true;
        });
        QThread::msleep(100);
        QVERIFY(!returned);
        fixture.job->stopJob();
        QVERIFY(fixture.job->monitorQueue()->waitForDone(support::patience));
        QVERIFY(returned);
    }

    void whatWasAskedForBeforeAStopIsNotDoneAfterIt()
    {
        PollFixture fixture;
        bool wasDone = false;
        fixture.job->runOnMain([&] { wasDone = true; }, Qt::QueuedConnection);
        fixture.job->stopJob();
        QVERIFY(!waitFor([&] { return wasDone; }, 100));
    }

    /// A stopped job may be the program's last deed: its queue, its preferences, everything goes.
    void afterAStopNothingOfTheJobIsLeft()
    {
        std::weak_ptr<KXJob> forgotten;
        {
            PollFixture fixture;
            fixture.poll(1'000'000);
            QVERIFY(waitFor([&] { return fixture.count > 0; }));
            fixture.job->runOnMain([] {}, Qt::QueuedConnection);
            forgotten = fixture.job;
        }
        QVERIFY(forgotten.expired());
    }

    /// The loop's own thread can't be waited for on that thread.
    void aStoppedJobIsDestroyedOnTheMainThread()
    {
        PollFixture fixture;
        fixture.poll(1'000'000);
        QVERIFY(waitFor([&] { return fixture.count > 0; }));
        fixture.job->stopJob();
        QCOMPARE(fixture.threadOfItsEnd(), QThread::currentThread());
    }

    void aFinishedJobIsDestroyedOnTheMainThread()
    {
        PollFixture fixture;
        // The loop takes its time after its last words, while the main thread goes on.
        std::shared_ptr<int> slow(new int, [](const int *number) {
            QThread::msleep(300);
            delete number;
        });
        fixture.job->poll(
            {}, [slow](const auto &, auto &) { return true; }, [&] { ++fixture.finished; });
        slow.reset();
        QVERIFY(waitFor([&] { return fixture.finished == 1; }));
        QCOMPARE(fixture.threadOfItsEnd(), QThread::currentThread());
    }

    void waitingWorkDoesNotKeepTheJob()
    {
        PollFixture fixture;
        fixture.job->runOnMain([] {}, Qt::QueuedConnection);
        const std::weak_ptr<KXJob> forgotten = fixture.job;
        fixture.job.reset();
        QVERIFY(forgotten.expired());
    }

    void blockingFromTheMainThreadIsDoneAtOnce()
    {
        PollFixture fixture;
        bool wasDone = false;
        fixture.job->runOnMain([&] { wasDone = true; }, Qt::BlockingQueuedConnection);
        QVERIFY(wasDone);
    }

    void blockingFromAnotherThreadIsDoneOnTheMainThread()
    {
        PollFixture fixture;
        QThread *where = nullptr;
        std::atomic_bool doneFirst = false;
        fixture.job->monitorQueue()->start([&] {
            fixture.job->runOnMain([&] { where = QThread::currentThread(); }, Qt::BlockingQueuedConnection);
            doneFirst = where != nullptr;
        });
        QVERIFY(waitFor([&] { return fixture.job->monitorQueue()->activeThreadCount() == 0; }));
        QCOMPARE(where, QThread::currentThread());
        QVERIFY(doneFirst);
    }

    void theFirstListHasAnItemForEachConverterThatIsThere()
    {
        PollFixture fixture;
        steps::OutputGuard guard(fixture.base.outputs, steps::WhenTaken::NextFreeName);
        const auto converter = std::make_shared<KXConverter>(fixture.base.converterContext(guard));
        converter->setStepName(u"Step"_s);
        fixture.job->setStepConverterList({nullptr, converter, nullptr, converter});
        QCOMPARE(fixture.job->firstProgress(),
                 jobs::ProgressList({{u"Step"_s, u"0%"_s}, {u"Step"_s, u"0%"_s}}));
    }
};

TESSARAY_TEST(KXJobPollingTest)
#include "KXJobPollingTest.moc"
