#include "tools/LineCutter.h"

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
};

QTEST_GUILESS_MAIN(LineCutterTest)
#include "LineCutterTest.moc"
