#include "app/WatchLog.h"
#include "support/TestMain.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using app::WatchLog;

class WatchLogTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachKindHasItsWord()
    {
        QCOMPARE(WatchLog::wordOf(WatchLog::Kind::Note), u"note"_s);
        QCOMPARE(WatchLog::wordOf(WatchLog::Kind::Waiting), u"waiting"_s);
        QCOMPARE(WatchLog::wordOf(WatchLog::Kind::Started), u"started"_s);
        QCOMPARE(WatchLog::wordOf(WatchLog::Kind::Done), u"done"_s);
        QCOMPARE(WatchLog::wordOf(WatchLog::Kind::Failed), u"failed"_s);
    }

    void aLineHasTimeWordAndTextInColumns()
    {
        const QDateTime time(QDate(2026, 11, 21), QTime(13, 5, 9));
        QCOMPARE(WatchLog::formatted({time, WatchLog::Kind::Done, u"film.mkv"_s}),
                 u"2026-11-21 13:05:09  done     film.mkv"_s);
        QCOMPARE(WatchLog::formatted({time, WatchLog::Kind::Waiting, u"%1 %2"_s}),
                 u"2026-11-21 13:05:09  waiting  %1 %2"_s);
    }

    void linesAreKeptInOrderWithTheirTimes()
    {
        WatchLog log;
        QStringList told;
        connect(&log, &WatchLog::added, this,
                [&told](const WatchLog::Line &line) { told.append(line.text); });
        const QDateTime before = QDateTime::currentDateTime();
        log.add(WatchLog::Kind::Note, u"one"_s);
        log.add(WatchLog::Kind::Failed, u"two"_s);
        QCOMPARE(log.lines().size(), 2);
        QCOMPARE(log.lines().constFirst().text, u"one"_s);
        QVERIFY(log.lines().constLast().kind == WatchLog::Kind::Failed);
        QVERIFY(log.lines().constFirst().time >= before);
        QVERIFY(log.lines().constFirst().time <= QDateTime::currentDateTime());
        QCOMPARE(told, QStringList({u"one"_s, u"two"_s}));
    }

    void namesAreKeptAsTheyAre()
    {
        WatchLog log;
        log.add(WatchLog::Kind::Note, u"a\nb\r\nc"_s);
        QCOMPARE(log.lines().constFirst().text,
                 u"a\nb\r\nc"_s); // the code that shows them makes them visible
    }

    void aLongLogLosesItsOldestLines()
    {
        WatchLog log;
        QSignalSpy shortened(&log, &WatchLog::shortened);
        for (int i = 0; i < WatchLog::mostLines; ++i)
            log.add(WatchLog::Kind::Note, QString::number(i));
        QVERIFY(shortened.isEmpty());
        QCOMPARE(log.lines().size(), 10000);
        int lastTold = -1;
        connect(&log, &WatchLog::added, this,
                [&lastTold](const WatchLog::Line &line) { lastTold = line.text.toInt(); });
        log.add(WatchLog::Kind::Note, u"10000"_s);
        QCOMPARE(shortened.size(), 1);
        QCOMPARE(shortened.constFirst().constFirst().toInt(), 1000);
        QCOMPARE(log.lines().size(), 9001);
        QCOMPARE(log.lines().constFirst().text, u"1000"_s);
        QCOMPARE(log.lines().constLast().text, u"10000"_s);
        QCOMPARE(lastTold, 10000);
    }
};

TESSARAY_TEST(WatchLogTest)
#include "WatchLogTest.moc"
