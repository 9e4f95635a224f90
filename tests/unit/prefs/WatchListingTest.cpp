// What is seen of real folders.
#include "prefs/WatchListing.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTest>

#include <atomic>
#include <cstdio>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using prefs::WatchListing;

class WatchListingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_scratch = std::make_unique<support::Scratch>(); }

    void whichNamesAreMovies_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isMovie");
        QTest::newRow("a movie") << u"a.mkv"_s << true;
        QTest::newRow("upper case") << u"A.MKV"_s << true;
        QTest::newRow("several points") << u"a.b.c.mp4"_s << true;
        QTest::newRow("blanks and quotes") << u"it's \"a\" film .mkv"_s << true;
        QTest::newRow("a line feed") << u"a\nb.mkv"_s << true;
        QTest::newRow("umlauts") << u"Männer.mkv"_s << true;
        QTest::newRow("in a sub-folder") << u"sub/a.mkv"_s << true;
        QTest::newRow("deep down") << u"sub/sub.mkv/sub/a.mkv"_s << true;
        QTest::newRow("empty extension") << u"a."_s << false;
        QTest::newRow("no extension") << u"mkv"_s << false;
        QTest::newRow("a text") << u"a.txt"_s << false;
        QTest::newRow("an extension that only begins so") << u"a.mkvx"_s << false;
        QTest::newRow("hidden") << u".a.mkv"_s << false;
        QTest::newRow("in a hidden folder") << u".sub/a.mkv"_s << false;
        QTest::newRow("below a hidden folder") << u"sub/.sub/sub/a.mkv"_s << false;
        QTest::newRow("nothing but an extension") << u".mkv"_s << false;
        QTest::newRow("a partial download") << u"a.mkv.part"_s << false;
        QTest::newRow("another partial download") << u"a.mkv.crdownload"_s << false;
        QTest::newRow("a resource fork") << u"._a.mkv"_s << false;
    }

    void whichNamesAreMovies()
    {
        QFETCH(QString, name);
        QFETCH(bool, isMovie);
        m_scratch->write(u"w/"_s + name, "x");
        QCOMPARE(seen(), isMovie ? QStringList{name} : QStringList());
    }

    void onlyRegularFilesCount()
    {
        m_scratch->write(u"w/a.mkv"_s, "x");
        m_scratch->write(u"else/b.mkv"_s, "x");
        QDir().mkpath(path(u"folder.mkv"_s));
        QVERIFY(QFile::link(path(u"a.mkv"_s), path(u"link.mkv"_s)));
        QVERIFY(QFile::link(path(u"gone"_s), path(u"dangling.mkv"_s)));
        QVERIFY(QFile::link(m_scratch->path(u"else"_s), path(u"else"_s)));
        QVERIFY(QFile::link(path(), path(u"round"_s)));
        QCOMPARE(::mkfifo(qPrintable(path(u"pipe.mkv"_s)), 0600), 0);
        QCOMPARE(seen(), QStringList{u"a.mkv"_s});
    }

    void onlyTheGivenExtensionsCount()
    {
        m_scratch->write(u"w/a.mkv"_s, "x");
        m_scratch->write(u"w/a.webm"_s, "x");
        QCOMPARE(WatchListing().movies(path(), {u"webm"_s}), QStringList{path(u"a.webm"_s)});
    }

    void aFolderThatIsNotThereHoldsNothing()
    {
        QVERIFY(WatchListing().movies(m_scratch->path(u"gone"_s), {u"mkv"_s}).isEmpty());
        QVERIFY(WatchListing().movies(m_scratch->write(u"a.mkv"_s, "x"), {u"mkv"_s}).isEmpty());
    }

    void aSubFolderThatVanishesMeanwhileHidesNothingElse()
    {
        constexpr int films = 40;
        for (int i = 0; i < films; ++i)
            m_scratch->write(u"w/%1/a.mkv"_s.arg(i), "x");
        std::atomic_bool ended = false;
        std::thread others([this, &ended] {
            for (int i = 0; !ended; i = (i + 1) % 50) {
                const QByteArray folder = path(u"passing%1"_s.arg(i)).toUtf8();
                ::mkdir(folder.constData(), 0700);
                ::rmdir(folder.constData());
            }
        });
        qsizetype fewest = films;
        for (int i = 0; i < 3000; ++i)
            fewest = std::min(fewest, WatchListing().movies(path(), {u"mkv"_s}).size());
        ended = true;
        others.join();
        QCOMPARE(fewest, films);
    }

    void theFolderIsKnownWithoutLinksAndSlashes()
    {
        m_scratch->write(u"w/a.mkv"_s, "x");
        const QString real = QFileInfo(path()).canonicalFilePath();
        QVERIFY(QFile::link(path(), m_scratch->path(u"link"_s)));
        const WatchListing listing;
        QCOMPARE(listing.canonicalFolder(path()), real);
        QCOMPARE(listing.canonicalFolder(path() + u'/'), real);
        QCOMPARE(listing.canonicalFolder(path() + u"/../w//"_s), real);
        QCOMPARE(listing.canonicalFolder(m_scratch->path(u"link"_s)), real);
        QCOMPARE(listing.canonicalFolder(m_scratch->path(u"link"_s) + u'/'), real);
        QCOMPARE(listing.movies(listing.canonicalFolder(m_scratch->path(u"link"_s)), {u"mkv"_s}),
                 QStringList{real + u"/a.mkv"_s});
    }

    void whatIsNoFolderIsNone()
    {
        const WatchListing listing;
        QVERIFY(listing.canonicalFolder({}).isNull());
        QVERIFY(listing.canonicalFolder(m_scratch->path(u"gone"_s)).isNull());
        QVERIFY(listing.canonicalFolder(m_scratch->write(u"a.mkv"_s, "x")).isNull());
    }

    void sizeAndTimeOfAFileAreSeen()
    {
        const QString film = m_scratch->write(u"w/a.mkv"_s, "12345");
        QFile file(film);
        QVERIFY(file.open(QIODevice::ReadWrite));
        const QDateTime then = QDateTime::fromMSecsSinceEpoch(1700000000500);
        QVERIFY(file.setFileTime(then, QFileDevice::FileModificationTime));
        const WatchListing::State state = WatchListing().stateOf(film);
        QCOMPARE(state.size, 5);
        QCOMPARE(state.changed, 1700000000500);
        QVERIFY(WatchListing().stateOf(path(u"gone.mkv"_s)) == WatchListing::State());
        QCOMPARE(WatchListing::State().size, -1);
    }

    void aFileIsWholeWhenNobodyWritesItAndItIsAsLongAsItSays()
    {
        using Wholeness = WatchListing::Wholeness;
        // Matroska's head, and a segment that says it has 16 bytes
        const QByteArray head = QByteArray::fromHex("1a45dfa3844286810118538067") + '\x90';
        const QString film = m_scratch->write(u"w/a.mkv"_s, head + QByteArray(7, 'x'));
        QCOMPARE(WatchListing().wholenessOf(film), Wholeness::IsShorterThanItSays);
        QFile file(film);
        QVERIFY(file.open(QIODevice::Append));
        file.write(QByteArray(9, 'x'));
        file.flush();
        QCOMPARE(WatchListing().wholenessOf(film), Wholeness::IsBeingWritten);
        file.close();
        QVERIFY(file.open(QIODevice::ReadOnly)); // who reads it harms nothing
        QCOMPARE(WatchListing().wholenessOf(film), Wholeness::Whole);
    }

    void aNameThatIsNotUtf8IsSeenAsSuch()
    {
        m_scratch->write(u"w/a.mkv"_s, "x");
        QVERIFY(::rename(QFile::encodeName(path(u"a.mkv"_s)).constData(),
                         (QFile::encodeName(path()) + "/\xff.mkv").constData()) == 0);
        const auto entries = WatchListing().entries(path(), {u"mkv"_s});
        QCOMPARE(entries.size(), 1);
        QVERIFY(!entries.constFirst().isNameUtf8);
        m_scratch->write(u"w/b.mkv"_s, "x");
        QCOMPARE(WatchListing().entries(path(), {u"mkv"_s}).size(), 2);
    }

private:
    QString path(const QString &name = {}) const
    {
        return m_scratch->path(name.isEmpty() ? u"w"_s : u"w/"_s + name);
    }

    QStringList seen() const
    {
        QStringList names;
        for (const QString &found : WatchListing().movies(path(), {u"mkv"_s, u"mp4"_s}))
            names.append(found.mid(path().size() + 1));
        return names;
    }

    std::unique_ptr<support::Scratch> m_scratch;
};

TESSARAY_TEST(WatchListingTest)
#include "WatchListingTest.moc"
