// Finished files get their names: all of them or none, never over anything that was not to be replaced.
#include "steps/Publisher.h"

#include "steps/LeftOvers.h"
#include "steps/OutputClaims.h"
#include "steps/WorkFolder.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QSysInfo>
#include <QTest>
#include <QThread>

#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using steps::Publication;
using steps::PublishResult;

namespace {

/// A folder for results, and in it the work folder of a job with some finished files.
struct Work
{
    explicit Work(const QStringList &names)
    {
        QDir(scratch.path()).mkdir(folder);
        for (const QString &name : names) {
            scratch.write(folder + u'/' + name, "new " + name.toUtf8());
            publications.append({scratch.url(folder + u'/' + name), scratch.url(name), std::nullopt});
        }
    }
    void writeRecord() const
    {
        const QString path = steps::recordIn(scratch.url(folder)).toLocalFile();
        scratch.write(path.mid(scratch.path().size() + 1), steps::toRecord(publications));
    }
    /// Of a process that is gone: 2^22 is above all process ids of Linux, and those of macOS are smaller.
    void writeLock(const QString &host = QSysInfo::machineHostName(),
                   const QByteArray &machine = QSysInfo::machineUniqueId()) const
    {
        scratch.write(folder + u"/lock"_s, "4194305\n\n" + host.toUtf8() + '\n' + machine + '\n' +
                                               QSysInfo::bootUniqueId() + "\na word\n");
    }
    PublishResult::End publishedBy(steps::Publisher &publisher) const
    {
        const QSignalSpy ended(&publisher, &steps::Publisher::ended);
        publisher.start(scratch.url(folder), publications);
        if (!support::waitFor([&] { return !ended.isEmpty(); }))
            qFatal("publishing did not end");
        return ended.constFirst().constFirst().value<PublishResult>().end;
    }
    bool isThere() const { return QFileInfo::exists(scratch.path(folder)); }
    void makeOld(const QString &name) const
    {
        const timespec when{::time(nullptr) - qint64(8) * 24 * 3600, 0};
        const timespec both[2] = {when, when};
        QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(scratch.path(name)).constData(), both, 0), 0);
    }

    support::Scratch scratch;
    QString folder = u".tessaray-abc123"_s;
    QList<Publication> publications;
};

} // namespace

class PublisherTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allGetTheirNames()
    {
        const Work work({u"a.mkv"_s, u"b.mkv"_s});
        steps::Publisher publisher;
        QSignalSpy ended(&publisher, &steps::Publisher::ended);
        publisher.start(work.scratch.url(work.folder), work.publications);
        QVERIFY(support::waitFor([&] { return ended.size() == 1; }));
        QCOMPARE(work.scratch.read(u"a.mkv"_s), QByteArray("new a.mkv"));
        QCOMPARE(work.scratch.read(u"b.mkv"_s), QByteArray("new b.mkv"));
    }

    /// The names are there before the event loop hears of it.
    void whoCancelsTooLateIsToldSo()
    {
        const Work work({u"a.mkv"_s, u"b.mkv"_s});
        steps::Publisher publisher;
        QSignalSpy ended(&publisher, &steps::Publisher::ended);
        publisher.start(work.scratch.url(work.folder), work.publications);
        while (!QFileInfo::exists(work.scratch.path(u"a.mkv"_s)))
            QThread::msleep(1);
        QVERIFY(!publisher.cancel());
        QVERIFY(QFileInfo::exists(work.scratch.path(u"b.mkv"_s))); // all of them or none
        QCoreApplication::processEvents();
        QCOMPARE(ended.size(), 0);
        QVERIFY(publisher.cancel()); // nothing is under way any more
    }

    void noneGetsItsNameWhereOneIsTaken()
    {
        const Work work({u"a.mkv"_s, u"b.mkv"_s});
        work.scratch.write(u"b.mkv"_s, "the user's");
        const PublishResult result = steps::publishNow(work.scratch.url(work.folder), work.publications);
        QCOMPARE(result.end, PublishResult::End::NameTaken);
        QCOMPARE(result.name, work.scratch.url(u"b.mkv"_s));
        QCOMPARE(work.scratch.read(u"b.mkv"_s), QByteArray("the user's"));
        QVERIFY(!QFileInfo::exists(work.scratch.path(u"a.mkv"_s)));
        QCOMPARE(work.scratch.read(work.folder + u"/a.mkv"_s), QByteArray("new a.mkv"));
    }

    void onlyTheFileThatWasMeantIsReplaced()
    {
        Work work({u"a.mkv"_s});
        work.scratch.write(u"a.mkv"_s, "old");
        work.publications[0].replaced = platform::fileAt(work.scratch.url(u"a.mkv"_s));
        QVERIFY(QFile::rename(work.scratch.path(u"a.mkv"_s), work.scratch.path(u"saved.mkv"_s)));
        work.scratch.write(u"a.mkv"_s, "another one");
        QCOMPARE(steps::publishNow(work.scratch.url(work.folder), work.publications).end,
                 PublishResult::End::NameTaken);
        QCOMPARE(work.scratch.read(u"a.mkv"_s), QByteArray("another one"));
        work.publications[0].replaced = platform::fileAt(work.scratch.url(u"a.mkv"_s));
        QCOMPARE(steps::publishNow(work.scratch.url(work.folder), work.publications).end,
                 PublishResult::End::Done);
        QCOMPARE(work.scratch.read(u"a.mkv"_s), QByteArray("new a.mkv"));
    }

    void aFileThatIsNotThereFails()
    {
        Work work({u"a.mkv"_s});
        QVERIFY(QFile::remove(work.scratch.path(work.folder + u"/a.mkv"_s)));
        QCOMPARE(steps::publishNow(work.scratch.url(work.folder), work.publications).end,
                 PublishResult::End::NotFlushed);
    }

    void whatWasFlushedAheadGetsItsName()
    {
        const Work work({u"a.mkv"_s, u"b.mkv"_s});
        steps::Publisher publisher;
        publisher.flushAhead({work.publications.constFirst().file});
        QCOMPARE(work.publishedBy(publisher), PublishResult::End::Done);
        QCOMPARE(work.scratch.read(u"a.mkv"_s), QByteArray("new a.mkv"));
        QCOMPARE(work.scratch.read(u"b.mkv"_s), QByteArray("new b.mkv"));
    }

    /// The disk tells only once of what it could not take.
    void aFlushThatFailedIsNotForgotten()
    {
        const Work work({u"a.mkv"_s});
        const QString file = work.scratch.path(work.folder + u"/a.mkv"_s);
        QVERIFY(QFile::rename(file, file + u".away"_s));
        steps::Publisher publisher;
        publisher.flushAhead({work.publications.constFirst().file});
        QCOMPARE(work.publishedBy(publisher), PublishResult::End::NotFlushed);
        QVERIFY(QFile::rename(file + u".away"_s, file));
        QCOMPARE(work.publishedBy(publisher), PublishResult::End::NotFlushed);
        QVERIFY(!QFileInfo::exists(work.scratch.path(u"a.mkv"_s)));
    }

    // What a program that is gone has left.

    void renamesThatWereCutShortAreFinished()
    {
        const Work work({u"a.mkv"_s, u"b.mkv"_s, u"c.mkv"_s});
        work.writeRecord();
        work.writeLock();
        QVERIFY(QFile::rename(work.scratch.path(work.folder + u"/a.mkv"_s), work.scratch.path(u"a.mkv"_s)));
        work.scratch.write(u"c.mkv"_s, "somebody else's");
        steps::clearLeftOvers(work.scratch.url(u""_s));
        QCOMPARE(work.scratch.shownNames(),
                 QStringList({u"a.mkv"_s, u"b.mkv"_s, u"c (2).mkv"_s, u"c.mkv"_s}));
        QCOMPARE(work.scratch.read(u"b.mkv"_s), QByteArray("new b.mkv"));
        QCOMPARE(work.scratch.read(u"c (2).mkv"_s), QByteArray("new c.mkv"));
        QCOMPARE(work.scratch.read(u"c.mkv"_s), QByteArray("somebody else's"));
        QVERIFY(!work.isThere());
    }

    void whatWasNotCheckedGoes()
    {
        const Work work({u"a.mkv"_s});
        work.writeLock();
        steps::clearLeftOvers(work.scratch.url(u""_s));
        QCOMPARE(work.scratch.shownNames(), QStringList());
        QVERIFY(!work.isThere());
    }

    void whatARunningProgramHoldsStays()
    {
        const support::Scratch scratch;
        steps::WorkFolder folder(scratch.url(u""_s));
        QVERIFY(folder.make());
        steps::clearLeftOvers(scratch.url(u""_s));
        QVERIFY(QFileInfo::exists(folder.folder().toLocalFile()));
        folder.remove();
        QVERIFY(!QFileInfo::exists(folder.folder().toLocalFile()));
    }

    /// To files a machine that slept, or whose clock was moved on, is one on which time passed.
    void whatARunningProgramHoldsStaysHoweverLongTheMachineSlept()
    {
        const support::Scratch scratch;
        steps::WorkFolder folder(scratch.url(u""_s));
        steps::OutputClaims claims;
        QVERIFY(folder.make());
        QCOMPARE(claims.take(scratch.url(u"a.mkv"_s)), steps::OutputClaims::Answer::Held);
        const timespec longAgo[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
        for (const QString &path : {folder.folder().toLocalFile() + u"/lock"_s, folder.folder().toLocalFile(),
                                    steps::OutputClaims::claimOf(scratch.url(u"a.mkv"_s)).toLocalFile()})
            QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), longAgo, 0), 0);
        steps::clearLeftOvers(scratch.url(u""_s));
        QVERIFY(QFileInfo::exists(folder.folder().toLocalFile() + u"/lock"_s));
        QVERIFY(claims.isStillHeld(scratch.url(u"a.mkv"_s)));
    }

    /// Its lock had no name yet when the program was killed.
    void aFolderThatWasBeingTakenGoesAfterAMoment()
    {
        const support::Scratch scratch;
        const QString lock =
            scratch.write(u".tessaray-abc123/lock.0123456789abcdef0123456789abcdef"_s, "123\n");
        steps::clearLeftOvers(scratch.url(u""_s));
        QVERIFY(QFileInfo::exists(lock)); // its writer may be slow
        const timespec before[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
        QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(lock).constData(), before, 0), 0);
        steps::clearLeftOvers(scratch.url(u""_s));
        QVERIFY(!QFileInfo::exists(scratch.path(u".tessaray-abc123"_s)));
    }

    void whatAnotherHostLeftGoesAfterAWeek()
    {
        const Work work({u"a.mkv"_s});
        work.writeRecord();
        work.writeLock(u"another-host"_s, "0123456789abcdef0123456789abcdef");
        steps::clearLeftOvers(work.scratch.url(u""_s));
        QVERIFY(work.isThere());
        for (const QString &name : {u"/a.mkv"_s, u"/lock"_s, u"/publish.json"_s})
            work.makeOld(work.folder + name);
        steps::clearLeftOvers(work.scratch.url(u""_s));
        QVERIFY(work.isThere()); // the folder itself has just changed
        work.makeOld(work.folder);
        steps::clearLeftOvers(work.scratch.url(u""_s));
        QVERIFY(!work.isThere());
        QCOMPARE(work.scratch.shownNames(), QStringList());
    }

    void anEmptyFolderGoes()
    {
        const Work work({});
        QVERIFY(work.isThere());
        steps::clearLeftOvers(work.scratch.url(u""_s));
        QVERIFY(!work.isThere());
    }

    void aFolderWithoutALockIsNoOnesYet()
    {
        const Work work({u"a.mkv"_s});
        work.writeRecord();
        steps::clearLeftOvers(work.scratch.url(u""_s));
        QVERIFY(work.isThere());
        QCOMPARE(work.scratch.shownNames(), QStringList());
    }

    void foldersOfOtherNamesAreLeftAlone()
    {
        Work work({u"a.mkv"_s});
        work.writeLock();
        work.scratch.write(u".tessaray-watch"_s, "a journal");
        work.scratch.write(u".tessaray-notes/mine"_s, "the user's");
        steps::clearLeftOvers(work.scratch.url(u""_s));
        QVERIFY(QFileInfo::exists(work.scratch.path(u".tessaray-watch"_s)));
        QVERIFY(QFileInfo::exists(work.scratch.path(u".tessaray-notes/mine"_s)));
    }

    void aStrangersRecordReachesNothingElse_data()
    {
        QTest::addColumn<QByteArray>("record");
        QTest::newRow("a path as name")
            << QByteArray(R"({"publications":[{"file":"a","name":"../../stolen"}]})");
        QTest::newRow("a path as file")
            << QByteArray(R"({"publications":[{"file":"../theirs","name":"b"}]})");
        QTest::newRow("the folder above") << QByteArray(R"({"publications":[{"file":"a","name":".."}]})");
        QTest::newRow("over a file") << QByteArray(
            R"({"publications":[{"file":"a","name":"theirs","replacedDevice":"1","replacedInode":"2"}]})");
        QTest::newRow("no list") << QByteArray(R"({"publications":"a"})");
        QTest::newRow("cut") << QByteArray(R"({"publications":[{"file":"a","name")");
    }

    void aStrangersRecordReachesNothingElse()
    {
        QFETCH(QByteArray, record);
        const Work work({u"a"_s});
        work.writeLock();
        work.scratch.write(u"theirs"_s, "theirs");
        work.scratch.write(work.folder + u"/publish.json"_s, record);
        steps::clearLeftOvers(work.scratch.url(u""_s));
        QCOMPARE(work.scratch.read(u"theirs"_s), QByteArray("theirs"));
        QVERIFY(!QFileInfo::exists(work.scratch.path(u"../stolen"_s)));
        QVERIFY(!QFileInfo::exists(work.scratch.path(u"b"_s)));
    }
};

TESSARAY_TEST(PublisherTest)
#include "PublisherTest.moc"
