#include "prefs/KXTimeValidator.h"

#include "platform/KXNotificationCenter.h"
#include "support/TestMain.h"
#include "support/selection/ControllerFixture.h"

#include <QTest>

#include <array>
#include <cstdio>

using namespace Qt::StringLiterals;
using prefs::FieldEdit;
using prefs::FieldKind;
using prefs::TextRange;

namespace {

/// A validator whose announcements are kept.
struct Field
{
    explicit Field(const QString &text = {}, qint64 tag = 1001)
        : validator(center, tag)
        , changed(keep(u"timeTextFieldChangedNotification"_s))
        , exited(keep(u"timeTextFieldExitedNotification"_s))
    {
        if (!text.isNull())
            validator.controlTextShouldBeginEditing(text, {});
    }

    KXNotificationCenter::Subscription keep(const QString &name)
    {
        return center.subscribe(name, [this](const KXNotification &posted) { announced.append(posted); });
    }

    KXNotificationCenter center;
    KXTimeValidator validator;
    QList<KXNotification> announced;
    KXNotificationCenter::Subscription changed;
    KXNotificationCenter::Subscription exited;
};

/// What the C library makes of a format that the compiler must not see: it would warn.
QString printedByC(const char *format, long hours, long minutes, unsigned long seconds)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), format, hours, minutes, seconds);
    return QString::fromLatin1(text.data());
}

} // namespace

class KXTimeValidatorTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void editingBeginsWithTextAndSelectionOfTheField()
    {
        Field field;
        QVERIFY(field.validator.oldText().isNull());
        QCOMPARE(field.validator.oldSelectedRange(), (TextRange{0, 0}));
        QVERIFY(field.validator.controlTextShouldBeginEditing(u"00:10:00"_s, {3, 2}));
        QCOMPARE(field.validator.oldText(), u"00:10:00"_s);
        QCOMPARE(field.validator.oldSelectedRange(), (TextRange{3, 2}));
        QVERIFY(field.announced.isEmpty());
    }

    void textThatIsNoTimeIsRememberedAsZero_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("remembered");
        const auto row = [](const char *name, const QString &text, const QString &format,
                            const QString &remembered) {
            QTest::newRow(name) << text << format << remembered;
        };
        row("empty", u""_s, {}, u"00:00:00"_s);
        row("seconds", u"600"_s, {}, u"00:00:00"_s);
        row("too long", u"00:10:00,000"_s, {}, u"00:00:00"_s);
        row("empty format", u"00:10:00"_s, u""_s, u"00:10:00"_s);
        row("too short", u"00:10:00"_s, u"1"_s, u"00:00:00,000"_s);
        row("with milliseconds", u"00:10:00,250"_s, u"1"_s, u"00:10:00,250"_s);
    }

    void textThatIsNoTimeIsRememberedAsZero()
    {
        QFETCH(QString, text);
        QFETCH(QString, format);
        Field field;
        field.validator.setSrtTimeFormat(format);
        QCOMPARE(field.validator.srtTimeFormat(), format);
        QVERIFY(field.validator.controlTextShouldBeginEditing(text, {}));
        QTEST(field.validator.oldText(), "remembered");
    }

    void tenMinutesBecomeFifty()
    {
        Field field(u"00:10:00"_s);
        QCOMPARE(field.validator.controlTextDidChange(u"00:0:00"_s, 3), (FieldEdit{u"00:00:00"_s, 3, false}));
        QCOMPARE(field.validator.oldText(), u"00:00:00"_s);
        QCOMPARE(field.validator.controlTextDidChange(u"00:500:00"_s, 4),
                 (FieldEdit{u"00:50:00"_s, 4, false}));
        QCOMPARE(field.validator.oldText(), u"00:50:00"_s);
    }

    void millisecondsAreTypedWhereTheFormatIsSet()
    {
        Field field;
        field.validator.setSrtTimeFormat(u"1"_s);
        field.validator.controlTextShouldBeginEditing(u"00:10:00,250"_s, {});
        QCOMPARE(field.validator.controlTextDidChange(u"00:10:007,250"_s, 9),
                 (FieldEdit{u"00:10:00,750"_s, 10, false}));
        QCOMPARE(field.validator.controlTextDidChange(u"00:10:00,750999"_s, 15),
                 (FieldEdit{u"00:10:00,750"_s, 12, false}));
    }

    void everyAcceptedChangeIsAnnouncedOnce_data()
    {
        QTest::addColumn<QString>("changed");
        QTest::addColumn<int>("caret");
        QTest::addColumn<QString>("shown");
        const auto row = [](const char *name, const QString &changed, int caret, const QString &shown) {
            QTest::newRow(name) << changed << caret << shown;
        };
        row("typed", u"500:10:00"_s, 1, u"50:10:00"_s);
        row("deleted", u"00:0:00"_s, 3, u"00:00:00"_s);
        row("a colon deleted", u"0010:00"_s, 2, u"00:10:00"_s);
        row("a colon typed", u"00::10:00"_s, 3, u"00:10:00"_s);
        row("emptied", u""_s, 0, u"00:00:00"_s);
        row("pasted too long", u"12:34:56:7800:10:00"_s, 11, u"12:34:56"_s);
        row("typed behind the end", u"00:10:005"_s, 9, u"00:10:00"_s);
    }

    void everyAcceptedChangeIsAnnouncedOnce()
    {
        QFETCH(QString, changed);
        QFETCH(int, caret);
        QFETCH(QString, shown);
        Field field(u"00:10:00"_s);
        QCOMPARE(field.validator.controlTextDidChange(changed, caret).text, shown);
        QCOMPARE(field.announced.size(), 1);
        QCOMPARE(field.announced.first().name, u"timeTextFieldChangedNotification"_s);
        QCOMPARE(field.announced.first().object, QVariant(shown));
        QCOMPARE(field.announced.first().userInfo, (QVariantMap{{u"textFieldID"_s, u"1001"_s}}));
    }

    void announcementsBearTheTagOfTheirField_data()
    {
        QTest::addColumn<qint64>("tag");
        QTest::addColumn<QString>("word");
        QTest::newRow("start") << qint64(1001) << u"1001"_s;
        QTest::newRow("end") << qint64(1002) << u"1002"_s;
        QTest::newRow("duration") << qint64(1003) << u"1003"_s;
        QTest::newRow("none") << qint64(0) << u"0"_s;
        QTest::newRow("negative") << qint64(-1) << u"-1"_s;
        QTest::newRow("large") << qint64(12345678901) << u"12345678901"_s; // no grouping
    }

    void announcementsBearTheTagOfTheirField()
    {
        QFETCH(qint64, tag);
        QFETCH(QString, word);
        Field field(u"00:10:00"_s, tag);
        field.validator.controlTextDidChange(u"500:10:00"_s, 1);
        field.validator.controlIsValidObject({}, u"50:10:00"_s);
        QCOMPARE(field.announced.size(), 2);
        for (const KXNotification &announced : field.announced)
            QCOMPARE(announced.userInfo.value(u"textFieldID"_s), QVariant(word));
    }

    void whoHearsOfAChangeFindsItRemembered()
    {
        Field field(u"00:10:00"_s);
        QString remembered;
        const auto listening =
            field.center.subscribe(u"timeTextFieldChangedNotification"_s,
                                   [&](const KXNotification &) { remembered = field.validator.oldText(); });
        field.validator.controlTextDidChange(u"500:10:00"_s, 1);
        QCOMPARE(remembered, u"50:10:00"_s);
    }

    void letterBeepsAndIsNotAnnounced()
    {
        Field field(u"00:10:00"_s);
        QCOMPARE(field.validator.controlTextDidChange(u"00:x10:00"_s, 4),
                 (FieldEdit{u"00:10:00"_s, 3, true}));
        QCOMPARE(field.validator.oldText(), u"00:10:00"_s);
        QVERIFY(field.announced.isEmpty());
    }

    void otherControlsAreLeftAlone()
    {
        Field field(u"00:10:00"_s);
        for (const FieldKind kind : {FieldKind::ComboBox, FieldKind::Other}) {
            QCOMPARE(field.validator.controlTextDidChange(u"ten"_s, 2, kind),
                     (FieldEdit{u"ten"_s, 2, false}));
            QCOMPARE(field.validator.controlTextDidChange(u"00:0:00"_s, 3, kind),
                     (FieldEdit{u"00:0:00"_s, 3, false}));
        }
        QCOMPARE(field.validator.oldText(), u"00:10:00"_s);
        QVERIFY(field.announced.isEmpty());
    }

    void leavingIsAnnouncedOnce()
    {
        Field field(u"00:10:00"_s, 1002);
        QObject widget;
        const QVariant theField = QVariant::fromValue(&widget);
        QVERIFY(field.validator.controlTextShouldEndEditing());
        QVERIFY(field.announced.isEmpty());
        QVERIFY(field.validator.controlIsValidObject(theField, u"00:10:00"_s));
        QCOMPARE(field.announced.size(), 1);
        const KXNotification left = field.announced.first();
        QCOMPARE(left.name, u"timeTextFieldExitedNotification"_s);
        QCOMPARE(left.object, QVariant(u"00:10:00"_s));
        QCOMPARE(left.userInfo, (QVariantMap{{u"theTextField"_s, theField}, {u"textFieldID"_s, u"1002"_s}}));
        QCOMPARE(left.userInfo.value(u"theTextField"_s).value<QObject *>(), &widget);
    }

    void selectionFollowsWhatIsTypedIntoItsFields()
    {
        support::ControllerFixture fixture({support::probedVideo()});
        KXTimeValidator start(fixture.center, 1001);
        KXTimeValidator end(fixture.center, 1002);
        KXTimeValidator duration(fixture.center, 1003);
        for (KXTimeValidator *field : {&start, &end, &duration})
            field->controlTextShouldBeginEditing(u"00:00:00"_s, {});
        start.controlTextDidChange(u"00:00:500"_s, 7);
        end.controlTextDidChange(u"00:700:00"_s, 4);
        end.controlTextDidChange(u"00:7x0:00"_s, 5);
        duration.controlTextDidChange(u"100:00:00"_s, 1);
        duration.controlIsValidObject({}, u"10:00:00"_s);
        QCOMPARE(fixture.controller.enteredSplitStartTime(), u"00:00:50"_s);
        QCOMPARE(fixture.controller.enteredSplitEndTime(), u"00:70:00"_s);
        QCOMPARE(fixture.controller.enteredSplitDuration(), u"10:00:00"_s);
        QCOMPARE(fixture.selection->splitStartTimeSeconds(), u"50"_s);
        QCOMPARE(fixture.selection->splitEndTimeSeconds(), u"4200"_s);
    }

    void secondsOfATime_data()
    {
        QTest::addColumn<QString>("time");
        QTest::addColumn<qint64>("seconds");
        const auto row = [](const char *name, const QString &time, qint64 seconds) {
            QTest::newRow(name) << time << seconds;
        };
        row("zero", u"00:00:00"_s, 0);
        row("each group", u"01:02:03"_s, 3723);
        row("ten minutes", u"00:10:00"_s, 600);
        row("largest", u"99:99:99"_s, 362439);
        row("milliseconds are dropped", u"01:02:03,999"_s, 3723);
        row("nothing behind the comma", u"01:02:03,"_s, 3723);
        row("short groups", u"1:2:3,4"_s, 3723);
        row("two commas", u"00:00:05,6,7"_s, 5);
        row("two groups", u"02:03"_s, 0);
        row("four groups", u"00:01:02:03"_s, 0);
        row("empty", u""_s, 0);
        row("absent", {}, 0);
    }

    void secondsOfATime()
    {
        QFETCH(QString, time);
        QTEST(KXTimeValidator::convertTimeInSecondsFrom(time), "seconds");
    }

    void textOfATimeIsWhatCMakesOfItsFormat_data()
    {
        QTest::addColumn<qint64>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("each group") << qint64(3723) << u"%02ld:01:02"_s;
        QTest::newRow("zero") << qint64(0) << u"%02ld:00:00"_s;
        QTest::newRow("seconds only") << qint64(59) << u"%02ld:00:00"_s;
        QTest::newRow("one minute") << qint64(60) << u"%02ld:00:01"_s;
        QTest::newRow("just below an hour") << qint64(3599) << u"%02ld:00:59"_s;
        QTest::newRow("one hour") << qint64(3600) << u"%02ld:01:00"_s;
        QTest::newRow("hundred hours") << qint64(360000) << u"%02ld:100:00"_s;
    }

    /// The text is odd and meant to be: see it in the words of the C library too.
    void textOfATimeIsWhatCMakesOfItsFormat()
    {
        QFETCH(qint64, seconds);
        QTEST(KXTimeValidator::convertToTextTimeFrom(seconds), "text");
        const auto minutes = static_cast<long>(seconds / 60);
        QCOMPARE(KXTimeValidator::convertToTextTimeFrom(seconds),
                 printedByC("%0%02ld:%02ld:%02lu", minutes / 60, minutes % 60,
                            static_cast<unsigned long>(seconds % 60)));
    }
};

TESSARAY_TEST(KXTimeValidatorTest)
#include "KXTimeValidatorTest.moc"
