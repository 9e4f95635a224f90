// What a second start says to the one that runs, in whatever pieces it comes.
#include "window/HandOverMessage.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using window::HandOverMessage;

namespace {

HandOverMessage readInPieces(const QByteArray &bytes, qsizetype size)
{
    HandOverMessage message;
    for (qsizetype at = 0; at < bytes.size(); at += size)
        message.take(QByteArrayView(bytes).sliced(at, std::min(size, bytes.size() - at)));
    return message;
}

QByteArray number(quint32 value)
{
    QByteArray bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.append(static_cast<char>(value >> shift));
    return bytes;
}

QByteArray path(quint32 letters)
{
    QByteArray bytes = number(2 * letters);
    for (quint32 i = 0; i < letters; ++i)
        bytes.append('\0').append('a');
    return bytes;
}

} // namespace

class HandOverMessageTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pathsArriveInWhateverPiecesTheyCome()
    {
        const QStringList paths{u"/films/it's \"a\" $(x)\n.mkv"_s, u"/films/Élise 映画 🎬.mkv"_s, u""_s,
                                QString(4096, u'x')};
        const QByteArray bytes = window::handOverMessage(paths);
        for (const qsizetype size : {1, 2, 3, 5, 7, 64, 100000}) {
            const auto message = readInPieces(bytes, size);
            QVERIFY(message.isComplete() && !message.isRefused());
            QCOMPARE(message.paths(), paths);
        }
    }

    void noFilesAreAMessageToo()
    {
        const auto message = readInPieces(window::handOverMessage({}), 1);
        QVERIFY(message.isComplete());
        QVERIFY(message.paths().isEmpty());
    }

    void itIsCompleteWithItsLastByteAndNotBefore()
    {
        const QByteArray bytes = number(2) + path(3) + path(1);
        HandOverMessage message;
        for (const char byte : bytes) {
            QVERIFY(!message.isComplete());
            message.take(QByteArrayView(&byte, 1));
        }
        QVERIFY(message.isComplete());
        QCOMPARE(message.paths(), QStringList({u"aaa"_s, u"a"_s}));
    }

    void whatCantBeIsRefused_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("isRefused");
        QTest::newRow("as many files as can be") << number(100000) << false;
        QTest::newRow("one more") << number(100001) << true;
        QTest::newRow("the longest path") << number(1) + path(4096) << false;
        QTest::newRow("a longer one") << number(1) + number(8194) << true;
        QTest::newRow("an odd length") << number(1) + number(7) << true;
        QTest::newRow("no path at all") << number(1) + number(0xffffffff) << false;
        QTest::newRow("nearly no path") << number(1) + number(0xfffffffe) << true;
    }

    void whatCantBeIsRefused()
    {
        QFETCH(QByteArray, bytes);
        QTEST(readInPieces(bytes, 3).isRefused(), "isRefused");
        QVERIFY(!readInPieces(bytes + path(1), 1000).isComplete() || !readInPieces(bytes, 1).isRefused());
    }

    void moreThanAMessageHoldsIsRefused()
    {
        HandOverMessage message;
        message.take(number(100000));
        const QByteArray piece = path(4096);
        qsizetype taken = 4;
        while (!message.isRefused() && taken < 64 * 1024 * 1024) {
            message.take(piece);
            taken += piece.size();
        }
        QVERIFY(message.isRefused());
        QVERIFY(taken > 16 * 1024 * 1024 && taken < 17 * 1024 * 1024);
        QVERIFY(!message.isComplete());
    }
};

TESSARAY_TEST(HandOverMessageTest)
#include "HandOverMessageTest.moc"
