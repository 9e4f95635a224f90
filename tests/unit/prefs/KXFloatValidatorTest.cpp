#include "prefs/KXFloatValidator.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using prefs::FieldEdit;
using prefs::FieldKind;

class KXFloatValidatorTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void editingBeginsWithTheTextOfTheField()
    {
        KXFloatValidator validator;
        QVERIFY(validator.oldText().isNull());
        QVERIFY(validator.controlTextShouldBeginEditing(u"25"_s));
        QCOMPARE(validator.oldText(), u"25"_s);
        QVERIFY(
            validator.controlTextShouldBeginEditing(u"1.2.3"_s)); // nothing is judged before it is changed
        QCOMPARE(validator.oldText(), u"1.2.3"_s);
    }

    void secondPointBeepsAndIsTakenBack()
    {
        KXFloatValidator validator;
        validator.controlTextShouldBeginEditing(u""_s);
        const QString whole = u"23.976"_s;
        for (qsizetype length = 1; length <= whole.size(); ++length) {
            const QString typed = whole.left(length);
            QCOMPARE(validator.controlTextDidChange(typed, length), (FieldEdit{typed, length, false}));
        }
        QCOMPARE(validator.controlTextDidChange(u"23.976."_s, 7), (FieldEdit{u"23.976"_s, 6, true}));
        QCOMPARE(validator.oldText(), u"23.976"_s);
        QCOMPARE(validator.controlTextDidChange(u"2.3.976"_s, 2), (FieldEdit{u"23.976"_s, 1, true}));
        QCOMPARE(validator.controlTextDidChange(u"23..976"_s, 3), (FieldEdit{u"23.976"_s, 2, true}));
        QCOMPARE(validator.controlTextDidChange(u"23976"_s, 2), (FieldEdit{u"23976"_s, 2, false}));
        QCOMPARE(validator.controlTextDidChange(u"239.76"_s, 4), (FieldEdit{u"239.76"_s, 4, false}));
    }

    void digitsAndOnePointAreAccepted_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("beep");
        const auto row = [](const char *name, const QString &text, bool beep) {
            QTest::newRow(name) << text << beep;
        };
        row("empty", u""_s, false);
        row("frame rate", u"23.976"_s, false);
        row("whole number", u"25"_s, false);
        row("every digit", u"12345.67890"_s, false);
        row("point alone", u"."_s, false);
        row("point first", u".5"_s, false);
        row("point last", u"30."_s, false);
        row("two points", u".."_s, true);
        row("two points apart", u"1.2.3"_s, true);
        row("three points", u"1.2.3.4"_s, true);
        row("comma", u"23,976"_s, true);
        row("slash", u"24000/1001"_s, true);
        row("minus", u"-1"_s, true);
        row("plus", u"+1"_s, true);
        row("exponent", u"1e3"_s, true);
        row("blank", u"25 "_s, true);
        row("letters", u"25fps"_s, true);
        row("digit of another script", u"٣"_s, true);
        row("wide point", u"23．976"_s, true);
        row("middle dot", u"23·976"_s, true);
    }

    void digitsAndOnePointAreAccepted()
    {
        QFETCH(QString, text);
        QFETCH(bool, beep);
        for (const FieldKind kind : {FieldKind::TextField, FieldKind::ComboBox}) {
            KXFloatValidator validator;
            validator.controlTextShouldBeginEditing(u"29.97"_s);
            const FieldEdit edit = validator.controlTextDidChange(text, text.size(), kind);
            QCOMPARE(edit.beep, beep);
            QCOMPARE(edit.text, beep ? u"29.97"_s : text);
            QCOMPARE(validator.oldText(), edit.text);
        }
    }

    void caretOfARefusedTextGoesBack()
    {
        KXFloatValidator validator;
        validator.controlTextShouldBeginEditing(u"29.97"_s);
        QCOMPARE(validator.controlTextDidChange(u"x29.97"_s, 1), (FieldEdit{u"29.97"_s, 0, true}));
        QCOMPARE(validator.controlTextDidChange(u"29.9x7"_s, 5), (FieldEdit{u"29.97"_s, 4, true}));
        QCOMPARE(validator.controlTextDidChange(u"29x"_s, 3), (FieldEdit{u"29.97"_s, 2, true}));
        QCOMPARE(validator.controlTextDidChange(u"29.97x"_s, 99), (FieldEdit{u"29.97"_s, 5, true}));
    }

    void otherControlsAreLeftAlone()
    {
        KXFloatValidator validator;
        validator.controlTextShouldBeginEditing(u"25"_s);
        QCOMPARE(validator.controlTextDidChange(u"1.2.3 fps"_s, 4, FieldKind::Other),
                 (FieldEdit{u"1.2.3 fps"_s, 4, false}));
        QCOMPARE(validator.controlTextDidChange(u"30"_s, 2, FieldKind::Other),
                 (FieldEdit{u"30"_s, 2, false}));
        QCOMPARE(validator.oldText(), u"25"_s);
    }
};

TESSARAY_TEST(KXFloatValidatorTest)
#include "KXFloatValidatorTest.moc"
