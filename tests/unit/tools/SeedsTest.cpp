#include "support/Seeds.h"
#include "support/TestMain.h"

#include <QSet>
#include <QTest>

#include <algorithm>
#include <numeric>

class SeedsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qunsetenv("TESSARAY_SOAK");
        m_rows.resize(40);
        std::iota(m_rows.begin(), m_rows.end(), 0);
    }
    void cleanup() { qunsetenv("TESSARAY_SOAK"); }

    void soManyRowsAreDrawnInTheirOrder()
    {
        for (const qsizetype count : {0, 1, 7, 39}) {
            const QList<int> drawn = support::drawn(m_rows, count);
            QCOMPARE(drawn.size(), count);
            QVERIFY(std::is_sorted(drawn.begin(), drawn.end()));
            QCOMPARE(QSet<int>(drawn.begin(), drawn.end()).size(), count);
        }
        QCOMPARE(support::drawn(m_rows, 40), m_rows);
        QCOMPARE(support::drawn(m_rows, 100), m_rows);
    }

    void oneLineDrawsOthersEachTime()
    {
        QSet<int> seen;
        for (int i = 0; i < 400; ++i)
            seen.insert(support::drawn(m_rows, 1).constFirst());
        QCOMPARE(seen.size(), m_rows.size()); // and each row has its turn
    }

    void oneInSoManyIsDrawn()
    {
        int drawn = 0;
        for (int i = 0; i < 1000; ++i)
            drawn += support::isDrawn(5) ? 1 : 0;
        QVERIFY2(drawn > 140 && drawn < 260, qPrintable(QString::number(drawn)));
    }

    void theLongFormTakesAll()
    {
        qputenv("TESSARAY_SOAK", "1");
        QCOMPARE(support::drawn(m_rows, 3), m_rows);
        QVERIFY(support::isDrawn(1000));
        QCOMPARE(support::times(1000, 10), 1000);
        qunsetenv("TESSARAY_SOAK");
        QCOMPARE(support::times(1000, 10), 10);
    }

    void thePartsMakeTheWhole()
    {
        QList<int> all;
        for (const char *part : {"1/3", "2/3", "3/3"}) {
            qputenv("TESSARAY_PART", part);
            const QList<int> rows = support::partOf(m_rows);
            QVERIFY2(rows.size() == 13 || rows.size() == 14, qPrintable(QString::number(rows.size())));
            all += rows;
        }
        qunsetenv("TESSARAY_PART");
        QCOMPARE(support::partOf(m_rows), m_rows);
        std::sort(all.begin(), all.end());
        QCOMPARE(all, m_rows);
    }

private:
    QList<int> m_rows;
};

TESSARAY_TEST(SeedsTest)
#include "SeedsTest.moc"
