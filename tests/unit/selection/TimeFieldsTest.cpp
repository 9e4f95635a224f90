#include "support/ControllerBench.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::ControllerBench;

namespace {

/// A controller to whose tab "Edit Files" one file was dropped.
struct EditBench : ControllerBench
{
    EditBench()
    {
        selection->setEditFilesURLsList({QUrl::fromLocalFile(u"/v/a.mkv"_s)});
        controller.setCurrentTab(u"Edit Files"_s);
        forgetCalls();
    }
    void type(const QString &text, const QString &field)
    {
        center.post(u"timeTextFieldChangedNotification"_s, text, {{u"textFieldID"_s, field}});
    }
    QStringList times() const
    {
        return {controller.enteredSplitStartTime(), controller.enteredSplitEndTime(),
                controller.enteredSplitDuration()};
    }
};

} // namespace

/// What the time fields of a split announce, and what the selection controller makes of it.
class TimeFieldsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startTimeIsTaken()
    {
        EditBench bench;
        bench.controller.setEnteredSplitEndTime(u"00:20:00"_s);
        bench.type(u"00:10:05"_s, u"1001"_s);
        QCOMPARE(bench.times(), QStringList({u"00:10:05"_s, u"00:20:00"_s, u"00:00:00"_s}));
        QCOMPARE(bench.selection->splitStartTimeText(), u"00:10:05"_s);
        QCOMPARE(bench.selection->splitStartTimeSeconds(), u"605"_s);
        QCOMPARE(bench.selection->splitEndTimeText(), u"00:20:00"_s);
        QCOMPARE(bench.selection->splitEndTimeSeconds(), u"1200"_s);
        QCOMPARE(bench.selection->splitDurationText(), u"00:00:00"_s);
        QVERIFY(bench.controller.canSplit());
    }

    void endTimeIsTaken()
    {
        EditBench bench;
        bench.controller.setEnteredSplitStartTime(u"00:00:30"_s);
        bench.type(u"01:00:00"_s, u"1002"_s);
        QCOMPARE(bench.times(), QStringList({u"00:00:30"_s, u"01:00:00"_s, u"00:00:00"_s}));
        QCOMPARE(bench.selection->splitStartTimeSeconds(), u"30"_s);
        QCOMPARE(bench.selection->splitEndTimeSeconds(), u"3600"_s);
        QVERIFY(bench.controller.canSplit());
    }

    void durationIsTaken()
    {
        EditBench bench;
        bench.controller.setSplitTypeMatrixIndex(2);
        bench.type(u"00:01:30"_s, u"1003"_s);
        QCOMPARE(bench.times(), QStringList({u"00:00:00"_s, u"00:00:00"_s, u"00:01:30"_s}));
        QCOMPARE(bench.selection->splitDurationText(), u"00:01:30"_s);
        QCOMPARE(bench.selection->splitDurationSeconds(), u"90"_s);
        QCOMPARE(bench.selection->splitStartTimeText(), u"00:00:00"_s);
        QCOMPARE(bench.selection->splitEndTimeText(), u"00:00:00"_s);
        QVERIFY(bench.controller.canSplit());
    }

    void durationLeavesTheSelectionsTimesAlone()
    {
        EditBench bench;
        bench.selection->initializeSplitForStartTimeAndEndTime(u"00:00:01"_s, u"00:00:02"_s);
        bench.type(u"00:01:30"_s, u"1003"_s);
        QCOMPARE(bench.selection->splitStartTimeSeconds(), u"1"_s);
        QCOMPARE(bench.selection->splitEndTimeSeconds(), u"2"_s);
    }

    void announcementsThatAreNotOursChangeNothing_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariantMap>("userInfo");
        const QString changed = u"timeTextFieldChangedNotification"_s;
        const QString exited = u"timeTextFieldExitedNotification"_s;
        const QString key = u"textFieldID"_s;
        QTest::newRow("start was left") << exited << QVariantMap{{key, u"1001"_s}};
        QTest::newRow("end was left") << exited << QVariantMap{{key, u"1002"_s}};
        QTest::newRow("duration was left") << exited << QVariantMap{{key, u"1003"_s}};
        QTest::newRow("another field") << changed << QVariantMap{{key, u"1004"_s}};
        QTest::newRow("no field") << changed << QVariantMap();
    }

    void announcementsThatAreNotOursChangeNothing()
    {
        QFETCH(QString, name);
        QFETCH(QVariantMap, userInfo);
        EditBench bench;
        bench.center.post(name, u"00:10:00"_s, userInfo);
        QCOMPARE(bench.times(), QStringList({u"00:00:00"_s, u"00:00:00"_s, u"00:00:00"_s}));
        QCOMPARE(bench.selection->splitStartTimeSeconds(), u"0"_s);
        QCOMPARE(bench.selection->splitEndTimeSeconds(), u"0"_s);
        QCOMPARE(bench.selection->splitDurationSeconds(), u"0"_s);
        QVERIFY(bench.openFiles.calls.isEmpty()); // nor were the tabs updated
    }

    void initializingTwiceListensOnce()
    {
        EditBench bench;
        bench.controller.initialize();
        bench.type(u"00:10:00"_s, u"1001"_s);
        QCOMPARE(bench.openFiles.calls.count(u"close"_s), 1);
    }
};

QTEST_GUILESS_MAIN(TimeFieldsTest)
#include "TimeFieldsTest.moc"
