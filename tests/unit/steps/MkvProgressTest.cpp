#include "steps/MkvProgress.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

class MkvProgressTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void chunks_data()
    {
        QTest::addColumn<QByteArray>("chunk");
        QTest::addColumn<QString>("number");
        QTest::newRow("whole") << QByteArray("Progress: 45%\r") << u"45"_s;
        QTest::newRow("not ended") << QByteArray("Progress: 45%") << u"45"_s;
        QTest::newRow("several") << QByteArray("Progress: 1%\rProgress: 7%\rProgress: 100%\r") << u"100"_s;
        QTest::newRow("then more") << QByteArray("Progress: 100%\r\nThe cue entries are being written...\n")
                                   << u"100"_s;
        QTest::newRow("none") << QByteArray("mkvmerge v74.0.0\n") << QString();
        QTest::newRow("no percent") << QByteArray("Progress: 45\r") << QString();
        QTest::newRow("a title") << QByteArray("'/v/film: 12 men.mkv': Using the demultiplexer\n")
                                 << QString();
        QTest::newRow("nothing") << QByteArray() << QString();
    }

    void chunks()
    {
        QFETCH(QByteArray, chunk);
        QTEST(steps::MkvProgressReader().feed(chunk), "number");
    }

    void aSplitValueCountsWhenItIsWhole()
    {
        steps::MkvProgressReader reader;
        QVERIFY(reader.feed("Progr").isNull());
        QVERIFY(reader.feed("ess: 4").isNull());
        QCOMPARE(reader.feed("5%"), u"45"_s);
        QCOMPARE(reader.feed("\rProgress: 46%\r"), u"46"_s);
    }
};

TESSARAY_TEST(MkvProgressTest)
#include "MkvProgressTest.moc"
