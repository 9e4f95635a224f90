#include "prefs/WatchedFiles.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using prefs::WatchedFiles;
using State = prefs::WatchListing::State;

class WatchedFilesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theKnownFilesAreReplacedAndAppendedTo()
    {
        WatchedFiles files;
        files.setBase({u"/w/a.mkv"_s, u"/w/b.mkv"_s});
        files.appendToBase(u"/w/c.mkv"_s);
        QCOMPARE(files.base(), QStringList({u"/w/a.mkv"_s, u"/w/b.mkv"_s, u"/w/c.mkv"_s}));
        QVERIFY(files.isInBase(u"/w/c.mkv"_s));
        files.setBase({u"/w/b.mkv"_s});
        QVERIFY(!files.isInBase(u"/w/c.mkv"_s));
        QVERIFY(files.isInBase(u"/w/b.mkv"_s));
    }

    void growingFilesKeepTheirOrder()
    {
        WatchedFiles files;
        files.growing() = {{u"/w/b.mkv"_s, u"1"_s}, {u"/w/a.mkv"_s, u"2"_s}};
        QCOMPARE(files.growingPaths(), QSet<QString>({u"/w/a.mkv"_s, u"/w/b.mkv"_s}));
        QCOMPARE(files.growing().constFirst().path, u"/w/b.mkv"_s);
    }

    void anAnnouncedOutputStaysAnnouncedWhateverIsKnown()
    {
        WatchedFiles files;
        files.announce(u"/nowhere/out.m4v"_s); // a folder that is not there is taken by its name
        files.setBase({});
        QVERIFY(files.isAnnounced(u"/nowhere/out.m4v"_s));
        QVERIFY(!files.isAnnounced(u"/nowhere/in.m4v"_s));
        QVERIFY(!files.isInBase(u"/nowhere/out.m4v"_s));
    }

    void outputsAreComparedWithoutLinks()
    {
        const support::Scratch scratch;
        QDir().mkpath(scratch.path(u"real/sub"_s));
        QVERIFY(QFile::link(scratch.path(u"real"_s), scratch.path(u"link"_s)));
        WatchedFiles files;
        files.announce(scratch.path(u"link/sub/../out.m4v"_s)); // not yet written
        files.announce(scratch.path(u"link//sub/b.m4v"_s));
        const QString real = QFileInfo(scratch.path(u"real"_s)).canonicalFilePath();
        QVERIFY(files.isAnnounced(real + u"/out.m4v"_s));
        QVERIFY(files.isAnnounced(real + u"/sub/b.m4v"_s));
    }

    void aFileInTheRootIsFound()
    {
        WatchedFiles files;
        files.announce(u"/out.m4v"_s);
        QVERIFY(files.isAnnounced(u"/out.m4v"_s));
    }

    void partsOfASplitAreAnnouncedWithIt_data()
    {
        QTest::addColumn<QString>("announced");
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("isOurs");
        const QString split = u"/nowhere/a.mkv.split.mkv"_s;
        QTest::newRow("the first part") << split << u"/nowhere/a.mkv.split-001.mkv"_s << true;
        QTest::newRow("part thousand") << split << u"/nowhere/a.mkv.split-1000.mkv"_s << true;
        QTest::newRow("the second free name")
            << u"/nowhere/a.mkv.split-1.mkv"_s << u"/nowhere/a.mkv.split-1-002.mkv"_s << true;
        QTest::newRow("a name with a line feed")
            << u"/nowhere/a\nb.mkv.split.mkv"_s << u"/nowhere/a\nb.mkv.split-001.mkv"_s << true;
        QTest::newRow("another film's part") << split << u"/nowhere/b.mkv.split-001.mkv"_s << false;
        QTest::newRow("another folder's part") << split << u"/else/a.mkv.split-001.mkv"_s << false;
        QTest::newRow("no number") << split << u"/nowhere/a.mkv.split-new.mkv"_s << false;
        QTest::newRow("another extension") << split << u"/nowhere/a.mkv.split-001.mp4"_s << false;
        QTest::newRow("an output that is no split")
            << u"/nowhere/a.mkv"_s << u"/nowhere/a-001.mkv"_s << false;
    }

    void partsOfASplitAreAnnouncedWithIt()
    {
        QFETCH(QString, announced);
        QFETCH(QString, path);
        QFETCH(bool, isOurs);
        WatchedFiles files;
        files.announce(announced);
        QCOMPARE(files.isAnnounced(path), isOurs);
    }

    void afterTheFifthRefusalTheFileIsGivenUp()
    {
        QCOMPARE(WatchedFiles::mostAttempts, 5);
        WatchedFiles files;
        for (int attempt = 1; attempt <= 5; ++attempt) {
            QVERIFY(!files.isGivenUp(u"/w/a.mkv"_s, {99, 0, 7}));
            QCOMPARE(files.refused(u"/w/a.mkv"_s, {attempt, 0, 7}), attempt);
        }
        QVERIFY(files.isGivenUp(u"/w/a.mkv"_s, {99, 0, 7}));
        QVERIFY(!files.isGivenUp(u"/w/a.mkv"_s, {99, 0, 8})); // another file of that name
        QCOMPARE(files.refused(u"/w/a.mkv"_s, {5, 0, 8}), 1);
        QCOMPARE(files.refused(u"/w/b.mkv"_s, {5, 0, 7}), 1); // each has attempts of its own
    }
};

TESSARAY_TEST(WatchedFilesTest)
#include "WatchedFilesTest.moc"
