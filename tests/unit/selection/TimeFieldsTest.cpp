#include "support/TestMain.h"
#include "support/selection/ControllerFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::ControllerFixture;

namespace {

/// A controller to whose tab "Edit Files" one file was dropped.
struct EditFixture : ControllerFixture
{
    EditFixture()
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
        EditFixture fixture;
        fixture.controller.setEnteredSplitEndTime(u"00:20:00"_s);
        fixture.type(u"00:10:05"_s, u"1001"_s);
        QCOMPARE(fixture.times(), QStringList({u"00:10:05"_s, u"00:20:00"_s, u"00:00:00"_s}));
        QCOMPARE(fixture.selection->splitStartTimeText(), u"00:10:05"_s);
        QCOMPARE(fixture.selection->splitStartTimeSeconds(), u"605"_s);
        QCOMPARE(fixture.selection->splitEndTimeText(), u"00:20:00"_s);
        QCOMPARE(fixture.selection->splitEndTimeSeconds(), u"1200"_s);
        QCOMPARE(fixture.selection->splitDurationText(), u"00:00:00"_s);
        QVERIFY(fixture.controller.canSplit());
    }

    void endTimeIsTaken()
    {
        EditFixture fixture;
        fixture.controller.setEnteredSplitStartTime(u"00:00:30"_s);
        fixture.type(u"01:00:00"_s, u"1002"_s);
        QCOMPARE(fixture.times(), QStringList({u"00:00:30"_s, u"01:00:00"_s, u"00:00:00"_s}));
        QCOMPARE(fixture.selection->splitStartTimeSeconds(), u"30"_s);
        QCOMPARE(fixture.selection->splitEndTimeSeconds(), u"3600"_s);
        QVERIFY(fixture.controller.canSplit());
    }

    void durationIsTaken()
    {
        EditFixture fixture;
        fixture.controller.setSplitTypeMatrixIndex(2);
        fixture.type(u"00:01:30"_s, u"1003"_s);
        QCOMPARE(fixture.times(), QStringList({u"00:00:00"_s, u"00:00:00"_s, u"00:01:30"_s}));
        QCOMPARE(fixture.selection->splitDurationText(), u"00:01:30"_s);
        QCOMPARE(fixture.selection->splitDurationSeconds(), u"90"_s);
        QCOMPARE(fixture.selection->splitStartTimeText(), u"00:00:00"_s);
        QCOMPARE(fixture.selection->splitEndTimeText(), u"00:00:00"_s);
        QVERIFY(fixture.controller.canSplit());
    }

    void durationLeavesTheSelectionsTimesAlone()
    {
        EditFixture fixture;
        fixture.selection->initializeSplitForStartTimeAndEndTime(u"00:00:01"_s, u"00:00:02"_s);
        fixture.type(u"00:01:30"_s, u"1003"_s);
        QCOMPARE(fixture.selection->splitStartTimeSeconds(), u"1"_s);
        QCOMPARE(fixture.selection->splitEndTimeSeconds(), u"2"_s);
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
        EditFixture fixture;
        fixture.center.post(name, u"00:10:00"_s, userInfo);
        QCOMPARE(fixture.times(), QStringList({u"00:00:00"_s, u"00:00:00"_s, u"00:00:00"_s}));
        QCOMPARE(fixture.selection->splitStartTimeSeconds(), u"0"_s);
        QCOMPARE(fixture.selection->splitEndTimeSeconds(), u"0"_s);
        QCOMPARE(fixture.selection->splitDurationSeconds(), u"0"_s);
        QVERIFY(fixture.openFiles.calls.isEmpty()); // nor were the tabs updated
    }

    void initializingTwiceListensOnce()
    {
        EditFixture fixture;
        fixture.controller.initialize();
        fixture.type(u"00:10:00"_s, u"1001"_s);
        QCOMPARE(fixture.openFiles.calls.count(u"close"_s), 1);
    }
};

TESSARAY_TEST(TimeFieldsTest)
#include "TimeFieldsTest.moc"
