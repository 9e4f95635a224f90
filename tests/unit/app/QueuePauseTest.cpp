// The running job waits while the machine runs on its battery, or while the disk is nearly full.
#include "app/QueuePause.h"

#include "app/RoomForJobs.h"
#include "jobs/KXQueueController.h"
#include "platform/Power.h"
#include "support/TestMain.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using platform::PowerSource;
using support::JobFixture;

namespace {

class SetPower final : public platform::Power
{
public:
    PowerSource source() const override { return now; }

    PowerSource now = PowerSource::Mains;
};

/// Two jobs of which the first one runs.
struct PausedQueue
{
    explicit PausedQueue(bool batteryCounts = true)
    {
        support::registerTestJob(factory, jobs::JobKind::Conversion);
        queue.initialize();
        fixture.preferences.overrideForThisRun(u"pauseOnBatteryFlag"_s, batteryCounts);
        fixture.setSaveFolder(fixture.scratch.path());
        pause.followRoom();
        for (int i = 0; i < 2; ++i)
            queue.addToQueue(fixture.selectionFor(u"/v/a.mkv"_s, u"MKV Conversion"_s));
        queue.manageQueue();
    }
    bool isPaused() const { return queue.pauseButtonTitle() == u"Resume"_s; }
    bool isPausedAt(PowerSource source)
    {
        power.now = source;
        pause.lookAtPower();
        return isPaused();
    }
    bool isPausedWith(std::optional<qint64> free, std::optional<qint64> needed)
    {
        fixture.volumes.setFree(free);
        queue.currentJob()->setExpectedBytes(needed);
        pause.lookAtRoom();
        return isPaused();
    }

    JobFixture fixture{JobFixture::Tools::Fake};
    jobs::JobFactory factory;
    KXQueueController queue{fixture.jobContext(), factory, nullptr};
    SetPower power;
    app::QueuePause pause{{queue, fixture.preferences, power, fixture.volumes}};
};

constexpr qint64 megabyte = 1'000'000;

} // namespace

class QueuePauseTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyABatteryPauses()
    {
        PausedQueue machine;
        for (const PowerSource source : {PowerSource::Mains, PowerSource::None, PowerSource::Unreadable})
            QVERIFY(!machine.isPausedAt(source));
        QVERIFY(machine.isPausedAt(PowerSource::Battery));
        QVERIFY(machine.isPausedAt(PowerSource::Battery));
        QVERIFY(!machine.isPausedAt(PowerSource::Mains));
        QVERIFY(machine.isPausedAt(PowerSource::Battery));
        QVERIFY(!machine.isPausedAt(PowerSource::Unreadable));
    }

    void notUnlessItIsWanted()
    {
        PausedQueue machine(false);
        QVERIFY(!machine.isPausedAt(PowerSource::Battery));
    }

    /// Told once each.
    void itIsTold()
    {
        PausedQueue machine;
        const QSignalSpy told(&machine.queue, &KXQueueController::pauseReasonChanged);
        machine.isPausedAt(PowerSource::Battery);
        machine.isPausedAt(PowerSource::Battery);
        QCOMPARE(told.size(), 1);
        QCOMPARE(machine.queue.pauseReason(), u"The machine runs on its battery."_s);
        machine.isPausedAt(PowerSource::Mains);
        QCOMPARE(told.size(), 2);
        QVERIFY(machine.queue.pauseReason().isNull());
    }

    void aPersonMayLetItGoOn()
    {
        PausedQueue machine;
        QVERIFY(machine.isPausedAt(PowerSource::Battery));
        machine.queue.pauseQueueButton(u"Resume"_s);
        QVERIFY(!machine.isPausedAt(PowerSource::Battery));
        QVERIFY(!machine.isPausedAt(PowerSource::Mains));
        QVERIFY(machine.isPausedAt(PowerSource::Battery)); // the next time
    }

    void whatAPersonPausedStaysPaused()
    {
        PausedQueue machine;
        machine.queue.pauseQueueButton(u"Pause"_s);
        QVERIFY(machine.isPausedAt(PowerSource::Battery));
        QVERIFY(machine.queue.pauseReason().isNull());
        QVERIFY(machine.isPausedAt(PowerSource::Mains));
        machine.queue.pauseQueueButton(u"Resume"_s);
        QVERIFY(machine.isPausedAt(PowerSource::Battery));
        machine.queue.pauseQueueButton(u"Pause"_s); // as the question before quitting does
        QVERIFY(machine.isPausedAt(PowerSource::Mains));
    }

    void aJobThatBeginsOnBatteryWaits()
    {
        PausedQueue machine;
        machine.power.now = PowerSource::Battery;
        machine.queue.currentJob()->jobDone();
        machine.queue.manageQueue();
        QTRY_COMPARE(machine.queue.pauseButtonTitle(), u"Resume"_s);
    }

    /// Of a battery a person has spoken for the queue, of the disk for that job alone.
    void theNextJobIsLookedAtAnew()
    {
        PausedQueue machine;
        QVERIFY(machine.isPausedAt(PowerSource::Battery));
        QVERIFY(machine.isPausedWith(10 * megabyte, 900 * megabyte));
        machine.queue.pauseQueueButton(u"Resume"_s);
        QVERIFY(!machine.isPausedWith(10 * megabyte, 900 * megabyte));
        machine.queue.qJobList().at(1)->setExpectedBytes(900 * megabyte);
        machine.queue.currentJob()->jobDone();
        machine.queue.manageQueue();
        QCOMPARE(machine.queue.currentJob(), machine.queue.qJobList().at(1));
        QTRY_VERIFY(machine.isPaused());
        QVERIFY(machine.queue.pauseReason().startsWith(u"Only 10 MB"_s));
    }

    void littleRoomPausesAJobThatNeedsMore_data()
    {
        QTest::addColumn<qint64>("free");
        QTest::addColumn<qint64>("needed"); // negative: not known
        QTest::addColumn<bool>("isPaused");
        const auto row = [](const char *name, qint64 free, qint64 needed, bool isPaused) {
            QTest::newRow(name) << free << needed << isPaused;
        };
        row("little, and less than is needed", 199 * megabyte, 300 * megabyte, true);
        row("little, and enough", 199 * megabyte, 150 * megabyte, false);
        row("just enough", 199 * megabyte, 199 * megabyte, false);
        row("one byte short", 199 * megabyte, 199 * megabyte + 1, true);
        row("less than is needed, and much all the same", 200 * megabyte, 900 * megabyte, false);
        row("none", 0, 1, true);
        row("nothing is known of the need", 0, -1, false);
    }

    void littleRoomPausesAJobThatNeedsMore()
    {
        QFETCH(qint64, free);
        QFETCH(qint64, needed);
        QFETCH(bool, isPaused);
        PausedQueue machine;
        QCOMPARE(machine.isPausedWith(free, needed < 0 ? std::nullopt : std::optional(needed)), isPaused);
        QVERIFY(!machine.isPausedWith(std::nullopt, 900 * megabyte)); // not to be read: as if there were some
    }

    void roomIsToldAndAwaited()
    {
        PausedQueue machine;
        QVERIFY(machine.isPausedWith(120 * megabyte, 1'400 * megabyte));
        QCOMPARE(machine.queue.pauseReason(),
                 u"Only 120 MB are free in %1, and the job needs about 1.4 GB more."_s.arg(
                     machine.fixture.scratch.path()));
        QVERIFY(machine.isPausedWith(110 * megabyte, 1'400 * megabyte));
        QVERIFY(machine.queue.pauseReason().contains(u"120 MB"_s)); // not told anew
        QVERIFY(!machine.isPausedWith(300 * megabyte, 1'400 * megabyte));
        QVERIFY(machine.isPausedWith(50 * megabyte, 1'400 * megabyte));
        machine.queue.pauseQueueButton(u"Resume"_s);
        QVERIFY(!machine.isPausedWith(40 * megabyte, 1'400 * megabyte));
    }

    void bothReasonsHaveToGo()
    {
        PausedQueue machine;
        QVERIFY(machine.isPausedAt(PowerSource::Battery));
        QVERIFY(machine.isPausedWith(10 * megabyte, 900 * megabyte));
        QVERIFY(machine.queue.pauseReason().startsWith(u"The machine runs on its battery. Only 10 MB"_s));
        QVERIFY(machine.isPausedAt(PowerSource::Mains));
        QVERIFY(machine.queue.pauseReason().startsWith(u"Only 10 MB"_s));
        QVERIFY(!machine.isPausedWith(500 * megabyte, 900 * megabyte));
    }

    void aPersonWhoLetsItGoOnOverrulesBoth()
    {
        PausedQueue machine;
        machine.isPausedAt(PowerSource::Battery);
        machine.isPausedWith(10 * megabyte, 900 * megabyte);
        machine.queue.pauseQueueButton(u"Resume"_s);
        QVERIFY(!machine.isPausedAt(PowerSource::Battery));
        QVERIFY(!machine.isPausedWith(10 * megabyte, 900 * megabyte));
        QVERIFY(!machine.isPausedWith(500 * megabyte, 900 * megabyte));
        QVERIFY(machine.isPausedWith(10 * megabyte, 900 * megabyte));
    }

    void roomIsHeldAgainstTheEstimateBeforeTheStart()
    {
        PausedQueue machine;
        const QString folder = machine.fixture.scratch.path();
        const QList<JobPointer> &all = machine.queue.qJobList();
        all.at(0)->setExpectedBytes(800 * megabyte);
        all.at(1)->setExpectedBytes(700 * megabyte);
        machine.fixture.volumes.setFree(1'500 * megabyte);
        QVERIFY(app::shortageBefore(all, machine.fixture.volumes).isNull());
        machine.fixture.volumes.setFree(1'499 * megabyte);
        QCOMPARE(app::shortageBefore(all, machine.fixture.volumes),
                 u"The results need about 1.5 GB, and 1.5 GB are free in %1."_s.arg(folder));
        const QSignalSpy told(&machine.pause, &app::QueuePause::roomIsShort);
        machine.queue.addToQueue(machine.fixture.selectionFor(u"/v/b.mkv"_s, u"MKV Conversion"_s));
        machine.queue.addToQueue(machine.fixture.selectionFor(u"/v/c.mkv"_s, u"MKV Conversion"_s));
        QTRY_COMPARE(told.size(), 1); // for both
    }

    void aJobThatHasEndedNeedsNoRoom()
    {
        PausedQueue machine;
        const JobPointer job = machine.queue.currentJob();
        job->setExpectedBytes(800 * megabyte);
        QCOMPARE(job->bytesToCome(), std::optional(800 * megabyte));
        job->jobDone();
        QCOMPARE(job->bytesToCome(), std::optional<qint64>(0));
    }
};

TESSARAY_TEST(QueuePauseTest)
#include "QueuePauseTest.moc"
