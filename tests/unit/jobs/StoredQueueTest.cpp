// What is stored of the queue, and what the next program makes of it.
#include "jobs/StoredQueue.h"

#include "jobs/KXQueueController.h"
#include "support/TestMain.h"
#include "support/Unprivileged.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using jobs::JobRecord;
using steps::Verdict;
using support::JobFixture;
using support::Scratch;
using support::TestJob;
using support::waitFor;

namespace {

/// A program with a stored queue in a folder that outlives it. Its jobs run until the test ends them.
struct Window
{
    explicit Window(const Scratch &place)
        : home(place)
        , stored(place.path(u"queue"_s), queue)
    {
        for (const jobs::JobKind kind :
             {jobs::JobKind::Conversion, jobs::JobKind::Splitting, jobs::JobKind::Remux})
            support::registerTestJob(factory, kind);
        queue.initialize();
        problem = stored.open();
    }

    void add(const QString &name, const QString &type = u"MKV Conversion"_s)
    {
        const QString film = QFileInfo::exists(home.path(name)) ? home.path(name) : home.write(name, "film");
        queue.addToQueue(fixture.selectionFor(film, type));
    }
    TestJob *job(qsizetype row) const { return static_cast<TestJob *>(queue.qJobList().at(row).get()); }
    /// "a Queued unknown, b Completed interrupted"
    QString rows() const
    {
        QStringList all;
        for (const JobPointer &job : queue.qJobList())
            all.append(job->jobFileName() + u' ' + job->jobStatus() + u' ' + job->outcome().word());
        return all.join(u", "_s);
    }
    QStringList files() const
    {
        return QDir(home.path(u"queue"_s)).entryList({u"*.json*"_s}, QDir::Files | QDir::Hidden);
    }

    const Scratch &home;
    JobFixture fixture{JobFixture::Tools::Fake};
    jobs::JobFactory factory;
    KXQueueController queue{fixture.jobContext(), factory, nullptr};
    jobs::StoredQueue stored;
    QString problem;
};

/// A record as another program left it.
void leave(const Scratch &home, const QString &file, JobRecord::State state, const QString &film,
           double place = 1)
{
    JobRecord record;
    record.state = state;
    record.place = place;
    record.job.fileName = film;
    record.job.selection = std::make_shared<KXSelection>();
    record.job.selection->setJobType(u"MKV Conversion"_s);
    record.job.selection->setVideoTrackFileURL(home.url(film));
    record.job.sources = jobs::statesOf({home.url(film)});
    if (state == JobRecord::State::Publishing)
        record.outputs = {jobs::statesOf({home.url(u"out.m4v"_s)})};
    home.write(u"queue/"_s + file, toBytes(record));
}

} // namespace

class StoredQueueTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatWaitedWaitsHeldAndInItsOrder()
    {
        const Scratch home;
        {
            Window one(home);
            QCOMPARE(one.problem, QString());
            for (const auto &name : {u"a"_s, u"b"_s, u"c"_s, u"d"_s})
                one.add(name);
            one.queue.hold();
            QVERIFY(one.queue.moveJob(3, 1));
        } // however it ended: nothing was said to it
        Window next(home);
        QCOMPARE(next.problem, QString());
        QCOMPARE(next.rows(), u"a Queued unknown, d Queued unknown, b Queued unknown, c Queued unknown"_s);
        QVERIFY(next.queue.isHeld());
        QCOMPARE(next.queue.pauseButtonTitle(), u"Resume"_s);
        QTest::qWait(100);
        QVERIFY(!next.queue.qJobIsRunning());
        next.add(u"e"_s);
        QCOMPARE(next.queue.qJobList().constLast()->jobFileName(), u"e"_s);
        next.queue.pauseQueueButton(u"Resume"_s);
        QVERIFY(waitFor([&] { return next.queue.qJobIsRunning(); }));
        QCOMPARE(next.queue.currentJobRowIndex(), 0);
        QCOMPARE(next.job(0)->starts, 1);
    }

    void jobsOfEveryWayToAddThemAreStored()
    {
        const Scratch home;
        {
            Window one(home);
            one.queue.hold();
            const SelectionPointer split =
                one.fixture.selectionFor(home.write(u"s"_s, "x"), u"MKV Splitting"_s);
            split->setEditFilesURLsList({home.url(u"one.mkv"_s), home.url(u"two.mkv"_s)});
            QCOMPARE(one.queue.addToQueue(split), 2);
            QCOMPARE(one.files().size(), 2);
        }
        Window next(home);
        QCOMPARE(next.rows(), u"one.mkv Queued unknown, two.mkv Queued unknown"_s);
        QCOMPARE(next.job(1)->kind, jobs::JobKind::Splitting);
        QCOMPARE(next.job(1)->jobType(), u"MKV Splitting"_s);
        QCOMPARE(next.job(1)->jobSelection()->videoTrackFileURL(), home.url(u"two.mkv"_s));
    }

    void whatRanIsInterruptedAndCanRunAgain()
    {
        const Scratch home;
        {
            Window one(home);
            one.add(u"a"_s);
            one.add(u"b"_s);
            one.queue.manageQueue();
            QVERIFY(one.queue.qJobIsRunning());
        }
        {
            Window next(home);
            QCOMPARE(next.rows(), u"a Completed interrupted, b Queued unknown"_s);
            QVERIFY(!next.job(0)->outcome().sentence.isEmpty());
        }
        Window third(home); // and is not forgotten by another start
        QCOMPARE(third.rows(), u"a Completed interrupted, b Queued unknown"_s);
        QCOMPARE(third.queue.runAgainRefusal(0), QString());
        QCOMPARE(third.queue.runJobAgain(0), 1);
        QCOMPARE(third.rows(), u"b Queued unknown, a Queued unknown"_s);
        QCOMPARE(third.files().size(), 2);
        QVERIFY(third.queue.isHeld());
        third.stored.close();
        QCOMPARE(Window(home).rows(), QString()); // another one has the folder
    }

    void runningAgainIsStored()
    {
        const Scratch home;
        leave(home, u"1.json"_s, JobRecord::State::Running, QFileInfo(home.write(u"a"_s, "film")).fileName());
        {
            Window one(home);
            QVERIFY(!one.queue.isHeld()); // nothing waits
            one.queue.setStopsAfterThisJob(true);
            QCOMPARE(one.queue.runJobAgain(0), 0);
            QCOMPARE(one.files(), QStringList{u"1.json"_s});
        }
        QCOMPARE(Window(home).rows(), u"a Queued unknown"_s);
    }

    void anEndedJobIsNotKept_data()
    {
        QTest::addColumn<bool>("fails");
        QTest::newRow("well") << false;
        QTest::newRow("failed") << true;
    }

    void anEndedJobIsNotKept()
    {
        QFETCH(bool, fails);
        const Scratch home;
        {
            Window one(home);
            one.add(u"a"_s);
            one.queue.manageQueue();
            if (fails)
                one.job(0)->addOutcome(steps::Outcome::failed(u"why"_s));
            one.queue.currentJob()->jobDone();
            QCOMPARE(one.files(), QStringList());
            QCOMPARE(one.queue.runJobAgain(0), 0); // but can run again, and is stored then
            QCOMPARE(one.files().size(), 1);
        }
        QCOMPARE(Window(home).rows(), u"a Queued unknown"_s);
    }

    void whatIsTakenAwayIsForgotten()
    {
        const Scratch home;
        leave(home, u"1.json"_s, JobRecord::State::Interrupted, u"gone"_s);
        Window one(home);
        one.queue.hold();
        one.add(u"a"_s);
        one.add(u"b"_s);
        one.queue.deleteJobRow(0, 1);
        one.queue.clearQueueButton();
        QCOMPARE(one.files().size(), 1);
        QCOMPARE(one.rows(), u"b Queued unknown"_s);
    }

    void quittingKeepsWhatWaitsAndWhatRan()
    {
        const Scratch home;
        {
            Window one(home);
            one.add(u"a"_s);
            one.add(u"b"_s);
            one.queue.manageQueue();
            QCOMPARE(one.stored.store(), QString());
            one.stored.close();
            one.queue.removeAllJobs();
            QVERIFY(one.queue.qJobList().isEmpty());
        }
        QCOMPARE(Window(home).rows(), u"a Completed interrupted, b Queued unknown"_s);
    }

    void aKillAfterTheRenamesIsACompletedJob()
    {
        const Scratch home;
        home.write(u"a"_s, "film");
        home.write(u"out.m4v"_s, "a film as well");
        leave(home, u"1.json"_s, JobRecord::State::Publishing, u"a"_s);
        {
            Window one(home);
            QCOMPARE(one.rows(), u"a Completed ok"_s);
            QCOMPARE(one.job(0)->outputs(), QList<QUrl>{home.url(u"out.m4v"_s)});
            QVERIFY(!one.queue.isHeld());
        }
        QCOMPARE(Window(home).rows(), QString()); // told once
    }

    void aKillBeforeTheRenamesIsAnInterruptedJob_data()
    {
        QTest::addColumn<QByteArray>("stands");
        QTest::newRow("nothing stands there") << QByteArray();
        QTest::newRow("another file does") << QByteArray("not what was to be published");
    }

    void aKillBeforeTheRenamesIsAnInterruptedJob()
    {
        QFETCH(QByteArray, stands);
        const Scratch home;
        home.write(u"a"_s, "film");
        home.write(u"out.m4v"_s, "x");
        leave(home, u"1.json"_s, JobRecord::State::Publishing, u"a"_s);
        QVERIFY(QFile::remove(home.path(u"out.m4v"_s)));
        if (!stands.isNull())
            home.write(u"out.m4v"_s, stands);
        QCOMPARE(Window(home).rows(), u"a Completed interrupted"_s);
    }

    void publishingIsWrittenBeforeTheFirstRename()
    {
        const Scratch home;
        Window one(home);
        const QUrl tool = one.fixture.installTool(u"tool"_s, {u"write 5 last"_s});
        one.add(u"a"_s);
        one.job(0)->onStart = [&](TestJob &self) { self.runStep(u"x"_s, home.url(u"out.m4v"_s), tool); };
        JobRecord seen;
        bool stoodThen = true;
        connect(&one.queue, &KXQueueController::jobPublishing, this, [&] { // after the store has heard of it
            seen = jobs::recordFrom(home.read(u"queue/"_s + one.files().constFirst())).record;
            stoodThen = QFileInfo::exists(home.path(u"out.m4v"_s));
        });
        one.queue.manageQueue();
        QVERIFY(waitFor([&] { return !one.queue.qJobIsRunning(); }));
        QVERIFY(seen.state == JobRecord::State::Publishing);
        QVERIFY(!stoodThen);
        QVERIFY(seen.outputs == jobs::statesOf({home.url(u"out.m4v"_s)}));
        QCOMPARE(one.files(), QStringList());
    }

    void claimedNamesAreWritten()
    {
        const Scratch home;
        Window one(home);
        one.add(u"a"_s);
        one.queue.manageQueue();
        one.fixture.notifications.post(u"conversionStarted"_s, home.url(u"out.m4v"_s));
        const JobRecord record = jobs::recordFrom(home.read(u"queue/"_s + one.files().constFirst())).record;
        QVERIFY(record.state == JobRecord::State::Running);
        QCOMPARE(record.claimed, QList<QUrl>{home.url(u"out.m4v"_s)});
    }

    void aSourceThatChangedMeanwhileIsNotRead()
    {
        const Scratch home;
        {
            Window one(home);
            one.queue.hold();
            one.add(u"a"_s);
            one.add(u"b"_s);
            one.queue.hold();
        }
        home.write(u"a"_s, "quite another film");
        Window next(home);
        next.queue.pauseQueueButton(u"Resume"_s);
        QVERIFY(waitFor(
            [&] { return next.queue.currentJob() && next.queue.currentJob()->jobFileName() == u"b"_s; }));
        QCOMPARE(next.job(0)->starts, 0);
        QCOMPARE(next.job(0)->outcome().verdict, Verdict::Failed);
        QVERIFY(next.job(0)->outcome().sentence.contains(home.path(u"a"_s) + u" has changed"_s));
    }

    void recordsThatCannotBeUsedAreKeptAndTold()
    {
        const Scratch home;
        leave(home, u"1.json"_s, JobRecord::State::Waiting, u"a"_s);
        home.write(u"queue/2.json"_s, home.read(u"queue/1.json"_s).chopped(9));
        home.write(u"queue/3.json"_s, R"({"version": 2, "more": true})");
        QVERIFY(QDir().mkpath(home.path(u"elsewhere"_s)));
        QCOMPARE(::mkfifo(QFile::encodeName(home.path(u"queue/4.json"_s)).constData(), 0600), 0);
        const QByteArray newer = home.read(u"queue/3.json"_s);
        const QByteArray cut = home.read(u"queue/2.json"_s);
        const QString aside = u"2.json damaged "_s + QDate::currentDate().toString(Qt::ISODate);
        {
            Window one(home);
            QCOMPARE(one.rows(), u"a Queued unknown"_s);
            QVERIFY2(one.problem.contains(aside), qPrintable(one.problem));
            QVERIFY2(one.problem.contains(u"3.json is of a newer version"_s), qPrintable(one.problem));
        }
        QCOMPARE(home.read(u"queue/3.json"_s), newer);
        QCOMPARE(home.read(u"queue/"_s + aside), cut);
        Window next(home);
        QVERIFY(!next.problem.contains(u"damaged"_s)); // told once
        QVERIFY(next.problem.contains(u"newer version"_s));
    }

    void onlyOneAtATimeKeepsAFolder()
    {
        const Scratch home;
        Window one(home);
        one.queue.hold();
        one.add(u"a"_s);
        Window other(home);
        QVERIFY2(other.problem.contains(u"Another window"_s), qPrintable(other.problem));
        QCOMPARE(other.rows(), QString());
        other.add(u"b"_s);
        other.queue.manageQueue();
        QCOMPARE(one.files().size(), 1);
        QVERIFY(other.queue.qJobIsRunning()); // it works all the same
    }

    /// Whether that machine still runs can't be seen from here.
    void aFolderThatAnotherMachineHoldsIsToldWithItsWayOut()
    {
        const Scratch home;
        QByteArray lines;
        {
            Window one(home);
            one.add(u"a"_s);
            lines = home.read(u"queue/holder"_s);
            QVERIFY(!Window(home).problem.contains(u"remove"_s)); // it runs here
        }
        const QByteArray pid = lines.left(lines.indexOf('\n'));
        home.write(u"queue/holder"_s, lines.replace(QSysInfo::machineHostName().toUtf8(), "elsewhere"));
        {
            const Window two(home);
            const QString holder = home.path(u"queue/holder"_s);
            QVERIFY2(
                two.problem.endsWith(
                    u"It is process %1 on elsewhere. If that has ended, remove %2 and start again."_s.arg(
                        QString::fromLatin1(pid), holder)),
                qPrintable(two.problem));
            QCOMPARE(two.rows(), QString());
        }
        QVERIFY(QFile::remove(home.path(u"queue/holder"_s)));
        const Window three(home);
        QCOMPARE(three.problem, QString());
        QCOMPARE(three.rows(), u"a Queued unknown"_s);
    }

    void aFolderThatTakesNothingIsToldOnceAndTriedAgain()
    {
        const Scratch home;
        Window one(home);
        QSignalSpy failed(&one.stored, &jobs::StoredQueue::failed);
        one.queue.hold();
        const QString folder = home.path(u"queue"_s);
        QVERIFY(QFile::rename(folder, folder + u".away"_s));
        one.add(u"a"_s);
        one.add(u"b"_s);
        QCOMPARE(failed.size(), 1);
        QVERIFY(failed.constFirst().constFirst().toString().contains(folder));
        QVERIFY(!one.stored.store().isNull());
        QVERIFY(QFile::rename(folder + u".away"_s, folder));
        QCOMPARE(one.stored.store(), QString());
        QCOMPARE(one.files().size(), 2);
    }

    void manyMovesToOnePlaceKeepTheOrder()
    {
        const Scratch home;
        QString order;
        {
            Window one(home);
            one.add(u"a"_s);
            one.queue.hold();
            one.add(u"b"_s);
            one.add(u"c"_s);
            for (int i = 0; i < 120; ++i) // more than a number has digits
                QVERIFY(one.queue.moveJob(2, 1));
            order = one.rows();
        }
        QCOMPARE(Window(home).rows(), order);
    }
};

TESSARAY_TEST(StoredQueueTest)
#include "StoredQueueTest.moc"
