#include "media/ProbeReader.h"

#include "fuzz/ProbeReaderCheck.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// The lines of one or more streams between the two that open ffprobe's text and the two that close it.
QString listOf(const QString &streams)
{
    return u"{\n    \"streams\": [\n"_s + streams + u"\n    ]\n}"_s;
}

/// One stream with that tag line among its tags.
QVariantMap tagsWith(const QString &line)
{
    const auto streams =
        media::streamsIn(listOf(u"        {\n            \"index\": 0,\n            \"tags\": {\n"
                                "                "_s +
                                line + u"\n            }\n        }"_s));
    return streams.constFirst().value(u"tags"_s).toMap();
}

} // namespace

class ProbeReaderTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsAStreamList_data()
    {
        QTest::addColumn<QString>("output");
        QTest::addColumn<bool>("holds");
        QTest::newRow("a list") << u"{\n    \"streams\": [\n    ]\n}"_s << true;
        QTest::newRow("no output") << u""_s << false;
        QTest::newRow("absent output") << QString() << false;
        QTest::newRow("an empty object") << u"{\n\n}"_s << false;
        QTest::newRow("no blank") << u"{\"streams\":[]}"_s << false;
        QTest::newRow("a message") << u"a.mkv: Invalid data found when processing input"_s << false;
        QTest::newRow("a title that says so") << listOf(u"\"title\": \"Invalid data found\""_s) << false;
    }

    void knowsAStreamList()
    {
        QFETCH(QString, output);
        QFETCH(bool, holds);
        QCOMPARE(media::holdsStreamList(output), holds);
    }

    void readsStreamsAndNestedObjects()
    {
        const auto streams = media::streamsIn(listOf(u"        {\n"
                                                     "            \"index\": 0,\n"
                                                     "            \"codec_name\": \"h264\",\n"
                                                     "            \"disposition\": {\n"
                                                     "                \"default\": 1,\n"
                                                     "                \"forced\": 0\n"
                                                     "            },\n"
                                                     "            \"tags\": {\n"
                                                     "                \"language\": \"eng\"\n"
                                                     "            }\n"
                                                     "        },\n"
                                                     "        {\n"
                                                     "            \"index\": 1,\n"
                                                     "            \"bit_rate\": \"384000\"\n"
                                                     "        }"_s));
        const QVariantMap first{
            {u"index"_s, u"0"_s},
            {u"codec_name"_s, u"h264"_s},
            {u"disposition"_s, QVariantMap{{u"default"_s, u"1"_s}, {u"forced"_s, u"0"_s}}},
            {u"tags"_s, QVariantMap{{u"language"_s, u"eng"_s}}}};
        const QVariantMap second{{u"index"_s, u"1"_s}, {u"bit_rate"_s, u"384000"_s}};
        QCOMPARE(streams, QList<QVariantMap>({first, second}));
    }

    void aValueBehindANestedObjectGoesToTheStream()
    {
        const auto streams = media::streamsIn(
            listOf(u"{\n\"tags\": {\n\"language\": \"eng\"\n},\n\"side_data_list\": [\n]\n}"_s));
        QCOMPARE(streams.constFirst().value(u"side_data_list"_s).toString(), u"["_s);
        QCOMPARE(media::tagIn(streams.constFirst(), u"language"_s), u"eng"_s);
    }

    void sideDataOpensAStreamOfItsOwn()
    {
        // A bare brace can't be told from a new stream: fallback names then stand beside other streams.
        const auto streams = media::streamsIn(listOf(u"        {\n"
                                                     "            \"index\": 0,\n"
                                                     "            \"side_data_list\": [\n"
                                                     "                {\n"
                                                     "                    \"rotation\": -90\n"
                                                     "                }\n"
                                                     "            ]\n"
                                                     "        },\n"
                                                     "        {\n"
                                                     "            \"index\": 1\n"
                                                     "        }"_s));
        QCOMPARE(streams.size(), 3);
        QCOMPARE(streams.at(1), QVariantMap({{u"rotation"_s, u"-90"_s}}));
        QCOMPARE(media::textIn(streams.at(2), u"index"_s), u"1"_s);
    }

    void losesOnPurpose_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("title");
        QTest::newRow("plain") << u"\"title\": \"Film\""_s << u"Film"_s;
        QTest::newRow("commas go") << u"\"title\": \"Hello, Fixture\","_s << u"Hello Fixture"_s;
        QTest::newRow("ends at a colon and a blank") << u"\"title\": \"Part 1: Intro\""_s << u"Part 1"_s;
        QTest::newRow("a comma in between makes one") << u"\"title\": \"Part 1:, Intro\""_s << u"Part 1"_s;
        QTest::newRow("a colon alone stays") << u"\"title\": \"12:30\""_s << u"12:30"_s;
        QTest::newRow("double quotes go") << u"\"title\": \"say \\\"hi\\\"\""_s << u"say \\hi\\"_s;
        QTest::newRow("blanks at the ends go") << u"\"title\": \"  Film  \""_s << u"Film"_s;
        QTest::newRow("a closing brace ends the tags") << u"\"title\": \"a } b\""_s << QString();
        QTest::newRow("an opening brace is no text") << u"\"title\": \"a { b\""_s << QString();
        QTest::newRow("escaped line feeds stay") << u"\"title\": \"a\\nb\""_s << u"a\\nb"_s;
        QTest::newRow("line separators stay") << u"\"title\": \"a\u2028b\""_s << u"a\u2028b"_s;
        QTest::newRow("carriage returns cut nothing") << u"\"title\": \"a\rb\""_s << u"a\rb"_s;
        QTest::newRow("other scripts stay") << u"\"title\": \"Füße 🎬\""_s << u"Füße 🎬"_s;
        QTest::newRow("an empty title") << u"\"title\": \"\""_s << u""_s;
    }

    void losesOnPurpose()
    {
        QFETCH(QString, line);
        QFETCH(QString, title);
        QCOMPARE(media::textIn(tagsWith(line), u"title"_s), title);
        QCOMPARE(media::textIn(tagsWith(line), u"title"_s).isNull(), title.isNull());
    }

    void aClosingBraceInATitleSendsLaterTagsToTheStream()
    {
        const auto streams =
            media::streamsIn(listOf(u"{\n\"tags\": {\n\"title\": \"a } b\",\n\"language\": \"eng\"\n}\n}"_s));
        QCOMPARE(streams.size(), 1);
        QVERIFY(media::tagIn(streams.constFirst(), u"language"_s).isNull());
        QCOMPARE(media::textIn(streams.constFirst(), u"language"_s), u"eng"_s);
    }

    void strayTagsReplaceNothingOfTheStream()
    {
        const auto streams = media::streamsIn(
            listOf(u"{\n\"index\": 0,\n\"width\": 320,\n\"disposition\": {\n\"forced\": 0\n},\n"
                   "\"tags\": {\n\"aaa\": \"}\",\n\"index\": \"2;touch X\",\n\"width\": \"640\",\n"
                   "\"disposition\": \"{\",\n\"forced\": \"1\"\n}\n}"_s));
        QCOMPARE(streams.size(), 1);
        QCOMPARE(media::textIn(streams.constFirst(), u"index"_s), u"0"_s);
        QCOMPARE(media::textIn(streams.constFirst(), u"width"_s), u"320"_s);
        QCOMPARE(streams.constFirst().value(u"disposition"_s).toMap().value(u"forced"_s), u"0"_s);
    }

    void fieldsHaveTheFormsThatTheyCanHave_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QStringList>("good");
        QTest::addColumn<QStringList>("bad");
        const QStringList shell{u"1;touch X"_s, u"$(id)"_s, u"1 2"_s,  u""_s,
                                u"-1"_s,        u"1.5"_s,   u"0x10"_s, u"٣"_s};
        QTest::newRow("width") << u"width"_s << QStringList{u"0"_s, u"65535"_s}
                               << shell + QStringList{u"1234567"_s};
        QTest::newRow("height") << u"height"_s << QStringList{u"1080"_s} << shell;
        QTest::newRow("channels") << u"channels"_s << QStringList{u"0"_s, u"8"_s, u"64"_s} << shell;
        QTest::newRow("bit_rate") << u"bit_rate"_s << QStringList{u"192000"_s, u"999999999999"_s}
                                  << shell + QStringList{u"N/A"_s, u"1000000000000"_s};
        QTest::newRow("level") << u"level"_s << QStringList{u"41"_s, u"-99"_s, u"5"_s}
                               << QStringList{u"--1"_s, u"4.1"_s, u"high"_s, u"-"_s, u""_s};
        QTest::newRow("avg_frame_rate")
            << u"avg_frame_rate"_s << QStringList{u"25/1"_s, u"0/0"_s, u"24000/1001"_s}
            << QStringList{u"25"_s, u"25/1/1"_s, u"/1"_s, u"1/"_s, u"a/b"_s};
        QTest::newRow("codec_type") << u"codec_type"_s
                                    << QStringList{u"video"_s, u"audio"_s, u"subtitle"_s, u"data"_s,
                                                   u"attachment"_s}
                                    << QStringList{u"Video"_s, u"video;"_s, u""_s};
        QTest::newRow("codec_name") << u"codec_name"_s
                                    << QStringList{u"h264"_s, u"hdmv_pgs_subtitle"_s, u"MPEG-1/2 L3"_s, u""_s}
                                    << QStringList{u"h264;id"_s, u"`id`"_s, u"a'b"_s, u"ü"_s,
                                                   QString(65, u'a')};
        QTest::newRow("profile") << u"profile"_s
                                 << QStringList{u"High"_s, u"High 4:4:4 Predictive"_s, u"DTS-HD MA"_s,
                                                u"HE-AACv2"_s}
                                 << QStringList{u"High;id"_s, u"$x"_s, u"a\\nb"_s};
        QTest::newRow("any other") << u"codec_long_name"_s << QStringList{u"$(id); x"_s} << QStringList{};
    }

    void fieldsHaveTheFormsThatTheyCanHave()
    {
        QFETCH(QString, key);
        QFETCH(QStringList, good);
        QFETCH(QStringList, bad);
        const auto read = [&](const QString &value) {
            const QString stream = u"{\n\"index\": 0,\n\"%1\": \"%2\"\n}"_s.arg(key, value);
            return media::textIn(media::streamsIn(listOf(stream)).constFirst(), key);
        };
        for (const QString &value : good)
            QCOMPARE(read(value), value);
        for (const QString &value : bad)
            QVERIFY2(read(value).isNull(), qPrintable(value));
    }

    void anObjectIsNoValueOfAField()
    {
        const auto streams = media::streamsIn(
            listOf(u"{\n\"index\": 0,\n\"width\": {\n\"a\": 1\n},\n\"level\": {\n},\n\"other\": {\n}\n}"_s));
        QVERIFY(!streams.constFirst().contains(u"width"_s));
        QVERIFY(!streams.constFirst().contains(u"level"_s));
        QVERIFY(streams.constFirst().contains(u"other"_s));
    }

    void streamsStandInTheirPlaces_data()
    {
        QTest::addColumn<QString>("streams");
        QTest::addColumn<bool>("stand");
        const auto stream = [](const QString &index) {
            return u"{\n\"index\": %1,\n\"codec_type\": \"audio\"\n}\n"_s.arg(index);
        };
        QTest::newRow("none") << u""_s << true;
        QTest::newRow("in order") << stream(u"0"_s) + stream(u"1"_s) << true;
        QTest::newRow("side data is no stream")
            << u"{\n\"index\": 0,\n\"side_data_list\": [\n{\n\"rotation\": -90\n}\n]\n}\n"_s + stream(u"1"_s)
            << true;
        QTest::newRow("no index at all") << u"{\n\"codec_type\": \"audio\"\n}\n"_s + stream(u"1"_s) << true;
        QTest::newRow("another one's") << stream(u"1"_s) << false;
        QTest::newRow("twice") << stream(u"0"_s) + stream(u"0"_s) << false;
        QTest::newRow("no number") << stream(u"\"0;id\""_s) << false;
        QTest::newRow("a number with a sign") << stream(u"\"+0\""_s) << false;
        QTest::newRow("a number with a zero in front") << stream(u"0"_s) + stream(u"01"_s) << false;
        QTest::newRow("an empty one") << stream(u"\"\""_s) << false;
        QTest::newRow("an object") << u"{\n\"index\": {\n}\n}\n"_s << false;
    }

    void streamsStandInTheirPlaces()
    {
        QFETCH(QString, streams);
        QTEST(media::standInTheirPlaces(media::streamsIn(listOf(streams))), "stand");
    }

    void anOpeningBraceInATitleSwallowsLaterTags()
    {
        const QVariantMap tags = tagsWith(u"\"title\": \"a { b\",\n\"language\": \"eng\""_s);
        QCOMPARE(tags.value(u"title"_s).toMap(), QVariantMap({{u"language"_s, u"eng"_s}}));
        QVERIFY(media::textIn(tags, u"language"_s).isNull());
    }

    void aBareBraceOpensAStreamAnywhere()
    {
        const auto streams = media::streamsIn(listOf(u"{\n\"index\": 0\n{\n\"index\": 1\n}\n}"_s));
        QCOMPARE(streams.size(), 2);
    }

    void theFirstOwnValueHoldsAndTheLastOfTags()
    {
        const auto streams = media::streamsIn(listOf(u"{\n\"index\": 0,\n\"index\": 1\n}"_s));
        QCOMPARE(media::textIn(streams.constFirst(), u"index"_s), u"0"_s);
        QCOMPARE(tagsWith(u"\"title\": \"a\",\n\"title\": \"b\""_s).value(u"title"_s), u"b"_s);
    }

    void dropsTwoLinesAtEachEnd()
    {
        QCOMPARE(media::streamsIn(u"{\n{\n\"a\": 1\n]\n}"_s), QList<QVariantMap>());
        QCOMPARE(media::streamsIn(u"{\n\"z\": 1\n{\n\"a\": 1\n\"y\": 1\n\"x\": 1"_s),
                 QList<QVariantMap>({QVariantMap({{u"a"_s, u"1"_s}})}));
    }

    void readsNoStreamsFromNothing_data()
    {
        QTest::addColumn<QString>("output");
        QTest::newRow("absent") << QString();
        QTest::newRow("empty") << u""_s;
        QTest::newRow("one line") << u"{"_s;
        QTest::newRow("three lines") << u"{\n{\n{"_s;
        QTest::newRow("an empty list") << u"{\n    \"streams\": [\n\n    ]\n}"_s;
        QTest::newRow("values before the first stream") << listOf(u"\"a\": 1\n\"tags\": {\n\"b\": 2\n}"_s);
    }

    void readsNoStreamsFromNothing()
    {
        QFETCH(QString, output);
        QCOMPARE(media::streamsIn(output), QList<QVariantMap>());
    }

    void aHundredThousandBracesCostNoStack()
    {
        const QString deep = u"\"a\": \"{\"\n"_s.repeated(100000) + u"\"b\": 1\n"_s;
        const auto streams = media::streamsIn(listOf(u"{\n"_s + deep + u"}\n\"c\": 2"_s));
        QCOMPARE(streams.size(), 1);
        QCOMPARE(media::textIn(streams.constFirst(), u"c"_s), u"2"_s);
        QVariantMap innermost = streams.constFirst();
        int depth = 0;
        for (; innermost.contains(u"a"_s); ++depth)
            innermost = innermost.value(u"a"_s).toMap();
        QCOMPARE(depth, 32);
        QVERIFY(innermost.isEmpty()); // the value behind all the braces is dropped, not moved up
    }

    void readsStreamLines_data()
    {
        QTest::addColumn<QString>("output");
        QTest::addColumn<QStringList>("codecs");
        QTest::newRow("the usual ones") << u"  Stream #0:0: Video: h264 (High), yuv420p, 320x240\n"
                                           "  Stream #0:1(eng): Audio: aac (LC), 48000 Hz, stereo\n"
                                           "  Stream #0:2[0x101](und): Subtitle: subrip (default)"_s
                                        << QStringList({u"h264"_s, u"aac"_s, u"subrip"_s});
        QTest::newRow("a comma at the end stays")
            << u"  Stream #0:1: Audio: ac3, 48000 Hz"_s << QStringList({u"ac3,"_s});
        QTest::newRow("fewer pieces are passed over")
            << u"title : Stream #1\n  Stream #0:0: Video: h264\n  Stream #0:1: Data:\nStream #0:2: Data:x"_s
            << QStringList({u"h264"_s});
        QTest::newRow("an empty word counts") << u"a:b:c: :d"_s << QStringList({u""_s});
        QTest::newRow("nothing") << u""_s << QStringList();
        QTest::newRow("absent") << QString() << QStringList();
    }

    void readsStreamLines()
    {
        QFETCH(QString, output);
        QFETCH(QStringList, codecs);
        QCOMPARE(media::streamLineCodecs(output), codecs);
    }

    void readsTheContainersBitRate_data()
    {
        QTest::addColumn<QString>("output");
        QTest::addColumn<bool>("told");
        QTest::addColumn<qint64>("rate");
        const auto row = [](const char *name, const QString &output, bool told, qint64 rate) {
            QTest::newRow(name) << output << told << rate;
        };
        row("the usual line", u"Input #0\n  Duration: 00:00:08.02, start: 0.000000, bitrate: 2235 kb/s\n"_s,
            true, 2235);
        row("none told", u"  Duration: N/A, bitrate: N/A"_s, true, 0);
        row("no bit rate", u"  Duration: 00:00:08.02, start: 0.000000"_s, false, 0);
        row("two lines", u"  Duration: 1, bitrate: 5 kb/s\n    title : Duration: 2, bitrate: 9"_s, false, 0);
        row("no line", u"bitrate: 7"_s, false, 0);
        row("another case", u"DURATION: 1, bitrate: 5"_s, false, 0);
        row("under a second", u"  Duration: 00:00:00.71, start: 0, bitrate: 12 kb/s"_s, true, 12);
        row("absent", QString(), false, 0);
    }

    void readsTheContainersBitRate()
    {
        QFETCH(QString, output);
        QFETCH(bool, told);
        QFETCH(qint64, rate);
        const auto answer = media::containerBitRate(output);
        QCOMPARE(answer.has_value(), told);
        QCOMPARE(answer.value_or(0), rate);
    }

    void prefersTheTagInLowerCase()
    {
        const auto tagged = [](const QVariantMap &tags) {
            return media::tagIn({{u"tags"_s, tags}}, u"title"_s);
        };
        QCOMPARE(tagged({{u"title"_s, u"a"_s}, {u"TITLE"_s, u"b"_s}}), u"a"_s);
        QCOMPARE(tagged({{u"TITLE"_s, u"b"_s}}), u"b"_s);
        QCOMPARE(tagged({{u"title"_s, u""_s}, {u"TITLE"_s, u"b"_s}}), u"b"_s);
        QCOMPARE(tagged({{u"Title"_s, u"c"_s}}), QString());
        QCOMPARE(media::tagIn({{u"tags"_s, u"no dictionary"_s}}, u"title"_s), QString());
        QCOMPARE(media::tagIn({}, u"title"_s), QString());
    }

    void survivesTheCorpus_data()
    {
        QTest::addColumn<QString>("path");
        const QDir corpus(QStringLiteral(TESSARAY_SOURCE_DIR) + u"/tests/fuzz/corpus/probe"_s);
        for (const QString &name : corpus.entryList(QDir::Files))
            QTest::newRow(qPrintable(name)) << corpus.filePath(name);
    }

    void survivesTheCorpus()
    {
        QFETCH(QString, path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString output = QString::fromUtf8(file.readAll());
        const auto streams = media::streamsIn(output);
        QVERIFY(streams.size() <= output.count(u'{'));
        QCOMPARE(fuzz::ProbeReaderCheck::offenceOf(output, streams), QString());
        for (const QVariantMap &stream : streams) {
            for (const QString &key : stream.keys())
                QVERIFY2(!key.contains(u'"') && !key.contains(u',') && !key.contains(u'\n'), qPrintable(key));
        }
        QVERIFY(media::streamLineCodecs(output).size() <= output.count(u'\n') + 1);
        media::containerBitRate(output);
    }
};

TESSARAY_TEST(ProbeReaderTest)
#include "ProbeReaderTest.moc"
