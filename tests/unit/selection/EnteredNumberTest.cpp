#include "selection/EnteredNumber.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using selection::normalizedNumber;

/// What becomes of a typed number.
class EnteredNumberTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typedTextBecomesAWholeNumber_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("number");
        QTest::newRow("plain") << u"1500"_s << u"1500"_s;
        QTest::newRow("zero") << u"0"_s << u"0"_s;
        QTest::newRow("many zeros") << u"000"_s << u"0"_s;
        QTest::newRow("leading zeros") << u"0720"_s << u"720"_s;
        QTest::newRow("blanks around it") << u" 720\t"_s << u"720"_s;
        QTest::newRow("plus") << u"+5"_s << u"5"_s;
        QTest::newRow("estimated rate below zero") << u"-12"_s << u"-12"_s;
        QTest::newRow("minus nothing") << u"-0"_s << u"0"_s;
        QTest::newRow("less than half") << u"2.4"_s << u"2"_s;
        QTest::newRow("nearly half") << u"2.4999999999999999999"_s << u"2"_s;
        QTest::newRow("half goes up") << u"2.5"_s << u"3"_s;
        QTest::newRow("half of an odd number goes up") << u"3.5"_s << u"4"_s;
        QTest::newRow("half below zero goes away from it") << u"-2.5"_s << u"-3"_s;
        QTest::newRow("less than half below zero") << u"-0.4"_s << u"0"_s;
        QTest::newRow("more than half") << u"2.6"_s << u"3"_s;
        QTest::newRow("carries one place") << u"9.5"_s << u"10"_s;
        QTest::newRow("carries many places") << u"1999.9"_s << u"2000"_s;
        QTest::newRow("no digit in front") << u".5"_s << u"1"_s;
        QTest::newRow("no digit behind") << u"5."_s << u"5"_s;
        QTest::newRow("longer than any machine number")
            << u"123456789012345678901234567890"_s << u"123456789012345678901234567890"_s;
    }

    void typedTextBecomesAWholeNumber()
    {
        QFETCH(QString, typed);
        QFETCH(QString, number);
        QCOMPARE(normalizedNumber(typed, 0), number);
    }

    void typedTextBecomesAFrameRate_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("number");
        QTest::newRow("plain") << u"23.976"_s << u"23.976"_s;
        QTest::newRow("as probed") << u"23.976024"_s << u"23.976"_s;
        QTest::newRow("whole, as probed") << u"25.000000"_s << u"25"_s;
        QTest::newRow("zeros behind go") << u"29.970"_s << u"29.97"_s;
        QTest::newRow("zeros within stay") << u"29.007"_s << u"29.007"_s;
        QTest::newRow("half goes up") << u"23.9765"_s << u"23.977"_s;
        QTest::newRow("nearly half") << u"23.97649999"_s << u"23.976"_s;
        QTest::newRow("half that binary fractions miss") << u"1.0005"_s << u"1.001"_s;
        QTest::newRow("carries into the whole") << u"29.9995"_s << u"30"_s;
        QTest::newRow("carries within the fraction") << u"23.0995"_s << u"23.1"_s;
        QTest::newRow("too small") << u"0.0004"_s << u"0"_s;
        QTest::newRow("just large enough") << u"0.0005"_s << u"0.001"_s;
        QTest::newRow("below zero and too small") << u"-0.0004"_s << u"0"_s;
        QTest::newRow("below one") << u".25"_s << u"0.25"_s;
        QTest::newRow("point at the end") << u"25."_s << u"25"_s;
        QTest::newRow("tens keep their zero") << u"30"_s << u"30"_s;
    }

    void typedTextBecomesAFrameRate()
    {
        QFETCH(QString, typed);
        QFETCH(QString, number);
        QCOMPARE(normalizedNumber(typed, 3), number);
    }

    void whatIsNoNumberGivesNothing_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::newRow("absent") << QString();
        QTest::newRow("empty") << u""_s;
        QTest::newRow("blanks") << u"  "_s;
        QTest::newRow("word") << u"abc"_s;
        QTest::newRow("letters behind") << u"720p"_s;
        QTest::newRow("letters in front") << u"x720"_s;
        QTest::newRow("sign alone") << u"-"_s;
        QTest::newRow("point alone") << u"."_s;
        QTest::newRow("two points") << u"1.2.3"_s;
        QTest::newRow("two signs") << u"--1"_s;
        QTest::newRow("grouped") << u"1,500"_s;
        QTest::newRow("comma for the point") << u"23,976"_s;
        QTest::newRow("blank between digits") << u"1 500"_s;
        QTest::newRow("exponent") << u"1e3"_s;
        QTest::newRow("hexadecimal") << u"0x10"_s;
        QTest::newRow("frame rate of a stream that has none") << u"nan"_s;
        QTest::newRow("endless") << u"inf"_s;
        QTest::newRow("other digits") << u"١٢"_s;
    }

    void whatIsNoNumberGivesNothing()
    {
        QFETCH(QString, typed);
        QVERIFY(normalizedNumber(typed, 0).isNull());
        QVERIFY(normalizedNumber(typed, 3).isNull());
    }
};

TESSARAY_TEST(EnteredNumberTest)
#include "EnteredNumberTest.moc"
