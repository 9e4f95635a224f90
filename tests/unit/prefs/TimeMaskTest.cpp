#include "prefs/TimeMask.h"

#include "fuzz/TimeMaskCheck.h"
#include "support/TestMain.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using prefs::FieldEdit;
using prefs::TimeMask;

namespace {

/// A text with its caret, written "00:|10:00", or with its selection, written "00:[10]:00".
struct Marked
{
    explicit Marked(const QString &written)
        : text(written)
        , begin(written.indexOf(QRegularExpression(u"[|\\[]"_s)))
        , end(written.contains(u']') ? written.indexOf(u']') - 1 : begin)
    {
        text.remove(QRegularExpression(u"[|\\[\\]]"_s));
    }

    QString text;
    qsizetype begin;
    qsizetype end;
};

TimeMask maskOf(const QString &text)
{
    using Precision = TimeMask::Precision;
    return TimeMask(text.size() > 8 ? Precision::Milliseconds : Precision::Seconds);
}

QString written(const FieldEdit &edit)
{
    QString text = edit.text;
    return text.insert(edit.caret, u'|') + (edit.beep ? u" beep"_s : u""_s);
}

/// One edit of a table: the field before, the text and caret that the change makes of it, what to show.
void edit(const char *name, const QString &before, const QString &changed, const QString &shown)
{
    QTest::newRow(name) << before << changed << shown;
}

void addColumns()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("changed");
    QTest::addColumn<QString>("shown");
}

/// Guards the tables: a change leaves alone what is before the marks and what is behind them, save the one
/// character that backspace or the delete key takes.
void verifyThatItCanBeTyped(const Marked &before, const Marked &changed)
{
    const bool isDeletion = before.begin == before.end && changed.text.size() < before.text.size();
    const qsizetype head = std::min(before.begin, changed.begin);
    QCOMPARE(changed.text.left(head), before.text.left(head));
    QVERIFY(isDeletion ? head == changed.begin : head == before.begin);
    const QString behind = changed.text.mid(changed.begin);
    QVERIFY(isDeletion ? before.text.endsWith(behind) : behind == before.text.mid(before.end));
}

void compareEdit()
{
    QFETCH(QString, before);
    QFETCH(QString, changed);
    const Marked old(before);
    const Marked now(changed);
    verifyThatItCanBeTyped(old, now);
    const FieldEdit answer = maskOf(old.text).edited(old.text, now.text, now.begin);
    QTEST(written(answer), "shown");
}

} // namespace

class TimeMaskTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void digitIsTypedOver_data()
    {
        addColumns();
        edit("first", u"|00:10:00"_s, u"5|00:10:00"_s, u"5|0:10:00"_s);
        edit("second", u"0|0:10:00"_s, u"05|0:10:00"_s, u"05|:10:00"_s);
        edit("before the first colon", u"00|:10:00"_s, u"005|:10:00"_s, u"00:5|0:00"_s);
        edit("behind the first colon", u"00:|10:00"_s, u"00:5|10:00"_s, u"00:5|0:00"_s);
        edit("second of the minutes", u"00:1|0:00"_s, u"00:17|0:00"_s, u"00:17|:00"_s);
        edit("before the second colon", u"00:10|:00"_s, u"00:106|:00"_s, u"00:10:6|0"_s);
        edit("behind the second colon", u"00:10:|00"_s, u"00:10:4|00"_s, u"00:10:4|0"_s);
        edit("last", u"00:10:0|0"_s, u"00:10:09|0"_s, u"00:10:09|"_s);
        edit("at the end", u"00:10:00|"_s, u"00:10:005|"_s, u"00:10:00|"_s);
        edit("the one that stands there", u"00:|10:00"_s, u"00:1|10:00"_s, u"00:1|0:00"_s);
        edit("among its like", u"11:1|1:11"_s, u"11:11|1:11"_s, u"11:11|:11"_s);
        edit("ninety-nine minutes", u"00:|59:00"_s, u"00:9|59:00"_s, u"00:9|9:00"_s);
        edit("long, first", u"|00:00:00,000"_s, u"5|00:00:00,000"_s, u"5|0:00:00,000"_s);
        edit("long, before the comma", u"00:00:00|,000"_s, u"00:00:007|,000"_s, u"00:00:00,7|00"_s);
        edit("long, behind the comma", u"00:00:00,|123"_s, u"00:00:00,7|123"_s, u"00:00:00,7|23"_s);
        edit("long, last", u"00:00:00,12|3"_s, u"00:00:00,129|3"_s, u"00:00:00,129|"_s);
        edit("long, at the end", u"00:00:00,123|"_s, u"00:00:00,1239|"_s, u"00:00:00,123|"_s);
    }
    void digitIsTypedOver() { compareEdit(); }

    void backspaceLeavesZero_data()
    {
        addColumns();
        edit("the ten minutes", u"00:1|0:00"_s, u"00:|0:00"_s, u"00:|00:00"_s);
        edit("first", u"1|2:34:56"_s, u"|2:34:56"_s, u"|02:34:56"_s);
        edit("last", u"12:34:56|"_s, u"12:34:5|"_s, u"12:34:5|0"_s);
        edit("before a colon", u"12|:34:56"_s, u"1|:34:56"_s, u"1|0:34:56"_s);
        edit("first colon", u"12:|34:56"_s, u"12|34:56"_s, u"12|:34:56"_s);
        edit("second colon", u"12:34:|56"_s, u"12:34|56"_s, u"12:34|:56"_s);
        edit("one of two alike", u"11|:22:33"_s, u"1|:22:33"_s, u"1|0:22:33"_s);
        edit("a zero", u"00|:00:00"_s, u"0|:00:00"_s, u"0|0:00:00"_s);
        edit("a word", u"12:34:|56"_s, u"12:|56"_s, u"12:|00:56"_s);
        edit("to the start", u"12:34|:56"_s, u"|:56"_s, u"|00:00:56"_s);
        edit("long, comma", u"01:02:03,|456"_s, u"01:02:03|456"_s, u"01:02:03|,456"_s);
        edit("long, behind the comma", u"01:02:03,4|56"_s, u"01:02:03,|56"_s, u"01:02:03,|056"_s);
        edit("long, last", u"01:02:03,456|"_s, u"01:02:03,45|"_s, u"01:02:03,45|0"_s);
    }
    void backspaceLeavesZero() { compareEdit(); }

    void deleteKeyLeavesZero_data()
    {
        addColumns();
        edit("first", u"|12:34:56"_s, u"|2:34:56"_s, u"|02:34:56"_s);
        edit("last", u"12:34:5|6"_s, u"12:34:5|"_s, u"12:34:5|0"_s);
        edit("behind a colon", u"12:|34:56"_s, u"12:|4:56"_s, u"12:|04:56"_s);
        edit("first of two alike", u"|11:22:33"_s, u"|1:22:33"_s, u"|01:22:33"_s);
        edit("second of two alike", u"1|1:22:33"_s, u"1|:22:33"_s, u"1|0:22:33"_s);
        edit("a zero again", u"|02:34:56"_s, u"|2:34:56"_s, u"|02:34:56"_s);
        edit("colon", u"12|:34:56"_s, u"12|34:56"_s, u"12|:34:56"_s);
        edit("to the end", u"12:|34:56"_s, u"12:|"_s, u"12:|00:00"_s);
        edit("long, comma", u"01:02:03|,456"_s, u"01:02:03|456"_s, u"01:02:03|,456"_s);
        edit("long, last", u"01:02:03,45|6"_s, u"01:02:03,45|"_s, u"01:02:03,45|0"_s);
    }
    void deleteKeyLeavesZero() { compareEdit(); }

    void selectionIsDeleted_data()
    {
        addColumns();
        edit("everything", u"[12:34:56]"_s, u"|"_s, u"|00:00:00"_s);
        edit("one group", u"12:[34]:56"_s, u"12:|:56"_s, u"12:|00:56"_s);
        edit("over a colon", u"1[2:3]4:56"_s, u"1|4:56"_s, u"1|0:04:56"_s);
        edit("over both colons", u"1[2:34:5]6"_s, u"1|6"_s, u"1|0:00:06"_s);
        edit("a colon", u"12[:]34:56"_s, u"12|34:56"_s, u"12|:34:56"_s);
        edit("from colon to colon", u"12[:34:]56"_s, u"12|56"_s, u"12|:00:56"_s);
        edit("from a colon to the end", u"12:34[:56]"_s, u"12:34|"_s, u"12:34|:00"_s);
        edit("from the start to a colon", u"[12:]34:56"_s, u"|34:56"_s, u"|00:34:56"_s);
        edit("long, everything", u"[01:02:03,456]"_s, u"|"_s, u"|00:00:00,000"_s);
        edit("long, over the comma", u"01:02:0[3,4]56"_s, u"01:02:0|56"_s, u"01:02:0|0,056"_s);
        edit("long, the milliseconds", u"01:02:03,[456]"_s, u"01:02:03,|"_s, u"01:02:03,|000"_s);
    }
    void selectionIsDeleted() { compareEdit(); }

    void selectionIsReplacedByADigit_data()
    {
        addColumns();
        edit("one digit", u"[1]2:34:56"_s, u"7|2:34:56"_s, u"7|2:34:56"_s);
        edit("one group", u"12:[34]:56"_s, u"12:7|:56"_s, u"12:7|0:56"_s);
        edit("over a colon", u"1[2:3]4:56"_s, u"17|4:56"_s, u"17|:04:56"_s);
        edit("a colon", u"12[:]34:56"_s, u"127|34:56"_s, u"12:7|4:56"_s);
        edit("a colon and a digit", u"12[:3]4:56"_s, u"127|4:56"_s, u"12:7|4:56"_s);
        edit("from a colon to the end", u"12:34[:56]"_s, u"12:347|"_s, u"12:34:7|0"_s);
        edit("everything", u"[12:34:56]"_s, u"7|"_s, u"7|0:00:00"_s);
        edit("by itself", u"[1]2:34:56"_s, u"1|2:34:56"_s, u"1|2:34:56"_s);
        edit("by its first", u"[12]:34:56"_s, u"1|:34:56"_s, u"1|0:34:56"_s);
        edit("by its second", u"[12]:34:56"_s, u"2|:34:56"_s, u"2|0:34:56"_s);
        edit("long, over the comma", u"01:02:0[3,4]56"_s, u"01:02:07|56"_s, u"01:02:07|,056"_s);
        edit("long, everything", u"[01:02:03,456]"_s, u"7|"_s, u"7|0:00:00,000"_s);
    }
    void selectionIsReplacedByADigit() { compareEdit(); }

    void pastedDigitsAreTypedOver_data()
    {
        addColumns();
        edit("two", u"|00:10:00"_s, u"12|00:10:00"_s, u"12|:10:00"_s);
        edit("three, over a colon", u"|00:10:00"_s, u"123|00:10:00"_s, u"12:3|0:00"_s);
        edit("six", u"|00:10:00"_s, u"123456|00:10:00"_s, u"12:34:56|"_s);
        edit("seven", u"|00:10:00"_s, u"1234567|00:10:00"_s, u"12:34:56|"_s);
        edit("at the end", u"00:10:00|"_s, u"00:10:0012|"_s, u"00:10:00|"_s);
        edit("near the end", u"00:10:0|0"_s, u"00:10:012|0"_s, u"00:10:01|"_s);
        edit("over a selected colon", u"1[2:3]4:56"_s, u"178|4:56"_s, u"17:8|4:56"_s);
        edit("more than was selected", u"12:[3]4:56"_s, u"12:789|4:56"_s, u"12:78:9|6"_s);
        edit("less than was selected", u"[12:34]:56"_s, u"98|:56"_s, u"98|:00:56"_s);
        edit("six over everything", u"[12:34:56]"_s, u"654321|"_s, u"65:43:21|"_s);
        edit("long, nine", u"[01:02:03,456]"_s, u"123456789|"_s, u"12:34:56,789|"_s);
        edit("long, ten", u"|01:02:03,456"_s, u"1234567890|01:02:03,456"_s, u"12:34:56,789|"_s);
        edit("long, over the comma", u"01:02:0[3,4]56"_s, u"01:02:078|56"_s, u"01:02:07,8|56"_s);
    }
    void pastedDigitsAreTypedOver() { compareEdit(); }

    void pastedTimesAreTypedOver_data()
    {
        addColumns();
        edit("at the start", u"|00:10:00"_s, u"12:34:56|00:10:00"_s, u"12:34:56|"_s);
        edit("over everything", u"[00:10:00]"_s, u"12:34:56|"_s, u"12:34:56|"_s);
        edit("that begins alike", u"[00:10:00]"_s, u"00:20:30|"_s, u"00:20:30|"_s);
        edit("that is the same", u"[00:10:00]"_s, u"00:10:00|"_s, u"00:10:00|"_s);
        edit("in the middle", u"00:|10:00"_s, u"00:12:34:56|10:00"_s, u"00:12:34|"_s);
        edit("with short groups", u"|00:00:00"_s, u"1:2:3|00:00:00"_s, u"10:20:3|0"_s);
        edit("half a time", u"0|0:10:00"_s, u"05:7|0:10:00"_s, u"05:7|0:00"_s);
        edit("a group too many", u"[11:22:33]"_s, u"01:02:03:456|"_s, u"01:02:03|"_s);
        edit("over two groups", u"[11:22]:33"_s, u"4:5|:33"_s, u"40:5|0:33"_s);
        edit("long, colons only", u"[00:00:00,000]"_s, u"01:02:03:456|"_s, u"01:02:03,456|"_s);
        edit("long, no milliseconds", u"[11:22:33,444]"_s, u"01:02:03|"_s, u"01:02:03|,000"_s);
        edit("long, at the comma", u"11:22:33|,444"_s, u"11:22:33:5|,444"_s, u"11:22:33,5|44"_s);
        // The comma stands where it stood, so it does not count as brought in.
        edit("long, that begins alike", u"[01:02:03,456]"_s, u"01:02:03,789|"_s, u"01:02:03,789|"_s);
    }
    void pastedTimesAreTypedOver() { compareEdit(); }

    void colonLeadsBehindTheNextSeparator_data()
    {
        addColumns();
        edit("before a colon", u"12|:34:56"_s, u"12:|:34:56"_s, u"12:|34:56"_s);
        edit("within the hours", u"1|2:34:56"_s, u"1:|2:34:56"_s, u"12:|34:56"_s);
        edit("within the minutes", u"12:3|4:56"_s, u"12:3:|4:56"_s, u"12:34:|56"_s);
        edit("behind a colon", u"12:|34:56"_s, u"12::|34:56"_s, u"12:|34:56"_s);
        edit("at the start", u"|12:34:56"_s, u":|12:34:56"_s, u"|12:34:56"_s);
        edit("within the seconds", u"12:34:5|6"_s, u"12:34:5:|6"_s, u"12:34:5|6"_s);
        edit("at the end", u"12:34:56|"_s, u"12:34:56:|"_s, u"12:34:56|"_s);
        edit("two", u"12|:34:56"_s, u"12::|:34:56"_s, u"12:|34:56"_s);
        edit("two behind a digit", u"|12:34:56"_s, u"5::6|12:34:56"_s, u"52:6|4:56"_s);
        edit("with a digit at the start", u"|12:34:56"_s, u":5|12:34:56"_s, u"5|2:34:56"_s);
        edit("over a group", u"12:[34]:56"_s, u"12::|:56"_s, u"12:|00:56"_s);
        edit("over half a group", u"1[2]:34:56"_s, u"1:|:34:56"_s, u"10:|34:56"_s);
        edit("over everything", u"[12:34:56]"_s, u":|"_s, u"|00:00:00"_s);
        edit("long, before the comma", u"01:02:03|,456"_s, u"01:02:03:|,456"_s, u"01:02:03,|456"_s);
        edit("long, within the seconds", u"01:02:0|3,456"_s, u"01:02:0:|3,456"_s, u"01:02:03,|456"_s);
        edit("long, behind the comma", u"01:02:03,|456"_s, u"01:02:03,:|456"_s, u"01:02:03,|456"_s);
        edit("long, within the rest", u"01:02:03,4|56"_s, u"01:02:03,4:|56"_s, u"01:02:03,4|56"_s);
    }
    void colonLeadsBehindTheNextSeparator() { compareEdit(); }

    void otherCharactersAreRefused_data()
    {
        addColumns();
        edit("letter", u"00:1|0:00"_s, u"00:1a|0:00"_s, u"00:1|0:00 beep"_s);
        edit("letter between digits", u"|00:10:00"_s, u"1a2|00:10:00"_s, u"|00:10:00 beep"_s);
        edit("letter behind digits", u"12:|34:56"_s, u"12:78x|34:56"_s, u"12:|34:56 beep"_s);
        edit("letter over a selection", u"12:[34]:56"_s, u"12:x|:56"_s, u"12:|34:56 beep"_s);
        edit("letter over everything", u"[12:34:56]"_s, u"x|"_s, u"|12:34:56 beep"_s);
        edit("blank", u"12:34:56|"_s, u"12:34:56 |"_s, u"12:34:56| beep"_s);
        edit("time with a blank", u"[12:34:56]"_s, u"01:02:03 |"_s, u"|12:34:56 beep"_s);
        edit("minus", u"|12:34:56"_s, u"-|12:34:56"_s, u"|12:34:56 beep"_s);
        edit("slash", u"|12:34:56"_s, u"/|12:34:56"_s, u"|12:34:56 beep"_s);
        edit("semicolon", u"12|:34:56"_s, u"12;|:34:56"_s, u"12|:34:56 beep"_s);
        edit("point", u"12:34:5|6"_s, u"12:34:5.|6"_s, u"12:34:5|6 beep"_s);
        edit("comma", u"12:34:56|"_s, u"12:34:56,|"_s, u"12:34:56| beep"_s);
        edit("digit of another script", u"|12:34:56"_s, u"٣|12:34:56"_s, u"|12:34:56 beep"_s);
        edit("wide digit", u"1|2:34:56"_s, u"1２|2:34:56"_s, u"1|2:34:56 beep"_s);
        edit("wide colon", u"12|:34:56"_s, u"12：|:34:56"_s, u"12|:34:56 beep"_s);
        edit("picture", u"|12:34:56"_s, u"🎬|12:34:56"_s, u"|12:34:56 beep"_s);
        edit("line feed", u"12:34:56|"_s, u"12:34:56\n|"_s, u"12:34:56| beep"_s);
        edit("time with a comma", u"[11:22:33]"_s, u"01:02:03,456|"_s, u"|11:22:33 beep"_s);
        edit("long, letter", u"01:02:03,4|56"_s, u"01:02:03,4a|56"_s, u"01:02:03,4|56 beep"_s);
        edit("long, comma", u"01:02:03|,456"_s, u"01:02:03,|,456"_s, u"01:02:03|,456 beep"_s);
        edit("long, time with a comma", u"|00:00:00,000"_s, u"01:02:03,456|00:00:00,000"_s,
             u"|00:00:00,000 beep"_s);
    }
    void otherCharactersAreRefused() { compareEdit(); }

    void tenMinutesBecomeFifty()
    {
        const TimeMask mask(TimeMask::Precision::Seconds);
        const FieldEdit without = mask.edited(u"00:10:00"_s, u"00:0:00"_s, 3);
        QCOMPARE(written(without), u"00:|00:00"_s);
        QCOMPARE(written(mask.edited(without.text, u"00:500:00"_s, 4)), u"00:5|0:00"_s);
    }

    void caretOutsideIsMovedIn()
    {
        const TimeMask mask(TimeMask::Precision::Seconds);
        QCOMPARE(written(mask.edited(u"00:10:00"_s, u"500:10:00"_s, -5)), u"5|0:10:00"_s);
        QCOMPARE(written(mask.edited(u"00:10:00"_s, u"00:10:005"_s, 99)), u"00:10:00|"_s);
        QCOMPARE(written(mask.edited(u"00:10:00"_s, u"00:10:0"_s, 99)), u"00:10:0|0"_s);
        QCOMPARE(written(mask.edited(u"00:10:00"_s, u"0:00"_s, -1)), u"|00:00:00"_s);
        QCOMPARE(written(mask.edited(u"00:10:00"_s, u"x"_s, -1)), u"|00:10:00 beep"_s);
        QCOMPARE(written(mask.edited(u"00:10:00"_s, QString(), 1)), u"|00:00:00"_s);
    }

    void textFromElsewhereIsTakenAsFarAsItDiffers()
    {
        const TimeMask mask(TimeMask::Precision::Seconds);
        QCOMPARE(written(mask.edited(u"00:10:00"_s, u"01:20:30"_s, 3)), u"01:20:3|0"_s);
        QCOMPARE(written(mask.edited(u"00:10:00"_s, u"01:20:30"_s, 0)), u"01:20:3|0"_s);
        QCOMPARE(written(mask.edited(u"00:10:00"_s, u"7x:10:00"_s, 8)), u"|00:10:00 beep"_s);
    }

    void knowsItsShape_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isShort");
        QTest::addColumn<bool>("isLong");
        const auto row = [](const char *name, const QString &text, bool isShort, bool isLong) {
            QTest::newRow(name) << text << isShort << isLong;
        };
        row("short", u"12:34:56"_s, true, false);
        row("long", u"12:34:56,789"_s, false, true);
        row("too large for a clock", u"99:99:99"_s, true, false);
        row("absent", {}, false, false);
        row("empty", u""_s, false, false);
        row("a digit short", u"2:34:56"_s, false, false);
        row("a digit over", u"12:34:567"_s, false, false);
        row("a blank behind", u"12:34:56 "_s, false, false);
        row("colon too late", u"123:4:56"_s, false, false);
        row("points", u"12.34.56"_s, false, false);
        row("colon for a digit", u"12:34:5:"_s, false, false);
        row("slash for a digit", u"12:34:5/"_s, false, false);
        row("letter for a digit", u"12:34:5a"_s, false, false);
        row("digit of another script", u"12:34:5٣"_s, false, false);
        row("long with a point", u"12:34:56.789"_s, false, false);
        row("long with a third colon", u"12:34:56:789"_s, false, false);
        row("long with two digits", u"12:34:56,78"_s, false, false);
    }

    void knowsItsShape()
    {
        QFETCH(QString, text);
        QTEST(TimeMask(TimeMask::Precision::Seconds).fits(text), "isShort");
        QTEST(TimeMask(TimeMask::Precision::Milliseconds).fits(text), "isLong");
    }

    void whatDoesNotFitBecomesZero()
    {
        const TimeMask seconds(TimeMask::Precision::Seconds);
        const TimeMask milliseconds(TimeMask::Precision::Milliseconds);
        QCOMPARE(seconds.fitted(u"12:34:56"_s), u"12:34:56"_s);
        QCOMPARE(seconds.fitted(u"12:34:56,789"_s), u"00:00:00"_s);
        QCOMPARE(milliseconds.fitted(u"12:34:56,789"_s), u"12:34:56,789"_s);
        QCOMPARE(milliseconds.fitted(u"12:34:56"_s), u"00:00:00,000"_s);
        QCOMPARE(written(seconds.edited(u"ten"_s, u"7"_s, 1)), u"7|0:00:00"_s);
        QCOMPARE(written(milliseconds.edited(u"ten"_s, u"tend"_s, 4)), u"|00:00:00,000 beep"_s);
    }

    void survivesTheCorpus_data()
    {
        QTest::addColumn<QString>("path");
        const QDir corpus(QStringLiteral(TESSARAY_SOURCE_DIR) + u"/tests/fuzz/corpus/timemask"_s);
        for (const QString &name : corpus.entryList(QDir::Files))
            QTest::newRow(qPrintable(name)) << corpus.filePath(name);
    }

    void survivesTheCorpus()
    {
        QFETCH(QString, path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(fuzz::TimeMaskCheck::offenceOf(file.readAll()), QString());
    }
};

TESSARAY_TEST(TimeMaskTest)
#include "TimeMaskTest.moc"
