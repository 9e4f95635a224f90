#include "media/MatroskaPackets.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QByteArray header = QByteArray::fromHex("1a45dfa3820000");
const QByteArray segmentOfUnknownSize = QByteArray::fromHex("1853806701ffffffffffffff");
const QByteArray info = QByteArray::fromHex("1549a966830a0b0c");
const QByteArray emptyVoid = QByteArray::fromHex("ec4003000000");
const QByteArray cluster = QByteArray::fromHex("1f43b67583a30102");

} // namespace

class MatroskaPacketsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyHeadersAreTold_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("isEmpty");
        const QByteArray begin = header + segmentOfUnknownSize;
        QTest::newRow("headers") << begin + info + emptyVoid << true;
        QTest::newRow("nothing in the segment") << begin << true;
        QTest::newRow("a segment with a size") << header + QByteArray::fromHex("1853806788") + info << true;
        QTest::newRow("packets") << begin + info + emptyVoid + cluster << false;
        QTest::newRow("packets of unknown length")
            << begin + info + QByteArray::fromHex("1f43b675ffa30102") << false;
        QTest::newRow("an element of unknown length") << begin + QByteArray::fromHex("1549a966ff00") << false;
        QTest::newRow("cut in an element's id") << begin + info + QByteArray::fromHex("1f43") << false;
        QTest::newRow("an element of a wild length")
            << begin + QByteArray::fromHex("1549a96601fffffffffffffe") << false;
        QTest::newRow("no Matroska") << QByteArray("1\n00:00:01,000 --> 00:00:02,000\nHello\n") << false;
        QTest::newRow("a header alone") << header << false;
        QTest::newRow("nothing") << QByteArray() << false;
    }

    void onlyHeadersAreTold()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, isEmpty);
        const support::Scratch scratch;
        scratch.write(u"a.mkv"_s, content);
        QCOMPARE(media::isMatroskaWithoutPackets(scratch.url(u"a.mkv"_s)), isEmpty);
    }

    void tracksThatAreCountedEmptyAreTold_data()
    {
        QTest::addColumn<QByteArray>("type"); // of the track with the uid 7
        QTest::addColumn<QByteArray>("target");
        QTest::addColumn<QByteArray>("count");
        QTest::addColumn<QStringList>("kinds");
        const QByteArray video("\x01");
        const QByteArray audio("\x02");
        const QByteArray seven("\x07");
        QTest::newRow("video") << video << seven << QByteArray("0") << QStringList{u"video"_s};
        QTest::newRow("audio") << audio << seven << QByteArray("0") << QStringList{u"audio"_s};
        QTest::newRow("a subtitle") << QByteArray("\x11") << seven << QByteArray("0") << QStringList();
        QTest::newRow("one packet") << audio << seven << QByteArray("1") << QStringList();
        QTest::newRow("ten") << audio << seven << QByteArray("10") << QStringList();
        QTest::newRow("of another track") << audio << QByteArray("\x08") << QByteArray("0") << QStringList();
    }

    void tracksThatAreCountedEmptyAreTold()
    {
        QFETCH(QByteArray, type);
        QFETCH(QByteArray, target);
        QFETCH(QByteArray, count);
        const auto element = [](const char *id, const QByteArray &content) {
            return QByteArray::fromHex(id) + char(0x80 | content.size()) + content;
        };
        const QByteArray tracks =
            element("1654ae6b", element("ae", element("73c5", QByteArray("\x07")) + element("83", type)));
        const QByteArray counted =
            element("67c8", element("45a3", "NUMBER_OF_FRAMES") + element("4487", count));
        const QByteArray tags =
            element("1254c367", element("7373", element("63c0", element("63c5", target)) + counted));
        const support::Scratch scratch;
        scratch.write(u"a.mkv"_s, header + segmentOfUnknownSize + info + tracks + cluster + tags);
        QTEST(media::kindsCountedEmpty(scratch.url(u"a.mkv"_s)), "kinds");
    }

    void aMissingFileIsNotTold()
    {
        QVERIFY(!media::isMatroskaWithoutPackets(QUrl::fromLocalFile(u"/nowhere/a.mkv"_s)));
    }
};

TESSARAY_TEST(MatroskaPacketsTest)
#include "MatroskaPacketsTest.moc"
