// The running job waits while the machine runs on its battery.
#include "app/BatteryPause.h"

#include "jobs/KXQueueController.h"
#include "platform/Power.h"
#include "support/TestMain.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"

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

struct OnBattery
{
    explicit OnBattery(bool wanted = true)
    {
        support::registerTestJob(factory, jobs::JobKind::Conversion);
        queue.initialize();
        fixture.preferences.overrideForThisRun(u"pauseOnBatteryFlag"_s, wanted);
        for (int i = 0; i < 2; ++i)
            queue.addToQueue(fixture.selectionFor(u"/v/a.mkv"_s, u"MKV Conversion"_s));
        queue.manageQueue();
    }
    bool isPausedAt(PowerSource source)
    {
        power.now = source;
        pause.look();
        return queue.pauseButtonTitle() == u"Resume"_s;
    }

    JobFixture fixture{JobFixture::Tools::Fake};
    jobs::JobFactory factory;
    KXQueueController queue{fixture.jobContext(), factory, nullptr};
    SetPower power;
    app::BatteryPause pause{queue, fixture.preferences, power};
};

} // namespace

class BatteryPauseTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyABatteryPauses()
    {
        OnBattery machine;
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
        OnBattery machine(false);
        QVERIFY(!machine.isPausedAt(PowerSource::Battery));
    }

    void aPersonMayLetItGoOn()
    {
        OnBattery machine;
        QVERIFY(machine.isPausedAt(PowerSource::Battery));
        machine.queue.pauseQueueButton(u"Resume"_s);
        QVERIFY(!machine.isPausedAt(PowerSource::Battery));
        QVERIFY(!machine.isPausedAt(PowerSource::Mains));
        QVERIFY(machine.isPausedAt(PowerSource::Battery)); // the next time
    }

    void whatAPersonPausedStaysPaused()
    {
        OnBattery machine;
        machine.queue.pauseQueueButton(u"Pause"_s);
        QVERIFY(machine.isPausedAt(PowerSource::Battery));
        QVERIFY(machine.isPausedAt(PowerSource::Mains));
    }

    void aJobThatBeginsOnBatteryWaits()
    {
        OnBattery machine;
        machine.power.now = PowerSource::Battery;
        machine.queue.currentJob()->jobDone();
        machine.queue.manageQueue();
        QTRY_COMPARE(machine.queue.pauseButtonTitle(), u"Resume"_s);
    }
};

TESSARAY_TEST(BatteryPauseTest)
#include "BatteryPauseTest.moc"
