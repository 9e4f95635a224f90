// A folder has one watcher.
#include "prefs/WatchedFolder.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using prefs::WatchedFolder;

class WatchedFolderTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whichFoldersAreWatchedWithOne_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::addColumn<bool>("isFree");
        QTest::newRow("itself") << u"a"_s << u"a"_s << false;
        QTest::newRow("one inside") << u"a"_s << u"a/b/c"_s << false;
        QTest::newRow("one around") << u"a/b/c"_s << u"a"_s << false;
        QTest::newRow("one beside") << u"a"_s << u"ab"_s << true;
    }

    void whichFoldersAreWatchedWithOne()
    {
        QFETCH(QString, first);
        QFETCH(QString, second);
        QFETCH(bool, isFree);
        const support::Scratch scratch;
        QVERIFY(QDir().mkpath(scratch.path(u"a/b/c"_s)) && QDir().mkpath(scratch.path(u"ab"_s)));
        WatchedFolder one;
        QCOMPARE(one.take(scratch.path(first)), QString());
        WatchedFolder two;
        const QString refusal = two.take(scratch.path(second));
        QCOMPARE(refusal.isNull(), isFree);
        if (isFree)
            return;
        QVERIFY2(refusal.contains(scratch.path(first) + u' '), qPrintable(refusal));
        QVERIFY2(refusal.contains(u"process %1 on"_s.arg(QCoreApplication::applicationPid())),
                 qPrintable(refusal));
        one.release();
        QCOMPARE(two.take(scratch.path(second)), QString());
    }

    void aFolderThatIsReplacedAndBackStaysOurs()
    {
        const support::Scratch scratch;
        QVERIFY(QDir().mkpath(scratch.path(u"w"_s)));
        WatchedFolder one;
        QCOMPARE(one.take(scratch.path(u"w"_s)), QString());
        QVERIFY(QDir().rename(scratch.path(u"w"_s), scratch.path(u"aside"_s)));
        QVERIFY(QDir().mkpath(scratch.path(u"w"_s)));
        QCOMPARE(one.take(scratch.path(u"w"_s)), QString());
        WatchedFolder two;
        QVERIFY(!two.take(scratch.path(u"w"_s)).isNull());
        QVERIFY(QDir().rename(scratch.path(u"w"_s), scratch.path(u"other"_s)));
        QVERIFY(QDir().rename(scratch.path(u"aside"_s), scratch.path(u"w"_s)));
        QVERIFY(!two.take(scratch.path(u"w"_s)).isNull());
        QCOMPARE(one.take(scratch.path(u"w"_s)), QString());
        one.release();
        QCOMPARE(two.take(scratch.path(u"w"_s)), QString());
    }

    void oneThatIsGoneKeepsNobodyOut()
    {
        const support::Scratch scratch;
        const QString file = scratch.path(WatchedFolder::fileName());
        {
            WatchedFolder one;
            QCOMPARE(one.take(scratch.path()), QString());
            QVERIFY(QFile::copy(file, scratch.path(u"kept"_s)));
        }
        QByteArray lines = scratch.read(u"kept"_s);
        lines.replace(0, lines.indexOf('\n'), "999999999"); // no such process
        scratch.write(WatchedFolder::fileName(), lines);
        WatchedFolder next;
        QCOMPARE(next.take(scratch.path()), QString());
    }

    void oneOfAnotherMachineKeepsOthersOut()
    {
        const support::Scratch scratch;
        scratch.write(WatchedFolder::fileName(), "12\n34\nattic\nmachine\nboot\nword\n");
        WatchedFolder here;
        const QString refusal = here.take(scratch.path());
        QVERIFY2(refusal.contains(u"process 12 on attic"_s), qPrintable(refusal));
    }
};

TESSARAY_TEST(WatchedFolderTest)
#include "WatchedFolderTest.moc"
