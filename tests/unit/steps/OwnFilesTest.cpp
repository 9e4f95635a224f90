#include "steps/OwnFiles.h"

#include "platform/FileIdentity.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// The files of a job that has claimed "mine", "other" and "aside".
struct Job
{
    QUrl url(const QString &name) const { return scratch.url(name); }
    QByteArray content(const QString &name) const { return scratch.read(name); }
    void link(const QString &target, const QString &name) const
    {
        QVERIFY(QFile::link(scratch.path(target), scratch.path(name)));
    }

    support::Scratch scratch;
    steps::OwnFiles files{[this](const QUrl &name) {
        const QString file = QFileInfo(name.toLocalFile()).fileName();
        return QStringList{u"mine"_s, u"other"_s, u"aside"_s}.contains(file) ? platform::placeKey(name)
                                                                             : QString();
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
        QVERIFY(!job.files.begin(theirs).isNull());
        QVERIFY(!job.files.isOwn(theirs));
        QVERIFY(!job.files.append(theirs, "x") && !job.files.remove(theirs) && !job.files.write(theirs, "x"));
        QVERIFY(!job.files.rename(theirs, job.url(u"mine"_s)));
        QVERIFY(!job.files.setAside(theirs, job.url(u"aside"_s)));
        QVERIFY(!job.files.create(job.url(u"free"_s)) && !job.files.copy(theirs, job.url(u"free"_s)));
        QCOMPARE(job.content(u"theirs"_s), QByteArray("theirs"));
        QCOMPARE(job.scratch.names(), QStringList{u"theirs"_s});
    }

    void aClaimAloneMakesNothingTheJobs()
    {
        Job job;
        job.scratch.write(u"mine"_s, "theirs");
        QCOMPARE(job.files.begin(job.url(u"mine"_s)),
                 u"%1 exists already, so nothing was started."_s.arg(job.scratch.path(u"mine"_s)));
        QVERIFY(!job.files.isOwn(job.url(u"mine"_s)));
        QVERIFY(!job.files.remove(job.url(u"mine"_s)) && !job.files.write(job.url(u"mine"_s), "x"));
        QVERIFY(!job.files.append(job.url(u"mine"_s), "x") && !job.files.create(job.url(u"mine"_s)));
        QCOMPARE(job.content(u"mine"_s), QByteArray("theirs"));
    }

    void whatComesAtABegunNameIsTheJobs()
    {
        Job job;
        QVERIFY(job.files.begin(job.url(u"mine"_s)).isNull());
        QVERIFY(!job.files.isOwn(job.url(u"mine"_s))); // nothing is there
        job.scratch.write(u"mine"_s, "by the tool");
        QVERIFY(job.files.isOwn(job.url(u"mine"_s)));
        QVERIFY(job.files.begin(job.url(u"mine"_s)).isNull()); // a second pass
        QVERIFY(job.files.remove(job.url(u"mine"_s)));
        QVERIFY(job.scratch.names().isEmpty());
    }

    void aLinkIsNeverTheJobs_data()
    {
        QTest::addColumn<QString>("target");
        QTest::newRow("to a file") << u"theirs"_s;
        QTest::newRow("to nothing") << u"nothing"_s;
    }

    void aLinkIsNeverTheJobs()
    {
        QFETCH(QString, target);
        Job job;
        job.scratch.write(u"theirs"_s, "theirs");
        QVERIFY(job.files.begin(job.url(u"mine"_s)).isNull());
        job.link(target, u"mine"_s); // planted after the look
        QVERIFY(!job.files.isOwn(job.url(u"mine"_s)) && !job.files.begin(job.url(u"mine"_s)).isNull());
        QVERIFY(!job.files.create(job.url(u"mine"_s), "x") && !job.files.write(job.url(u"mine"_s), "x"));
        QVERIFY(!job.files.copy(job.url(u"theirs"_s), job.url(u"mine"_s)));
        QVERIFY(!job.files.append(job.url(u"mine"_s), "x") && !job.files.remove(job.url(u"mine"_s)));
        QVERIFY(QFileInfo(job.scratch.path(u"mine"_s)).isSymLink());
        QCOMPARE(job.content(u"theirs"_s), QByteArray("theirs"));
        QVERIFY(!QFile::exists(job.scratch.path(u"nothing"_s)));
    }

    void onlyTheVeryFileThatWasCreatedIsAppendedTo()
    {
        Job job;
        QVERIFY(job.files.create(job.url(u"mine"_s), "one "));
        QVERIFY(job.files.append(job.url(u"mine"_s), "two"));
        QCOMPARE(job.content(u"mine"_s), QByteArray("one two"));
        QVERIFY(QFile::rename(job.scratch.path(u"mine"_s), job.scratch.path(u"moved"_s)));
        QVERIFY(!job.files.append(job.url(u"mine"_s), "x"));
        job.scratch.write(u"mine"_s, "theirs");
        QVERIFY(!job.files.append(job.url(u"mine"_s), "x") && !job.files.remove(job.url(u"mine"_s)));
        QVERIFY(QFile::remove(job.scratch.path(u"mine"_s)));
        job.link(u"moved"_s, u"mine"_s); // even to itself
        QVERIFY(!job.files.append(job.url(u"mine"_s), "x"));
        QCOMPARE(job.content(u"moved"_s), QByteArray("one two"));
    }

    void aPipeIsNeverOpened()
    {
        Job job;
        QVERIFY(job.files.begin(job.url(u"mine"_s)).isNull());
        QCOMPARE(::mkfifo(QFile::encodeName(job.scratch.path(u"mine"_s)).constData(), 0600), 0);
        QVERIFY(!job.files.isOwn(job.url(u"mine"_s)) && !job.files.write(job.url(u"mine"_s), "x"));
        QVERIFY(!job.files.copy(job.url(u"mine"_s), job.url(u"other"_s))); // nor read
        QCOMPARE(job.scratch.names().size(), 1);
    }

    void writingReplacesTheJobsOwn()
    {
        Job job;
        QVERIFY(job.files.write(job.url(u"mine"_s), "a longer first try"));
        QVERIFY(job.files.write(job.url(u"mine"_s), "second"));
        QCOMPARE(job.content(u"mine"_s), QByteArray("second"));
        job.scratch.write(u"source"_s, "copied");
        QVERIFY(job.files.copy(job.url(u"source"_s), job.url(u"mine"_s)));
        QCOMPARE(job.content(u"mine"_s), QByteArray("copied"));
        QVERIFY(!job.files.copy(job.url(u"missing"_s), job.url(u"other"_s)));
    }

    void nothingIsRenamedOverAnything()
    {
        Job job;
        QVERIFY(job.files.create(job.url(u"mine"_s), "mine"));
        job.scratch.write(u"other"_s, "theirs");
        QVERIFY(!job.files.rename(job.url(u"mine"_s), job.url(u"other"_s)));
        QVERIFY(!job.files.renameOver(job.url(u"mine"_s), job.url(u"other"_s)));
        QCOMPARE(job.content(u"other"_s), QByteArray("theirs"));
        QVERIFY(QFile::remove(job.scratch.path(u"other"_s)));
        QVERIFY(job.files.rename(job.url(u"mine"_s), job.url(u"other"_s)));
        QVERIFY(job.files.isOwn(job.url(u"other"_s)) && !job.files.isOwn(job.url(u"mine"_s)));
        QVERIFY(job.files.create(job.url(u"mine"_s), "new"));
        QVERIFY(job.files.renameOver(job.url(u"mine"_s), job.url(u"other"_s)));
        QCOMPARE(job.content(u"other"_s), QByteArray("new"));
        QVERIFY(job.files.append(job.url(u"other"_s), "er"));
    }

    void somebodysFileIsSetAsideAndGivenBack()
    {
        Job job;
        job.scratch.write(u"mine"_s, "theirs");
        QVERIFY(job.files.setAside(job.url(u"mine"_s), job.url(u"aside"_s)));
        QVERIFY(job.files.begin(job.url(u"mine"_s)).isNull());
        job.scratch.write(u"mine"_s, "by the tool");
        QVERIFY(!job.files.giveBack(job.url(u"aside"_s), job.url(u"mine"_s))); // not over it
        QVERIFY(job.files.remove(job.url(u"mine"_s)));
        QVERIFY(job.files.giveBack(job.url(u"aside"_s), job.url(u"mine"_s)));
        QVERIFY(!job.files.isOwn(job.url(u"mine"_s)) && !job.files.remove(job.url(u"mine"_s)));
        QCOMPARE(job.content(u"mine"_s), QByteArray("theirs"));
    }

    void aFileThatTookTheNameOfTheOneAsideStays()
    {
        Job job;
        job.scratch.write(u"mine"_s, "theirs");
        QVERIFY(job.files.setAside(job.url(u"mine"_s), job.url(u"aside"_s)));
        QVERIFY(QFile::rename(job.scratch.path(u"aside"_s), job.scratch.path(u"saved"_s)));
        job.scratch.write(u"aside"_s, "another one");
        QVERIFY(!job.files.remove(job.url(u"aside"_s)));
        QVERIFY(!job.files.giveBack(job.url(u"aside"_s), job.url(u"mine"_s)));
        QCOMPARE(job.scratch.names(), QStringList({u"aside"_s, u"saved"_s}));
    }

    void thePrivateFolderIsTheJobs()
    {
        Job job;
        job.scratch.write(u"private/old"_s, "of a try before");
        job.files.setPrivateFolder(job.scratch.path(u"private/"_s));
        QVERIFY(job.files.isOwn(job.url(u"private/old"_s)) && job.files.remove(job.url(u"private/old"_s)));
        QVERIFY(job.files.write(job.url(u"private/new"_s), "x"));
        job.scratch.write(u"private too/theirs"_s, "theirs");
        QVERIFY(!job.files.isOwn(job.url(u"private too/theirs"_s)));
        QVERIFY(!job.files.isOwn(job.url(u"private/../private too/theirs"_s)));
    }

    void nothingIsTheJobsAfterItsEnd()
    {
        Job job;
        QVERIFY(job.files.create(job.url(u"mine"_s)));
        job.files.clear();
        QVERIFY(!job.files.isOwn(job.url(u"mine"_s)) && !job.files.remove(job.url(u"mine"_s)));
    }
};

TESSARAY_TEST(OwnFilesTest)
#include "OwnFilesTest.moc"
