// What is known of a watched folder's films outlives the program, and is shared with others.
#include "prefs/WatchJournal.h"

#include "platform/HolderFile.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using prefs::WatchJournal;
using Film = WatchJournal::Film;
using Why = WatchJournal::Why;

namespace {

struct Folder
{
    QString path(const QString &name) const { return scratch.path(name); }
    Film film(const QString &name, qint64 size = 5, qint64 changed = 1, quint64 inode = 0) const
    {
        return {path(name), size, changed, inode};
    }
    QString journal() const { return path(WatchJournal::fileName()); }
    QByteArray content() const { return scratch.read(WatchJournal::fileName()); }
    /// One that reads what is on the disk.
    WatchJournal opened(const QString &other = {}) const
    {
        WatchJournal journal;
        journal.open(scratch.path(), other);
        return journal;
    }

    support::Scratch scratch;
};

} // namespace

class WatchJournalTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatWasNotedIsFoundByTheNextOne_data()
    {
        QTest::addColumn<Why>("why");
        QTest::newRow("known") << Why::Known;
        QTest::newRow("output") << Why::Output;
        QTest::newRow("waiting") << Why::Waiting;
        QTest::newRow("refused") << Why::Refused;
    }

    void whatWasNotedIsFoundByTheNextOne()
    {
        QFETCH(Why, why);
        const Folder folder;
        folder.opened().note(why, {folder.film(u"sub/a\tb\nc %é.mkv"_s)});
        const WatchJournal next = folder.opened();
        QVERIFY(next.isInFolder());
        QCOMPARE(next.find(folder.film(u"sub/a\tb\nc %é.mkv"_s)), std::optional(why));
        QCOMPARE(next.find(folder.film(u"sub/a.mkv"_s)), std::nullopt);
    }

    void aFilmIsKnownByPathOrInodeWithSizeAndTime_data()
    {
        QTest::addColumn<Film>("film");
        QTest::addColumn<bool>("isKnown");
        QTest::newRow("the same") << Film{u"a.mkv"_s, 5, 1, 7} << true;
        QTest::newRow("renamed") << Film{u"b.mkv"_s, 5, 1, 7} << true;
        QTest::newRow("another inode after a new mount") << Film{u"a.mkv"_s, 5, 1, 8} << true;
        QTest::newRow("another size") << Film{u"a.mkv"_s, 6, 1, 7} << false;
        QTest::newRow("another time") << Film{u"a.mkv"_s, 5, 2, 7} << false;
        QTest::newRow("another one") << Film{u"b.mkv"_s, 5, 1, 8} << false;
        QTest::newRow("another one where there are no inodes") << Film{u"b.mkv"_s, 5, 1, 0} << false;
    }

    void aFilmIsKnownByPathOrInodeWithSizeAndTime()
    {
        QFETCH(Film, film);
        QFETCH(bool, isKnown);
        const Folder folder;
        WatchJournal journal = folder.opened();
        journal.note(Why::Known, {folder.film(u"a.mkv"_s, 5, 1, 7)});
        film.path = folder.path(film.path);
        QCOMPARE(journal.find(film).has_value(), isKnown);
        QCOMPARE(folder.opened().find(film).has_value(), isKnown);
    }

    void theLastWordCounts()
    {
        const Folder folder;
        WatchJournal journal = folder.opened();
        journal.note(Why::Waiting, {folder.film(u"a.mkv"_s)});
        QVERIFY(journal.waits(folder.film(u"a.mkv"_s, 99, 99))); // it may have grown since
        journal.note(Why::Known, {folder.film(u"a.mkv"_s)});
        QVERIFY(!folder.opened().waits(folder.film(u"a.mkv"_s)));
        QCOMPARE(folder.opened().find(folder.film(u"a.mkv"_s)), std::optional(Why::Known));
    }

    void linesOfOthersAreTakenInAndDamagedOnesPassedOver()
    {
        const Folder folder;
        WatchJournal journal = folder.opened();
        WatchJournal other = folder.opened();
        other.note(Why::Known, {folder.film(u"a.mkv"_s)});
        QCOMPARE(journal.find(folder.film(u"a.mkv"_s)), std::nullopt);
        journal.refresh();
        QVERIFY(journal.find(folder.film(u"a.mkv"_s)));
        QFile file(folder.journal());
        QVERIFY(file.open(QIODevice::Append));
        file.write("nonsense\n\0\n\nknown\t1\t2\nknown\t5\t1\t0\t99999\tb.m"); // a full disk
        file.close();
        other.note(Why::Known, {folder.film(u"c.mkv"_s)});
        journal.refresh();
        QVERIFY(journal.find(folder.film(u"c.mkv"_s)));
        QCOMPARE(journal.find(folder.film(u"b.mkv"_s)), std::nullopt);
    }

    void vanishedFilmsGoAfterThirtyDays()
    {
        const Folder folder;
        const qint64 today = QDateTime::currentMSecsSinceEpoch() / 86'400'000;
        const auto line = [&](const char *name, qint64 daysAgo) {
            return "known\t5\t1\t0\t" + QByteArray::number(today - daysAgo) + '\t' + name + '\n';
        };
        folder.scratch.write(WatchJournal::fileName(), line("old-there.mkv", 400) + line("old-gone.mkv", 31) +
                                                           line("young-gone.mkv", 30));
        folder.opened().tidy({folder.path(u"old-there.mkv"_s)});
        const WatchJournal next = folder.opened();
        QVERIFY(next.find(folder.film(u"old-there.mkv"_s)));
        QVERIFY(next.find(folder.film(u"young-gone.mkv"_s)));
        QVERIFY(!next.find(folder.film(u"old-gone.mkv"_s)));
        QCOMPARE(folder.content().count('\n'), 2);
    }

    /// The reader of before the tidying goes on behind it.
    void tidyingIsSeenByOthers()
    {
        const Folder folder;
        WatchJournal reader = folder.opened();
        WatchJournal tidier = folder.opened();
        for (int i = 0; i < 50; ++i)
            tidier.note(Why::Waiting, {folder.film(u"a.mkv"_s)});
        reader.refresh();
        tidier.tidy({});
        QCOMPARE(folder.content().count('\n'), 1);
        tidier.note(Why::Known, {folder.film(u"b.mkv"_s)});
        reader.refresh();
        QVERIFY(reader.find(folder.film(u"a.mkv"_s)) && reader.find(folder.film(u"b.mkv"_s)));
    }

    void whatSomebodyWritesIsNotTidiedAway()
    {
        const Folder folder;
        WatchJournal journal = folder.opened();
        journal.note(Why::Known, {folder.film(u"a.mkv"_s)});
        journal.note(Why::Known, {folder.film(u"a.mkv"_s)});
        platform::HolderFile lock(QUrl::fromLocalFile(folder.journal() + u"-lock"_s));
        QCOMPARE(lock.take(), platform::HolderFile::Answer::Held);
        journal.tidy({});
        QCOMPARE(folder.content().count('\n'), 2);
    }

    void whereTheFolderCantBeWrittenItLiesElsewhere()
    {
        const Folder folder;
        const Folder data;
        QVERIFY(
            QDir().mkdir(folder.journal())); // stands for a folder that can't be written; root may write all
        WatchJournal journal = folder.opened(data.path(u"deep/down"_s));
        QVERIFY(!journal.isInFolder());
        journal.note(Why::Known, {folder.film(u"a.mkv"_s)});
        QVERIFY(folder.opened(data.path(u"deep/down"_s)).find(folder.film(u"a.mkv"_s)));
        const Folder another;
        QVERIFY(QDir().mkdir(another.journal()));
        QVERIFY(!another.opened(data.path(u"deep/down"_s)).find(another.film(u"a.mkv"_s)));
    }

    void whatIsDoneOutsideOfAWatchWaitsNoLonger()
    {
        const Folder folder;
        const QString path = folder.scratch.write(u"sub/a.mkv"_s, "a film");
        const qint64 changed = QFileInfo(path).lastModified().toMSecsSinceEpoch();
        const Film film = folder.film(u"sub/a.mkv"_s, 6, changed);
        folder.opened();
        WatchJournal::noteDone(QUrl::fromLocalFile(path));
        QCOMPARE(folder.opened().find(film), std::nullopt); // nobody waited for it
        folder.opened().note(Why::Waiting, {film});
        WatchJournal::noteDone(QUrl::fromLocalFile(path));
        QCOMPARE(folder.opened().find(film), std::optional(Why::Known));
    }

    void aLinkIsNeverWrittenThrough()
    {
        const Folder folder;
        folder.scratch.write(u"mine"_s, "mine");
        QVERIFY(QFile::link(folder.path(u"mine"_s), folder.journal()));
        WatchJournal journal = folder.opened();
        journal.note(Why::Known, {folder.film(u"a.mkv"_s)});
        WatchJournal::noteOutputs({{folder.scratch.url(u"mine"_s), folder.scratch.url(u"b.mkv"_s)}});
        QCOMPARE(folder.scratch.read(u"mine"_s), QByteArray("mine"));
        QVERIFY(journal.find(folder.film(u"a.mkv"_s))); // in memory
    }

    void outputsAreNotedInTheJournalAround()
    {
        const Folder folder;
        WatchJournal journal = folder.opened();
        folder.scratch.write(u"sub/.work/1.mkv"_s, "a film");
        const QUrl file = folder.scratch.url(u"sub/.work/1.mkv"_s);
        WatchJournal::noteOutputs({{file, folder.scratch.url(u"sub/a.mkv"_s)}});
        QVERIFY(QFile::rename(file.toLocalFile(), folder.path(u"sub/a.mkv"_s)));
        struct stat status = {};
        QCOMPARE(::stat(QFile::encodeName(folder.path(u"sub/a.mkv"_s)).constData(), &status), 0);
        const qint64 changed = QFileInfo(folder.path(u"sub/a.mkv"_s)).lastModified().toMSecsSinceEpoch();
        journal.refresh();
        QCOMPARE(journal.find(folder.film(u"sub/a.mkv"_s, 6, changed)), std::optional(Why::Output));
        QCOMPARE(journal.find(folder.film(u"moved.mkv"_s, 6, changed, status.st_ino)),
                 std::optional(Why::Output));
    }

    void withoutAJournalAroundNothingIsWritten()
    {
        const Folder folder;
        folder.scratch.write(u"1.mkv"_s, "a film");
        WatchJournal::noteOutputs({{folder.scratch.url(u"1.mkv"_s), folder.scratch.url(u"a.mkv"_s)}});
        QCOMPARE(folder.scratch.names(), QStringList{u"1.mkv"_s});
    }
};

TESSARAY_TEST(WatchJournalTest)
#include "WatchJournalTest.moc"
