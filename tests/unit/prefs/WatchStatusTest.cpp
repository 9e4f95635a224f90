// How a watched folder is doing, told from outside.
#include "prefs/WatchStatus.h"

#include "prefs/WatchJournal.h"
#include "prefs/WatchedFolder.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QCoreApplication>
#include <QTest>

using namespace Qt::StringLiterals;
using Why = prefs::WatchJournal::Why;

class WatchStatusTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFolderThatWasNeverWatchedIsLeftAsItIs()
    {
        const support::Scratch scratch;
        const prefs::WatchStatus status = prefs::watchStatusOf(scratch.path(), scratch.path(u"data"_s));
        QVERIFY(!status.isWatched());
        QVERIFY2(status.sentence().endsWith(u": not watched; 0 waiting, 0 refused, 0 known, 0 outputs."_s),
                 qPrintable(status.sentence()));
        QVERIFY(scratch.names().isEmpty());
    }

    void filmsThatAreThereAreCounted()
    {
        const support::Scratch scratch;
        prefs::WatchJournal journal;
        journal.open(scratch.path(), {});
        const auto note = [&](Why why, const QStringList &names) {
            for (const QString &name : names)
                journal.note(why, {{scratch.write(name, "x"), 1, 1, 0}});
        };
        note(Why::Waiting, {u"a"_s, u"b"_s, u"c"_s});
        note(Why::Known, {u"c"_s, u"d"_s}); // the last word counts
        note(Why::Refused, {u"e"_s});
        note(Why::Output, {u"f"_s, u"g"_s, u"h"_s, u"i"_s});
        journal.note(Why::Waiting, {{scratch.path(u"gone"_s), 1, 1, 0}});
        prefs::WatchedFolder watcher;
        QVERIFY(watcher.take(scratch.path()).isNull());
        const prefs::WatchStatus status = prefs::watchStatusOf(scratch.path(), {});
        QVERIFY2(status.sentence().startsWith(u"%1: watched by process %2 on "_s.arg(
                     status.folder, QString::number(QCoreApplication::applicationPid()))),
                 qPrintable(status.sentence()));
        QVERIFY2(status.sentence().endsWith(u"; 2 waiting, 1 refused, 2 known, 4 outputs."_s),
                 qPrintable(status.sentence()));
        watcher.release();
        QVERIFY(!prefs::watchStatusOf(scratch.path(), {}).isWatched());
    }
};

TESSARAY_TEST(WatchStatusTest)
#include "WatchStatusTest.moc"
