#include "prefs/KXIntegerValidator.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using prefs::FieldEdit;
using prefs::FieldKind;

class KXIntegerValidatorTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void editingBeginsWithTheTextOfTheField()
    {
        KXIntegerValidator validator;
        QVERIFY(validator.oldText().isNull());
        QVERIFY(validator.controlTextShouldBeginEditing(u"1500"_s));
        QCOMPARE(validator.oldText(), u"1500"_s);
        QVERIFY(validator.controlTextShouldBeginEditing(u"none"_s)); // nothing is judged before it is changed
        QCOMPARE(validator.oldText(), u"none"_s);
    }

    void letterBeepsAndIsTakenBack()
    {
        KXIntegerValidator validator;
        validator.controlTextShouldBeginEditing(u""_s);
        QCOMPARE(validator.controlTextDidChange(u"1"_s, 1), (FieldEdit{u"1"_s, 1, false}));
        QCOMPARE(validator.controlTextDidChange(u"12"_s, 2), (FieldEdit{u"12"_s, 2, false}));
        QCOMPARE(validator.controlTextDidChange(u"12a"_s, 3), (FieldEdit{u"12"_s, 2, true}));
        QCOMPARE(validator.oldText(), u"12"_s);
        QCOMPARE(validator.controlTextDidChange(u"123"_s, 3), (FieldEdit{u"123"_s, 3, false}));
        QCOMPARE(validator.oldText(), u"123"_s);
    }

    void digitsAndNothingElseAreAccepted_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("beep");
        const auto row = [](const char *name, const QString &text, bool beep) {
            QTest::newRow(name) << text << beep;
        };
        row("empty", u""_s, false);
        row("every digit", u"1234567890"_s, false);
        row("leading zeros", u"007"_s, false);
        row("too large for any number", QString(200, u'9'), false);
        row("point", u"1.5"_s, true);
        row("comma", u"1,500"_s, true);
        row("minus", u"-1"_s, true);
        row("plus", u"+1"_s, true);
        row("colon", u"1:2"_s, true);
        row("slash", u"1/2"_s, true);
        row("blank", u"1 "_s, true);
        row("line feed", u"1\n"_s, true);
        row("letter first", u"a1"_s, true);
        row("letter between", u"1a2"_s, true);
        row("hexadecimal", u"0x10"_s, true);
        row("digit of another script", u"٣"_s, true);
        row("wide digit", u"１"_s, true);
        row("superscript", u"²"_s, true);
        row("picture", u"🎬"_s, true);
    }

    void digitsAndNothingElseAreAccepted()
    {
        QFETCH(QString, text);
        QFETCH(bool, beep);
        KXIntegerValidator validator;
        validator.controlTextShouldBeginEditing(u"640"_s);
        const FieldEdit edit = validator.controlTextDidChange(text, text.size());
        QCOMPARE(edit.beep, beep);
        QCOMPARE(edit.text, beep ? u"640"_s : text);
        QCOMPARE(validator.oldText(), edit.text);
    }

    void caretOfAnAcceptedTextStays()
    {
        KXIntegerValidator validator;
        validator.controlTextShouldBeginEditing(u"640"_s);
        QCOMPARE(validator.controlTextDidChange(u"6540"_s, 2), (FieldEdit{u"6540"_s, 2, false}));
        QCOMPARE(validator.controlTextDidChange(u""_s, 0), (FieldEdit{u""_s, 0, false}));
    }

    void caretOfARefusedTextGoesBack_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qsizetype>("caret");
        QTest::addColumn<qsizetype>("back");
        const auto row = [](const char *name, const QString &text, qsizetype caret, qsizetype back) {
            QTest::newRow(name) << text << caret << back;
        };
        row("at the start", u"x640"_s, 1, 0);
        row("in the middle", u"6x40"_s, 2, 1);
        row("at the end", u"640x"_s, 4, 3);
        row("several", u"6px40"_s, 3, 1);
        row("over a selection", u"6x"_s, 2, 1);
        row("over everything", u"x"_s, 1, 0);
        row("caret too far", u"640x"_s, 99, 3);
        row("caret too low", u"x640"_s, -1, 0);
    }

    void caretOfARefusedTextGoesBack()
    {
        QFETCH(QString, text);
        QFETCH(qsizetype, caret);
        QFETCH(qsizetype, back);
        KXIntegerValidator validator;
        validator.controlTextShouldBeginEditing(u"640"_s);
        QCOMPARE(validator.controlTextDidChange(text, caret), (FieldEdit{u"640"_s, back, true}));
    }

    void textThatWasBadFromTheStartCanBeEmptied()
    {
        KXIntegerValidator validator;
        validator.controlTextShouldBeginEditing(u"none"_s);
        QCOMPARE(validator.controlTextDidChange(u"non"_s, 3), (FieldEdit{u"none"_s, 3, true}));
        QCOMPARE(validator.controlTextDidChange(u""_s, 0), (FieldEdit{u""_s, 0, false}));
    }

    void otherControlsAreLeftAlone()
    {
        KXIntegerValidator validator;
        validator.controlTextShouldBeginEditing(u"640"_s);
        for (const FieldKind kind : {FieldKind::ComboBox, FieldKind::Other}) {
            QCOMPARE(validator.controlTextDidChange(u"large"_s, 5, kind), (FieldEdit{u"large"_s, 5, false}));
            QCOMPARE(validator.controlTextDidChange(u"12"_s, 2, kind), (FieldEdit{u"12"_s, 2, false}));
            QCOMPARE(validator.oldText(), u"640"_s);
        }
        QVERIFY(validator.controlTextDidChange(u"large"_s, 5, FieldKind::TextField).beep);
    }
};

TESSARAY_TEST(KXIntegerValidatorTest)
#include "KXIntegerValidatorTest.moc"
