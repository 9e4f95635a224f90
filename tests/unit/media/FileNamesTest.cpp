#include "media/FileNames.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

class FileNamesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cutsAPath_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QString>("folder");
        QTest::newRow("plain") << u"/films/a.mkv"_s << u"a.mkv"_s << u"mkv"_s << u"/films/"_s;
        QTest::newRow("capitals") << u"/films/A.B.MKV"_s << u"A.B.MKV"_s << u"MKV"_s << u"/films/"_s;
        QTest::newRow("no extension") << u"/films/film"_s << u"film"_s << u""_s << u"/"_s;
        QTest::newRow("at the top") << u"/a.mkv"_s << u"a.mkv"_s << u"mkv"_s << u"/"_s;
        QTest::newRow("hash and percent") << u"/f/a#1 50%.mkv"_s << u"a#1 50%.mkv"_s << u"mkv"_s << u"/f/"_s;
        // The first place where the name stands counts, even inside a folder's name.
        QTest::newRow("the folder holds the name") << u"/a.mkv/b/a.mkv"_s << u"a.mkv"_s << u"mkv"_s << u"/"_s;
    }

    void cutsAPath()
    {
        QFETCH(QString, path);
        QFETCH(QString, name);
        QFETCH(QString, extension);
        QFETCH(QString, folder);
        const media::FileNames names = media::fileNamesOf(QUrl::fromLocalFile(path));
        QCOMPARE(names.path, path);
        QCOMPARE(names.name, name);
        QCOMPARE(names.extension, extension);
        QCOMPARE(names.folder, folder);
    }

    void knowsPlainFiles()
    {
        m_scratch.write(u"film.mkv"_s, "x");
        QFile::link(m_scratch.path(u"film.mkv"_s), m_scratch.path(u"link.mkv"_s));
        QCOMPARE(::mkfifo(qPrintable(m_scratch.path(u"pipe.mkv"_s)), 0600), 0);
        QVERIFY(media::isRegularFile(m_scratch.url(u"film.mkv"_s)));
        QVERIFY(media::isRegularFile(m_scratch.url(u"link.mkv"_s)));
        QVERIFY(!media::isRegularFile(m_scratch.url(u"pipe.mkv"_s)));
        QVERIFY(!media::isRegularFile(m_scratch.url(u"gone.mkv"_s)));
        QVERIFY(!media::isRegularFile(QUrl::fromLocalFile(m_scratch.path())));
        QVERIFY(!media::isRegularFile(QUrl::fromLocalFile(u"/dev/zero"_s)));
        QVERIFY(!media::isRegularFile(QUrl(u"http://localhost/film.mkv"_s)));
        QVERIFY(!media::isRegularFile(QUrl()));
    }

    void writesTheErrorFileBesideTheFilm()
    {
        m_scratch.write(u"bad.mkv"_s, "x");
        media::writeErrorFile(m_scratch.url(u"bad.mkv"_s), u"Füße\n"_s);
        QCOMPARE(m_scratch.read(u"bad.mkv.error.txt"_s), u"Füße\n"_s.toUtf8());
        media::writeErrorFile(m_scratch.url(u"bad.mkv"_s), u"new"_s);
        QCOMPARE(m_scratch.read(u"bad.mkv.error.txt"_s), "new");
    }

    void writesNothingOfAnAbsentText()
    {
        m_scratch.write(u"mute.mkv"_s, "x");
        media::writeErrorFile(m_scratch.url(u"mute.mkv"_s), {});
        QVERIFY(!QFile::exists(m_scratch.path(u"mute.mkv.error.txt"_s)));
    }

    void writesNothingBesideWhatIsNoFile()
    {
        QDir().mkpath(m_scratch.path(u"folder"_s));
        media::writeErrorFile(m_scratch.url(u"folder"_s), u"text"_s);
        media::writeErrorFile(m_scratch.url(u"vanished.mkv"_s), u"text"_s);
        QVERIFY(!QFile::exists(m_scratch.path(u"folder.error.txt"_s)));
        QVERIFY(!QFile::exists(m_scratch.path(u"vanished.mkv.error.txt"_s)));
    }

    void leavesALinkOfThatNameAlone()
    {
        const QString precious = m_scratch.write(u"precious.txt"_s, "mine");
        const QString film = m_scratch.write(u"linked.mkv"_s, "x");
        QFile::link(precious, film + u".error.txt"_s);
        media::writeErrorFile(QUrl::fromLocalFile(film), u"text"_s);
        QCOMPARE(m_scratch.read(u"precious.txt"_s), "mine");
        QVERIFY(QFileInfo(film + u".error.txt"_s).isSymLink());
    }

    void leavesADanglingLinkAlone()
    {
        const QString film = m_scratch.write(u"dangling.mkv"_s, "x");
        QFile::link(m_scratch.path(u"nowhere"_s), film + u".error.txt"_s);
        media::writeErrorFile(QUrl::fromLocalFile(film), u"text"_s);
        QVERIFY(!QFile::exists(m_scratch.path(u"nowhere"_s)));
        QVERIFY(QFileInfo(film + u".error.txt"_s).isSymLink());
    }

    void leavesTheFilmsOwnOtherNameAlone()
    {
        const QString film = m_scratch.write(u"cli.mkv"_s, "film");
        QCOMPARE(::link(qPrintable(film), qPrintable(film + u".error.txt"_s)), 0);
        media::writeErrorFile(QUrl::fromLocalFile(film), u"text"_s);
        QCOMPARE(m_scratch.read(u"cli.mkv"_s), "film");
        QCOMPARE(m_scratch.read(u"cli.mkv.error.txt"_s), "film");
    }

    void leavesAPipeOrFolderOfThatNameAlone()
    {
        const QString film = m_scratch.write(u"piped.mkv"_s, "x");
        QCOMPARE(::mkfifo(qPrintable(film + u".error.txt"_s), 0600), 0);
        media::writeErrorFile(QUrl::fromLocalFile(film), u"text"_s);
        QVERIFY(!QFileInfo(film + u".error.txt"_s).isFile());
        const QString other = m_scratch.write(u"foldered.mkv"_s, "x");
        QDir().mkpath(other + u".error.txt"_s);
        media::writeErrorFile(QUrl::fromLocalFile(other), u"text"_s);
        QVERIFY(QFileInfo(other + u".error.txt"_s).isDir());
    }

    void ignoresANameThatGetsTooLong()
    {
        const QString film = m_scratch.write(QString(250, u'x'), "film");
        media::writeErrorFile(QUrl::fromLocalFile(film), u"text"_s);
        QCOMPARE(m_scratch.read(QString(250, u'x')), "film");
    }

private:
    support::Scratch m_scratch;
};

TESSARAY_TEST(FileNamesTest)
#include "FileNamesTest.moc"
