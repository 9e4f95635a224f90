// How a job follows tools that run in the shell's background: the loop itself.
#include "jobs/KXJob.h"
#include "support/JobWorld.h"
#include "support/Waiting.h"

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
    using KXJob::runOnMain;
};

class PollBench final
{
public:
    PollBench()
        : record(world.notifications, {u"progressUpdate"_s})
        , job(std::make_shared<PolledJob>(world.jobContext()))
    {
    }
    ~PollBench()
    {
        if (job)
            job->stopJob();
    }
    Q_DISABLE_COPY_MOVE(PollBench)

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

    JobWorld world{JobWorld::Tools::Fake};
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
        PollBench bench;
        bench.poll(3);
        QVERIFY(waitFor([&] { return bench.finished > 0; }, 20000));
        QCOMPARE(bench.before, QStringList({u"first"_s, u"1"_s, u"2"_s}));
        QCOMPARE(bench.count.load(), 3);
        QCOMPARE(bench.finished, 1);
        QVERIFY(bench.finishedOnMain);
        QVERIFY(!bench.onMain); // the tools are asked on the job's own thread
        QCOMPARE(bench.record.count(u"progressUpdate"_s), 3);
        QCOMPARE(PollBench::textOf(bench.job->progressList()), u"3"_s);
    }

    void itRestsBetweenTwoCycles()
    {
        PollBench bench;
        QElapsedTimer clock;
        clock.start();
        bench.poll(3);
        QVERIFY(waitFor([&] { return bench.finished > 0; }, 20000));
        QVERIFY2(clock.elapsed() >= 3 * 480, qPrintable(QString::number(clock.elapsed())));
    }

    void aStopEndsItWithoutTheNextStep()
    {
        PollBench bench;
        bench.poll(1'000'000);
        QVERIFY(waitFor([&] { return bench.count > 0; }));
        bench.job->stopJob();
        QVERIFY(bench.job->monitorQueue()->waitForDone(2000));
        const int polls = bench.count;
        QVERIFY(!waitFor([&] { return bench.finished > 0 || bench.count > polls; }, 700));
    }

    /// The main thread may be waiting for the loop that waits for it.
    void aStopIsNotWaitedFor()
    {
        PollBench bench;
        std::atomic_bool returned = false;
        bench.job->monitorQueue()->start([&] {
            bench.job->runOnMain([] {}, Qt::BlockingQueuedConnection); // nobody serves events now
            returned = true;
        });
        QThread::msleep(100);
        QVERIFY(!returned);
        bench.job->stopJob();
        QVERIFY(bench.job->monitorQueue()->waitForDone(2000));
        QVERIFY(returned);
    }

    void whatWasAskedForBeforeAStopIsNotDoneAfterIt()
    {
        PollBench bench;
        bool wasDone = false;
        bench.job->runOnMain([&] { wasDone = true; }, Qt::QueuedConnection);
        bench.job->stopJob();
        QVERIFY(!waitFor([&] { return wasDone; }, 100));
    }

    /// A stopped job may be the program's last deed: its queue, its preferences, everything goes.
    void afterAStopNothingOfTheJobIsLeft()
    {
        std::weak_ptr<KXJob> forgotten;
        {
            PollBench bench;
            bench.poll(1'000'000);
            QVERIFY(waitFor([&] { return bench.count > 0; }));
            bench.job->runOnMain([] {}, Qt::QueuedConnection);
            forgotten = bench.job;
        }
        QVERIFY(forgotten.expired());
    }

    /// The loop's own thread can't be waited for on that thread.
    void aStoppedJobIsDestroyedOnTheMainThread()
    {
        PollBench bench;
        bench.poll(1'000'000);
        QVERIFY(waitFor([&] { return bench.count > 0; }));
        bench.job->stopJob();
        QCOMPARE(bench.threadOfItsEnd(), QThread::currentThread());
    }

    void aFinishedJobIsDestroyedOnTheMainThread()
    {
        PollBench bench;
        // The loop takes its time after its last words, while the main thread goes on.
        std::shared_ptr<int> slow(new int, [](const int *number) {
            QThread::msleep(300);
            delete number;
        });
        bench.job->poll(
            {}, [slow](const auto &, auto &) { return true; }, [&] { ++bench.finished; });
        slow.reset();
        QVERIFY(waitFor([&] { return bench.finished == 1; }));
        QCOMPARE(bench.threadOfItsEnd(), QThread::currentThread());
    }

    void waitingWorkDoesNotKeepTheJob()
    {
        PollBench bench;
        bench.job->runOnMain([] {}, Qt::QueuedConnection);
        const std::weak_ptr<KXJob> forgotten = bench.job;
        bench.job.reset();
        QVERIFY(forgotten.expired());
    }

    void blockingFromTheMainThreadIsDoneAtOnce()
    {
        PollBench bench;
        bool wasDone = false;
        bench.job->runOnMain([&] { wasDone = true; }, Qt::BlockingQueuedConnection);
        QVERIFY(wasDone);
    }

    void blockingFromAnotherThreadIsDoneOnTheMainThread()
    {
        PollBench bench;
        QThread *where = nullptr;
        std::atomic_bool doneFirst = false;
        bench.job->monitorQueue()->start([&] {
            bench.job->runOnMain([&] { where = QThread::currentThread(); }, Qt::BlockingQueuedConnection);
            doneFirst = where != nullptr;
        });
        QVERIFY(waitFor([&] { return bench.job->monitorQueue()->activeThreadCount() == 0; }));
        QCOMPARE(where, QThread::currentThread());
        QVERIFY(doneFirst);
    }

    void theFirstListHasAnItemForEachConverterThatIsThere()
    {
        PollBench bench;
        step::OutputGuard guard(bench.world.outputs, step::WhenTaken::NextFreeName);
        const auto converter = std::make_shared<KXConverter>(bench.world.converterContext(guard));
        converter->setStepName(u"Step"_s);
        bench.job->setStepConverterList({nullptr, converter, nullptr, converter});
        QCOMPARE(bench.job->firstProgress(),
                 jobs::ProgressList({{u"Step"_s, u"0%"_s}, {u"Step"_s, u"0%"_s}}));
    }
};

QTEST_GUILESS_MAIN(KXJobPollingTest)
#include "KXJobPollingTest.moc"
