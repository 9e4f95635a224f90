// What a job may touch: names that it claimed, where they lie in its own folders, and nothing else.
#include "steps/OwnFiles.h"

#include "support/Scratch.h"
#include "support/SmallFiles.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

/// The files of a job that has claimed "mine" and "other", which lie in the folder "work".
struct Job
{
    QUrl url(const QString &name) const { return scratch.url(name); }
    QByteArray content(const QString &name) const { return scratch.read(name); }
    void link(const QString &target, const QString &name) const
    {
        QVERIFY(QFile::link(scratch.path(target), scratch.path(name)));
    }
    QUrl placeOf(const QUrl &name) const
    {
        const QFileInfo info(name.toLocalFile());
        const bool isClaimed = info.absolutePath() == scratch.path() &&
                               QStringList{u"mine"_s, u"other"_s}.contains(info.fileName());
        return isClaimed && QFileInfo::exists(scratch.path(u"work"_s)) ? url(u"work/"_s + info.fileName())
                                                                       : QUrl();
    }

    support::Scratch scratch;
    steps::OwnFiles files{[this](const QUrl &name) { return placeOf(name); },
                          [this](const QUrl &name) {
                              QDir(scratch.path()).mkdir(u"work"_s);
                              return placeOf(name);
                          }};
};

} // namespace

class OwnFilesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNameThatIsNotClaimedIsNeverTouched()
    {
        Job job;
        job.scratch.write(u"theirs"_s, "theirs");
        const QUrl theirs = job.url(u"theirs"_s);
        QVERIFY(!job.files.isOwn(theirs));
        QVERIFY(!job.files.append(theirs, "x") && !job.files.remove(theirs) && !job.files.write(theirs, "x"));
        QVERIFY(!job.files.renameOver(theirs, job.url(u"mine"_s)));
        QVERIFY(!job.files.create(job.url(u"free"_s)) && !job.files.copy(theirs, job.url(u"free"_s)));
        QVERIFY(!job.files.link(theirs, job.url(u"free"_s)));
        QCOMPARE(job.content(u"theirs"_s), QByteArray("theirs"));
        QVERIFY(!QFileInfo::exists(job.scratch.path(u"free"_s)));
    }

    void whatStandsAtAClaimedNameIsNeverTouched()
    {
        Job job;
        job.scratch.write(u"mine"_s, "theirs");
        QVERIFY(!job.files.isOwn(job.url(u"mine"_s)) && !job.files.remove(job.url(u"mine"_s)));
        QVERIFY(!job.files.append(job.url(u"mine"_s), "x"));
        QVERIFY(job.files.create(job.url(u"mine"_s), "new") && job.files.append(job.url(u"mine"_s), "er"));
        QCOMPARE(job.content(u"work/mine"_s), QByteArray("newer"));
        QVERIFY(job.files.remove(job.url(u"mine"_s)));
        QCOMPARE(job.content(u"mine"_s), QByteArray("theirs"));
    }

    void aFileIsWrittenWholeOrNotAtAll()
    {
        Job job;
        const QUrl mine = job.url(u"mine"_s);
        {
            const support::SmallFiles limit(4);
            QVERIFY(!job.files.create(mine, "0123456789"));
            QVERIFY(!QFileInfo::exists(job.scratch.path(u"work/mine"_s)));
            QVERIFY(job.files.create(mine, "0123") && !job.files.write(mine, "0123456789"));
        }
        QCOMPARE(job.content(u"work/mine"_s), QByteArray("0123"));
    }

    void aLinkIsNeverFollowed_data()
    {
        QTest::addColumn<QString>("target");
        QTest::newRow("to a file") << u"theirs"_s;
        QTest::newRow("to nothing") << u"nothing"_s;
    }

    void aLinkIsNeverFollowed()
    {
        QFETCH(QString, target);
        Job job;
        job.scratch.write(u"theirs"_s, "theirs");
        job.scratch.write(u"work/x"_s, "x");
        job.link(target, u"work/mine"_s);
        QVERIFY(!job.files.isOwn(job.url(u"mine"_s)));
        QVERIFY(!job.files.create(job.url(u"mine"_s), "x") && !job.files.write(job.url(u"mine"_s), "x"));
        QVERIFY(!job.files.copy(job.url(u"theirs"_s), job.url(u"mine"_s)));
        QVERIFY(!job.files.append(job.url(u"mine"_s), "x") && !job.files.remove(job.url(u"mine"_s)));
        QCOMPARE(job.content(u"theirs"_s), QByteArray("theirs"));
        QVERIFY(!QFile::exists(job.scratch.path(u"nothing"_s)));
    }

    void aPipeIsNeverOpened()
    {
        Job job;
        job.scratch.write(u"work/x"_s, "x");
        QCOMPARE(::mkfifo(QFile::encodeName(job.scratch.path(u"work/mine"_s)).constData(), 0600), 0);
        QVERIFY(!job.files.isOwn(job.url(u"mine"_s)) && !job.files.write(job.url(u"mine"_s), "x"));
        QVERIFY(!job.files.append(job.url(u"mine"_s), "x"));
        QVERIFY(!job.files.copy(job.url(u"mine"_s), job.url(u"other"_s))); // nor read
    }

    void writingReplacesTheJobsOwn()
    {
        Job job;
        QVERIFY(job.files.write(job.url(u"mine"_s), "a longer first try"));
        QVERIFY(!job.files.create(job.url(u"mine"_s), "x"));
        QVERIFY(job.files.write(job.url(u"mine"_s), "second"));
        QCOMPARE(job.content(u"work/mine"_s), QByteArray("second"));
        job.scratch.write(u"source"_s, "copied");
        QVERIFY(job.files.copy(job.url(u"source"_s), job.url(u"mine"_s)));
        QCOMPARE(job.content(u"work/mine"_s), QByteArray("copied"));
        QVERIFY(job.files.copy(job.url(u"mine"_s), job.url(u"other"_s))); // its own, by its name
        QCOMPARE(job.content(u"work/other"_s), QByteArray("copied"));
        QVERIFY(!job.files.copy(job.url(u"missing"_s), job.url(u"other"_s)));
    }

    void oneFileOfTheJobTakesThePlaceOfAnother()
    {
        Job job;
        QVERIFY(job.files.create(job.url(u"mine"_s), "padded") &&
                job.files.create(job.url(u"other"_s), "film"));
        QVERIFY(job.files.renameOver(job.url(u"mine"_s), job.url(u"other"_s)));
        QCOMPARE(job.content(u"work/other"_s), QByteArray("padded"));
        QVERIFY(!job.files.isOwn(job.url(u"mine"_s)));
        QVERIFY(!job.files.renameOver(job.url(u"mine"_s), job.url(u"other"_s)));
    }

    void thePrivateFolderIsTheJobs()
    {
        Job job;
        job.scratch.write(u"private/old"_s, "of a try before");
        job.files.setPrivateFolder(job.scratch.path(u"private/"_s));
        QVERIFY(job.files.isOwn(job.url(u"private/old"_s)) && job.files.remove(job.url(u"private/old"_s)));
        QVERIFY(job.files.write(job.url(u"private/new"_s), "x"));
        QVERIFY(job.files.link(job.url(u"private/new"_s), job.url(u"private/link"_s)));
        job.scratch.write(u"private too/theirs"_s, "theirs");
        QVERIFY(!job.files.isOwn(job.url(u"private too/theirs"_s)));
        QVERIFY(!job.files.isOwn(job.url(u"private/../private too/theirs"_s)));
    }
};

TESSARAY_TEST(OwnFilesTest)
#include "OwnFilesTest.moc"
