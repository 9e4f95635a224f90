#include "tools/LineCutter.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

class LineCutterTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cutsAtCarriageReturnsAndLineFeeds()
    {
        tools::LineCutter cutter;
        QCOMPARE(cutter.feed("one\rtwo\nthree\r\nfo"), QStringList({u"one"_s, u"two"_s, u"three"_s}));
        QCOMPARE(cutter.rest(), u"fo"_s);
        QCOMPARE(cutter.feed("ur\n"), QStringList({u"four"_s}));
        QVERIFY(cutter.rest().isEmpty());
    }

    void decodesAcrossChunkBorders()
    {
        tools::LineCutter cutter;
        const QByteArray bytes = u"Füße 🎬\n"_s.toUtf8();
        QStringList lines;
        for (const char byte : bytes)
            lines += cutter.feed(QByteArray(1, byte));
        QCOMPARE(lines, QStringList({u"Füße 🎬"_s}));
    }

    void emptyLinesAreLeftOut()
    {
        tools::LineCutter cutter;
        QCOMPARE(cutter.feed("\r\n\n\rone\n\n"), QStringList({u"one"_s}));
        QVERIFY(cutter.feed({}).isEmpty());
        QCOMPARE(cutter.feed(" \n"), QStringList({u" "_s})); // a blank is something
    }

    void onlyCarriageReturnsAndLineFeedsCut()
    {
        tools::LineCutter cutter;
        const QString line = u"a\u2028b\u0085c\x0b\x0c d\te"_s;
        QCOMPARE(cutter.feed((line + u'\n').toUtf8()), QStringList({line}));
    }

    void brokenBytesSpoilTheirLineOnly()
    {
        tools::LineCutter cutter;
        QCOMPARE(cutter.feed("caf\xe9\nnext\n"), QStringList({u"caf\ufffd"_s, u"next"_s}));
    }

    void brokenBytesAtAChunkBorderCostNoLineEnd()
    {
        tools::LineCutter cutter;
        QVERIFY(cutter.feed("caf\xc3").isEmpty());
        QCOMPARE(cutter.rest(), u"caf"_s);
        QCOMPARE(cutter.feed("\nError: it failed\n"), QStringList({u"caf\ufffd"_s, u"Error: it failed"_s}));
    }

    void clearingForgetsHalfALineAndHalfALetter()
    {
        tools::LineCutter cutter;
        cutter.feed("half \xc3");
        cutter.clear();
        QVERIFY(cutter.rest().isEmpty());
        QCOMPARE(cutter.feed("new\n"), QStringList({u"new"_s}));
    }

    void ofAnEndlessLineTheEndIsKept()
    {
        tools::LineCutter cutter;
        for (int i = 0; i < 40; ++i)
            QVERIFY(cutter.feed(QByteArray(4096, 'x')).isEmpty());
        cutter.feed("end");
        QCOMPARE(cutter.rest().size(), 65536);
        QVERIFY(cutter.rest().endsWith(u"xend"_s));
        QCOMPARE(cutter.feed("\nnext\n").last(), u"next"_s);
    }
};

TESSARAY_TEST(LineCutterTest)
#include "LineCutterTest.moc"
