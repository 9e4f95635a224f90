#include "tools/Numbers.h"
#include "support/TestMain.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

class NumbersTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leadingIntegerReadsTheHeadOfAText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("number");
        const auto row = [](const char *name, const QString &text, qint64 number) {
            QTest::newRow(name) << text << number;
        };
        row("absent", {}, 0);
        row("empty", u""_s, 0);
        row("letters", u"abc"_s, 0);
        row("percent", u"45%"_s, 45);
        row("digits, letters", u"12abc"_s, 12);
        row("leading zero", u"007"_s, 7);
        row("zero, letters", u"0abc"_s, 0);
        row("blanks and sign", u" \t-3x"_s, -3);
        row("plus", u"+8"_s, 8);
        row("two signs", u"+-8"_s, 0);
        row("fraction", u"3.99"_s, 3);
        row("digits later", u"a1"_s, 0);
        row("other digits are none", u"٣"_s, 0);
        row("largest", u"9223372036854775807"_s, std::numeric_limits<qint64>::max());
        row("one too large", u"9223372036854775808"_s, std::numeric_limits<qint64>::max());
        row("far too large", u"99999999999999999999999"_s, std::numeric_limits<qint64>::max());
        row("far too small", u"-99999999999999999999999"_s, -std::numeric_limits<qint64>::max());
    }

    void leadingIntegerReadsTheHeadOfAText()
    {
        QFETCH(QString, text);
        QTEST(tools::leadingInteger(text), "number");
    }

    void allDigitsMeansNothingElse()
    {
        QVERIFY(tools::isAllDigits(u"0"_s));
        QVERIFY(tools::isAllDigits(u"12345678901234567890"_s));
        for (const QString &text :
             {QString(), u""_s, u"-1"_s, u"+1"_s, u" 1"_s, u"1 "_s, u"1\n"_s, u"1a"_s, u"1.0"_s, u"٣"_s})
            QVERIFY2(!tools::isAllDigits(text), qPrintable(text));
    }

    void percentIsCutNotRounded()
    {
        QCOMPARE(tools::percentOf(0, 8), 0);
        QCOMPARE(tools::percentOf(1, 3), 33);
        QCOMPARE(tools::percentOf(2, 3), 66);
        QCOMPARE(tools::percentOf(8, 8), 100);
        QCOMPARE(tools::percentOf(9, 8), 112);
    }

    void percentOfNothingIsZero()
    {
        QCOMPARE(tools::percentOf(5, 0), 0);
        QCOMPARE(tools::percentOf(5, -1), 0);
    }

    void percentOfHugeNumbersDoesNotOverflow()
    {
        constexpr qint64 largest = std::numeric_limits<qint64>::max();
        QCOMPARE(tools::percentOf(largest, largest), 100);
        QCOMPARE(tools::percentOf(largest / 2, largest), 50);
        QVERIFY(tools::percentOf(largest, 1) > 1'000'000'000);
        QVERIFY(tools::percentOf(std::numeric_limits<qint64>::min(), 1) < -1'000'000'000);
    }

    void floatsArePrintedWithSixPlaces()
    {
        QCOMPARE(tools::printedFloat(23.976), u"23.976000"_s);
        QCOMPARE(tools::printedFloat(0), u"0.000000"_s);
        QCOMPARE(tools::printedFloat(-1.5), u"-1.500000"_s);
    }

    void noNumberIsPrintedWithoutASign()
    {
        QCOMPARE(tools::printedFloat(std::numeric_limits<double>::quiet_NaN()), u"nan"_s);
        QCOMPARE(tools::printedFloat(-std::numeric_limits<double>::quiet_NaN()), u"nan"_s);
    }
};

TESSARAY_TEST(NumbersTest)
#include "NumbersTest.moc"
