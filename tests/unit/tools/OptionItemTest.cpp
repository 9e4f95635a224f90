#include "tools/OptionItem.h"
#include "support/TestMain.h"

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
        const OptionItem item(u"| grep '%@' > $x");
        QVERIFY(!item.isFile());
        QVERIFY(!item.hasData());
        for (const QString &form : {item.text(), item.argument(), item.shown(), item.safe()})
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
        const auto item = OptionItem(u"title=").withData(u"it's `x`"_s, quoting).with(u"!");
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
            const auto item = OptionItem(u"0:").withData(u"Surround, five (5.1)"_s, quoting);
            QCOMPARE(item.safe(), item.shown());
        }
    }

    void emptyDataIsStillAWord()
    {
        QCOMPARE(OptionItem(u"0:").withData({}, Quoting::Single).safe(), u"0:''"_s);
        QCOMPARE(OptionItem(u"0:").withData({}, Quoting::None).safe(), u"0:''"_s);
        QCOMPARE(OptionItem(u"0:").withData({}, Quoting::None).text(), u"0:"_s);
    }

    void moreRawTextStandsBehindWhatIsThere()
    {
        QCOMPARE(OptionItem(u"-map 0:").with(3).text(), u"-map 0:3"_s);
        QCOMPARE(OptionItem::ofNumber(2).with(u":").with(-1).safe(), u"2:-1"_s);
        const OptionItem item = OptionItem(u"a=").withData(u"x y"_s, Quoting::Single).with(u"!").with(7);
        QCOMPARE(item.text(), u"a='x y'!7"_s);
        QCOMPARE(item.argument(), u"a=x y!7"_s);
    }

    void textsOfOursAreAddedToDataAndReplacedInIt()
    {
        const OptionItem item = OptionItem::ofData(u"a;b"_s, Quoting::Single).withMoreData(u";c d");
        QCOMPARE(item.safe(), u"'a;b;c d'"_s);
        QCOMPARE(item.withReplaced(u";", u" ").safe(), u"'a b c d'"_s);
        QCOMPARE(OptionItem(u"x[o]").withReplaced(u"[o]", u",y[o]").text(), u"x,y[o]"_s);
    }

    void wordsPartAtBlanksOfOursAndNeverInData()
    {
        const auto argumentsOfWords = [](const OptionItem &item) { return tools::argumentsOf(item.words()); };
        QCOMPARE(argumentsOfWords(OptionItem(u"-an  -sn")), QStringList({u"-an"_s, u"-sn"_s}));
        QCOMPARE(argumentsOfWords(OptionItem(u"-m t=").withData(u"a -y b"_s).with(u"k -z")),
                 QStringList({u"-m"_s, u"t=a -y bk"_s, u"-z"_s}));
        QCOMPARE(argumentsOfWords(QUrl::fromLocalFile(u"/m/a b"_s)), QStringList({u"/m/a b"_s}));
        QVERIFY(OptionItem::ofData({}).words().isEmpty());
    }

    /// What a text of a file could become on a line is decided by the compiler.
    void onlyLiteralsAndNumbersAreRaw()
    {
        static_assert(std::is_constructible_v<OptionItem, const char16_t(&)[3]>);
        static_assert(std::is_constructible_v<OptionItem, QUrl>);
        static_assert(!std::is_constructible_v<OptionItem, QString>);
        static_assert(!std::is_constructible_v<OptionItem, QStringView>);
        static_assert(!std::is_constructible_v<OptionItem, char16_t(&)[3]>);
        static_assert(!std::is_constructible_v<OptionItem, const char16_t *>);
        static_assert(!std::is_constructible_v<OptionItem, QByteArray>);
        static_assert(!std::is_constructible_v<tools::Literal, QString>);
        static_assert(!std::is_constructible_v<tools::Literal, const char16_t *>);
        static_assert(!std::is_default_constructible_v<OptionItem>);
        const auto raw = [](const auto &value) {
            return requires(OptionItem item)
            {
                item.with(value);
            };
        };
        QVERIFY(raw(5));
        QVERIFY(!raw(QString()));
    }

    void titlesThatFitStayAsTheyAre()
    {
        const OptionList list{u"-m", OptionItem(u"title=").withTitle(QString(4096, u'x')),
                              OptionItem::ofData(QString(20000, u'y'))};
        QVERIFY(tools::withTitlesThatFit(list) == list);
    }

    void longTitlesAreCutAtACharacterAndNamesNever()
    {
        const QString name(5000, u'n');
        const OptionList list{OptionItem(u"title=").withTitle(u'x' + QString(3000, u'ü'), Quoting::Single),
                              OptionItem::ofData(name)};
        const OptionList fitting = tools::withTitlesThatFit(list);
        QCOMPARE(fitting.at(0).data(), u'x' + QString(2047, u'ü')); // 4095 bytes: the next one needs two
        QCOMPARE(fitting.at(1).data(), name);
    }

    void manyTitlesAreCutShorterUntilTheLineFits()
    {
        OptionList list;
        for (int i = 0; i < 200; ++i)
            list << OptionItem(u"--track-name 0:").withTitle(QString(4000, u'x'), Quoting::Single);
        qsizetype bytes = 0;
        for (const OptionItem &item : tools::withTitlesThatFit(list)) {
            QVERIFY(item.data().size() >= 64);
            bytes += item.safe().size() + 1;
        }
        QVERIFY2(bytes < 131072, qPrintable(QString::number(bytes)));
    }

    void equalItemsAreOfOneKindAndText()
    {
        QVERIFY(OptionItem(u"/a") == OptionItem(u"/a"));
        QVERIFY(!(OptionItem(u"/a") == OptionItem(u"/b")));
        QVERIFY(!(OptionItem(u"/a") == OptionItem(QUrl::fromLocalFile(u"/a"_s))));
        QVERIFY(OptionItem(u"t='x'") == OptionItem(u"t=").withData(u"x"_s, Quoting::Single));
    }

    void listsGiveArgumentsAndTexts()
    {
        const OptionList list{u"-i", QUrl::fromLocalFile(u"/m/a b"_s),
                              OptionItem(u"t=").withData(u"x"_s, Quoting::Single)};
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

TESSARAY_TEST(OptionItemTest)
#include "OptionItemTest.moc"
