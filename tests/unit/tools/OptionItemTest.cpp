#include "tools/OptionItem.h"

#include <QTest>

using namespace Qt::StringLiterals;
using tools::OptionItem;
using tools::OptionList;
using tools::Quoting;

class OptionItemTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void doubleQuotesEscapeQuotesAndDollarsOnly_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("quoted");
        QTest::newRow("absent") << QString() << u"\"\""_s;
        QTest::newRow("empty") << u""_s << u"\"\""_s;
        QTest::newRow("plain") << u"/m/a b.mkv"_s << u"\"/m/a b.mkv\""_s;
        QTest::newRow("quote") << u"a\"b"_s << u"\"a\\\"b\""_s;
        QTest::newRow("dollar") << u"a$b"_s << u"\"a\\$b\""_s;
        QTest::newRow("both") << u"$\"$"_s << u"\"\\$\\\"\\$\""_s;
        QTest::newRow("backslash stays") << u"a\\b"_s << u"\"a\\b\""_s;
        QTest::newRow("back-quote stays") << u"a`b"_s << u"\"a`b\""_s;
        QTest::newRow("apostrophe stays") << u"it's"_s << u"\"it's\""_s;
    }

    void doubleQuotesEscapeQuotesAndDollarsOnly()
    {
        QFETCH(QString, text);
        QTEST(tools::doubleQuoted(text), "quoted");
    }

    void singleQuotesEscapeAsNoShellReadsIt_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("quoted");
        QTest::newRow("absent") << QString() << u"''"_s;
        QTest::newRow("empty") << u""_s << u"''"_s;
        QTest::newRow("plain") << u"a \"b\" $c"_s << u"'a \"b\" $c'"_s;
        QTest::newRow("apostrophe") << u"it's"_s << u"'it\\'s'"_s;
        QTest::newRow("backslash stays") << u"a\\b"_s << u"'a\\b'"_s;
    }

    void singleQuotesEscapeAsNoShellReadsIt()
    {
        QFETCH(QString, text);
        QTEST(tools::singleQuoted(text), "quoted");
    }

    void safeDoubleQuotesChangeOnlyWhatIsReadAsSyntax_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("quoted");
        QTest::newRow("plain") << u"/m/a b.mkv"_s << u"\"/m/a b.mkv\""_s;
        QTest::newRow("quote and dollar as ever") << u"a\"$b"_s << u"\"a\\\"\\$b\""_s;
        QTest::newRow("backslash before a letter as ever") << u"a\\b"_s << u"\"a\\b\""_s;
        QTest::newRow("back-quote") << u"a`id`"_s << u"\"a\\`id\\`\""_s;
        QTest::newRow("two backslashes") << u"a\\\\b"_s << u"\"a\\\\\\\\b\""_s;
        QTest::newRow("backslash, quote") << u"a\\\"b"_s << u"\"a\\\\\\\"b\""_s;
        QTest::newRow("backslash, dollar") << u"a\\$(id)"_s << u"\"a\\\\\\$(id)\""_s;
        QTest::newRow("backslash, back-quote") << u"a\\`b"_s << u"\"a\\\\\\`b\""_s;
        QTest::newRow("backslash at the end") << u"a\\"_s << u"\"a\\\\\""_s;
        QTest::newRow("backslash, line feed") << u"a\\\nb"_s << u"\"a\\\\\nb\""_s;
        QTest::newRow("once needed, everywhere") << u"a\\b`\"$"_s << u"\"a\\\\b\\`\\\"\\$\""_s;
    }

    void safeDoubleQuotesChangeOnlyWhatIsReadAsSyntax()
    {
        QFETCH(QString, text);
        QTEST(tools::safelyDoubleQuoted(text), "quoted");
    }

    void safeSingleQuotesCloseAroundAnApostrophe()
    {
        QCOMPARE(tools::safelySingleQuoted(u"it's"_s), u"'it'\\''s'"_s);
        QCOMPARE(tools::safelySingleQuoted(u"'"_s), u"''\\'''"_s);
        QCOMPARE(tools::safelySingleQuoted(u"a \"b\" $c\\"_s), u"'a \"b\" $c\\'"_s);
        QCOMPARE(tools::safelySingleQuoted({}), u"''"_s);
    }

    void fileIsItsPathAndShownInDoubleQuotes()
    {
        const OptionItem item(QUrl::fromLocalFile(u"/m/a \"b\" $c%20#?.mkv"_s));
        QVERIFY(item.isFile());
        QVERIFY(!item.hasData());
        QCOMPARE(item.text(), u"/m/a \"b\" $c%20#?.mkv"_s);
        QCOMPARE(item.argument(), u"/m/a \"b\" $c%20#?.mkv"_s);
        QCOMPARE(item.shown(), u"\"/m/a \\\"b\\\" \\$c%20#?.mkv\""_s);
        QCOMPARE(item.safe(), u"\"/m/a \\\"b\\\" \\$c%20#?.mkv\""_s);
    }

    void fileWithABackQuoteIsShownAsTheRuleSaysAndRunsEscaped()
    {
        const OptionItem item(QUrl::fromLocalFile(u"/m/`id`.mkv"_s));
        QCOMPARE(item.shown(), u"\"/m/`id`.mkv\""_s);
        QCOMPARE(item.safe(), u"\"/m/\\`id\\`.mkv\""_s);
    }

    void stringStandsAsItIs()
    {
        const OptionItem item(u"| grep '%@' > $x"_s);
        QVERIFY(!item.isFile());
        QVERIFY(!item.hasData());
        for (const QString &form : {item.text(), item.argument(), item.shown(), item.safe(), item.before()})
            QCOMPARE(form, u"| grep '%@' > $x"_s);
    }

    void dataIsQuotedAsTheListSaysAndSafelyInTheLine_data()
    {
        QTest::addColumn<Quoting>("quoting");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("safe");
        QTest::newRow("none") << Quoting::None << u"title=it's `x`!"_s << u"title='it'\\''s `x`'!"_s;
        QTest::newRow("double") << Quoting::Double << u"title=\"it's `x`\"!"_s
                                << u"title=\"it's \\`x\\`\"!"_s;
        QTest::newRow("single") << Quoting::Single << u"title='it\\'s `x`'!"_s << u"title='it'\\''s `x`'!"_s;
    }

    void dataIsQuotedAsTheListSaysAndSafelyInTheLine()
    {
        QFETCH(Quoting, quoting);
        const auto item = OptionItem::withData(u"title="_s, u"it's `x`"_s, quoting, u"!"_s);
        QVERIFY(item.hasData());
        QCOMPARE(item.data(), u"it's `x`"_s);
        QTEST(item.text(), "text");
        QTEST(item.shown(), "text");
        QTEST(item.safe(), "safe");
        QCOMPARE(item.argument(), u"title=it's `x`!"_s);
    }

    void harmlessQuotedDataRunsByteForByteAsShown()
    {
        for (const Quoting quoting : {Quoting::Double, Quoting::Single}) {
            const auto item = OptionItem::withData(u"0:"_s, u"Surround, five (5.1)"_s, quoting);
            QCOMPARE(item.safe(), item.shown());
        }
    }

    void emptyDataIsStillAWord()
    {
        QCOMPARE(OptionItem::withData(u"0:"_s, {}, Quoting::Single).safe(), u"0:''"_s);
        QCOMPARE(OptionItem::withData(u"0:"_s, {}, Quoting::None).safe(), u"0:''"_s);
        QCOMPARE(OptionItem::withData(u"0:"_s, {}, Quoting::None).text(), u"0:"_s);
    }

    void anotherTextBeforeKeepsTheData()
    {
        const auto item =
            OptionItem::withData(u"a="_s, u"x y"_s, Quoting::Single, u"!"_s).withBefore(u"b="_s);
        QCOMPARE(item.text(), u"b='x y'!"_s);
        QCOMPARE(item.argument(), u"b=x y!"_s);
        QCOMPARE(item.safe(), u"b='x y'!"_s);
        QCOMPARE(OptionItem(u"old"_s).withBefore(u"new"_s).text(), u"new"_s);
    }

    void equalItemsAreOfOneKindAndText()
    {
        QVERIFY(OptionItem(u"/a"_s) == OptionItem(u"/a"_s));
        QVERIFY(!(OptionItem(u"/a"_s) == OptionItem(u"/b"_s)));
        QVERIFY(!(OptionItem(u"/a"_s) == OptionItem(QUrl::fromLocalFile(u"/a"_s))));
        QVERIFY(OptionItem(u"t='x'"_s) == OptionItem::withData(u"t="_s, u"x"_s, Quoting::Single));
    }

    void listsGiveArgumentsAndTexts()
    {
        const OptionList list{u"-i"_s, QUrl::fromLocalFile(u"/m/a b"_s),
                              OptionItem::withData(u"t="_s, u"x"_s, Quoting::Single)};
        QCOMPARE(tools::argumentsOf(list), QStringList({u"-i"_s, u"/m/a b"_s, u"t=x"_s}));
        QCOMPARE(tools::textsOf(list), QStringList({u"-i"_s, u"/m/a b"_s, u"t='x'"_s}));
    }

    void pastedWordsAreBareWhenHarmless_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("pasted");
        QTest::newRow("option") << u"-map"_s << u"-map"_s;
        QTest::newRow("path") << u"/m/a_b-1.2:3,4+5@6%7"_s << u"/m/a_b-1.2:3,4+5@6%7"_s;
        QTest::newRow("empty") << u""_s << u"''"_s;
        QTest::newRow("blank") << u"a b"_s << u"'a b'"_s;
        QTest::newRow("home") << u"~"_s << u"'~'"_s;
        QTest::newRow("assignment") << u"A=b"_s << u"'A=b'"_s;
        QTest::newRow("apostrophe") << u"it's"_s << u"'it'\\''s'"_s;
        QTest::newRow("not ASCII") << u"ü"_s << u"'ü'"_s;
        QTest::newRow("star") << u"*"_s << u"'*'"_s;
    }

    void pastedWordsAreBareWhenHarmless()
    {
        QFETCH(QString, word);
        QTEST(tools::pastable(word), "pasted");
    }
};

QTEST_GUILESS_MAIN(OptionItemTest)
#include "OptionItemTest.moc"
