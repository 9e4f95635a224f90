#include "media/DeclaredBytes.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QByteArray box(const char *kind, const QByteArray &content)
{
    const auto size = static_cast<char>(content.size() + 8);
    return QByteArray(3, '\0') + size + kind + content;
}

/// A RIFF chunk tells its length without the eight bytes in front of it.
QByteArray riff(const QByteArray &content)
{
    return "RIFF" + QByteArray(1, static_cast<char>(content.size())) + QByteArray(3, '\0') + content;
}

/// The header object with the object of the file's properties, which tells the file's size.
QByteArray asf(char size, char flags)
{
    const QByteArray header = QByteArray::fromHex("3026b2758e66cf11a6d900aa0062ce6c") + QByteArray(14, 'h');
    return header + QByteArray::fromHex("a1dcab8c47a9cf118ee400c00c205365") + QByteArray(24, 'p') + size +
           QByteArray(7, '\0') + QByteArray(40, 'q') + flags + QByteArray(15, 'r');
}

} // namespace

class DeclaredBytesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lengthsAreRead_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("bytes"); // -1: not told
        const QByteArray ebml = QByteArray::fromHex("1a45dfa3820000");
        QTest::newRow("Matroska, 4 bytes of segment")
            << ebml + QByteArray::fromHex("18538067840a0b0c0d") << 16;
        QTest::newRow("cut") << ebml + QByteArray::fromHex("185380678f0a0b") << 27;
        QTest::newRow("a long size") << ebml + QByteArray::fromHex("1853806701000000000000040a0b0c0d") << 23;
        QTest::newRow("a size that is not known")
            << ebml + QByteArray::fromHex("1853806701ffffffffffffff0a") << -1;
        QTest::newRow("no segment") << ebml + QByteArray::fromHex("ec8200000000") << -1;
        QTest::newRow("cut in the header") << QByteArray::fromHex("1a45dfa382") << -1;
        const QByteArray head = box("ftyp", "isom0000");
        QTest::newRow("MP4") << head + box("mdat", "1234") << 28;
        QTest::newRow("MP4, cut") << head + box("mdat", "1234").chopped(2) << 28;
        QTest::newRow("MP4, cut in a box's head") << head + box("mdat", "1234").first(6) << 16;
        QTest::newRow("MP4, to the end of the file") << head + QByteArray(4, '\0') + "mdat12" << -1;
        QTest::newRow("MP4, a long box") << head + QByteArray::fromHex("00000001") + "mdat" +
                                                QByteArray::fromHex("0000000000000014") + "12"
                                         << 36;
        QTest::newRow("AVI") << riff("AVI 1234") << 16;
        QTest::newRow("AVI, cut") << riff("AVI 1234").chopped(3) << 16;
        QTest::newRow("AVI in two") << riff("AVI 1234") + riff("AVIX56").chopped(1) << 30;
        QTest::newRow("AVI, never finished") << "RIFF" + QByteArray(4, '\0') + "AVI " << -1;
        QTest::newRow("ASF") << asf(77, 2) << 77;
        QTest::newRow("ASF as it is sent") << asf(77, 1) << -1;
        const QByteArray metadata = "FLV\x01\x05" + QByteArray(30, 'm');
        QTest::newRow("FLV") << metadata + "filesize" + QByteArray::fromHex("004059000000000000") + "d"
                             << 100;
        QTest::newRow("FLV, not told") << metadata << -1;
        QTest::newRow("FLV, not finished") << metadata + "filesize" + QByteArray(9, '\0') << -1;
        QTest::newRow("a transport stream") << QByteArray(376, 'G') << -1;
        QTest::newRow("nothing") << QByteArray() << -1;
    }

    void lengthsAreRead()
    {
        QFETCH(QByteArray, content);
        QFETCH(int, bytes);
        const support::Scratch scratch;
        scratch.write(u"a"_s, content);
        const auto declared = media::declaredBytesOf(scratch.url(u"a"_s));
        QCOMPARE(static_cast<int>(declared.value_or(-1)), bytes);
    }

    void secondsAreRead_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<double>("seconds"); // 0: not told
        const QByteArray begin = QByteArray::fromHex("1a45dfa382000018538067ff");
        const QByteArray known = QByteArray::fromHex("1a45dfa3820000185380670100000000000100");
        const QByteArray millisecond = QByteArray::fromHex("2ad7b1830f4240");
        const QByteArray thousand = QByteArray::fromHex("4489844479f000");      // 999.75 as a float
        const QByteArray large = QByteArray::fromHex("448988409f3f0000000000"); // 1999.75
        const auto information = [](const QByteArray &content) {
            return QByteArray::fromHex("ec820000") + QByteArray::fromHex("1549a966") +
                   char(0x80 | content.size()) + content;
        };
        QTest::newRow("milliseconds") << known + information(millisecond + thousand) << 0.99975;
        QTest::newRow("without a unit") << known + information(thousand) << 0.99975;
        QTest::newRow("another unit")
            << known + information(QByteArray::fromHex("2ad7b1820400") + large) << 1999.75 * 1024 / 1e9;
        QTest::newRow("no length") << known + information(millisecond) << 0.0;
        QTest::newRow("sent into a pipe") << begin + information(millisecond + thousand) << 0.0;
        QTest::newRow("cut") << (known + information(millisecond + thousand)).chopped(3) << 0.0;
        const QByteArray length = QByteArray::fromHex("000003e80000ea60"); // 60000 thousandths
        const QByteArray head = box("mvhd", QByteArray(12, '\0') + length + QByteArray(8, 'r'));
        const QByteArray longHead =
            box("mvhd", '\1' + QByteArray(19, '\0') + QByteArray::fromHex("000003e8000000000000ea60"));
        const QByteArray ftyp = box("ftyp", "isom0000");
        QTest::newRow("MP4") << ftyp + box("moov", head) + box("mdat", "1") << 60.0;
        QTest::newRow("MP4, the index behind") << ftyp + box("mdat", "1") + box("moov", head) << 60.0;
        QTest::newRow("MP4, long numbers") << ftyp + box("moov", longHead) << 60.0;
        QTest::newRow("MP4, no index") << ftyp + box("mdat", "1") << 0.0;
        QTest::newRow("MP4, an index that is cut") << (ftyp + box("moov", head)).chopped(20) << 0.0;
        QTest::newRow("AVI") << riff("AVI 1234") << 0.0;
        QTest::newRow("nothing") << QByteArray() << 0.0;
    }

    void secondsAreRead()
    {
        QFETCH(QByteArray, content);
        QFETCH(double, seconds);
        const support::Scratch scratch;
        scratch.write(u"a"_s, content);
        const auto told = media::toldSecondsOf(scratch.url(u"a"_s));
        QCOMPARE(told.has_value(), seconds > 0);
        QCOMPARE(told.value_or(0), seconds);
    }

    void aMissingFileTellsNothing()
    {
        QVERIFY(!media::declaredBytesOf(QUrl::fromLocalFile(u"/nowhere/a.mkv"_s)));
    }
};

TESSARAY_TEST(DeclaredBytesTest)
#include "DeclaredBytesTest.moc"
