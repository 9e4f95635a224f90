#include "steps/ScratchFolder.h"

#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

mode_t modeOf(const QString &path)
{
    struct stat info = {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 0777 : 0;
}

QString parentOf(const QString &jobFolder)
{
    return QFileInfo(jobFolder.chopped(1)).path();
}

/// Sets TMPDIR for one test.
class TemporaryPlace final
{
public:
    explicit TemporaryPlace(const QString &path)
        : m_before(qgetenv("TMPDIR"))
    {
        qputenv("TMPDIR", path.toUtf8());
    }
    ~TemporaryPlace() { m_before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", m_before); }
    Q_DISABLE_COPY_MOVE(TemporaryPlace)

private:
    QByteArray m_before;
};

} // namespace

class ScratchFolderTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTheUserMayLookIn()
    {
        steps::ScratchFolder folder;
        const QString job = folder.makeJobFolder();
        QVERIFY(QFileInfo(job).isDir());
        QCOMPARE(modeOf(parentOf(job)), mode_t(0700));
    }

    void pathEndsInASlash()
    {
        steps::ScratchFolder folder;
        QVERIFY(folder.makeJobFolder().endsWith(u'/'));
    }

    void everyJobHasAFolderOfItsOwn()
    {
        steps::ScratchFolder folder;
        const QString first = folder.makeJobFolder();
        folder.removeJobFolder(first);
        const QString second = folder.makeJobFolder();
        const QString third = folder.makeJobFolder();
        QVERIFY(first != second && second != third && first != third);
        QCOMPARE(parentOf(first), parentOf(third));
    }

    void nothingIsMadeBeforeItIsNeeded()
    {
        const support::Scratch scratch;
        const TemporaryPlace place(scratch.path());
        const steps::ScratchFolder folder;
        QVERIFY(scratch.names().isEmpty());
    }

    void jobFolderGoesWithAllThatIsInIt()
    {
        steps::ScratchFolder folder;
        const QString job = folder.makeJobFolder();
        QDir().mkpath(job + u"deeper"_s);
        QFile file(job + u"deeper/pass-0.log.mbtree"_s);
        QVERIFY(file.open(QIODevice::WriteOnly));
        folder.removeJobFolder(job);
        QVERIFY(!QFileInfo::exists(job));
        QVERIFY(QFileInfo::exists(parentOf(job)));
    }

    void foreignFoldersAreLeftAlone()
    {
        const support::Scratch scratch;
        scratch.write(u"job1/film.mkv"_s, "film");
        steps::ScratchFolder folder;
        folder.removeJobFolder(scratch.path(u"job1/"_s)); // before it made any
        const QString job = folder.makeJobFolder();
        folder.removeJobFolder(scratch.path(u"job1/"_s));
        folder.removeJobFolder({});
        folder.removeJobFolder(parentOf(job));
        QCOMPARE(scratch.read(u"job1/film.mkv"_s), QByteArray("film"));
        QVERIFY(QFileInfo(job).isDir());
    }

    void allIsGoneWithTheProgram()
    {
        QString job;
        {
            steps::ScratchFolder folder;
            job = folder.makeJobFolder();
            QFile file(job + u"temp.ass"_s);
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        QVERIFY(!QFileInfo::exists(parentOf(job)));
    }

    void placeOfTheUsersChoiceIsTaken()
    {
        const support::Scratch scratch;
        const TemporaryPlace place(scratch.path());
        steps::ScratchFolder folder;
        QVERIFY(folder.makeJobFolder().startsWith(scratch.path()));
    }

    void whatAProgramThatIsGoneLeftIsCleared()
    {
        const support::Scratch scratch;
        const TemporaryPlace place(scratch.path());
        QByteArray lock;
        {
            steps::ScratchFolder before;
            lock = scratch.read(QFileInfo(before.makeJobFolder() + u"../lock"_s)
                                    .canonicalFilePath()
                                    .mid(QFileInfo(scratch.path()).canonicalFilePath().size() + 1));
        }
        QVERIFY(lock.contains('\n'));
        // The highest number that a process may have and that none has; and one that runs.
        const QByteArray gone = "999999999" + lock.mid(lock.indexOf('\n'));
        scratch.write(u"tessaray-aaaaaa/lock"_s, gone);
        scratch.write(u"tessaray-aaaaaa/job1/temp.ass"_s, "x");
        scratch.write(u"tessaray-bbbbbb/lock"_s, lock);
        scratch.write(u"tessaray-bbbbbb/job1/temp.ass"_s, "x");
        scratch.write(u"tessaray-cccccc/new"_s, "without a lock as yet");
        scratch.write(u"tessaray-films/lock"_s, gone); // a name that we give nothing
        steps::ScratchFolder::clearLeftOvers();
        QCOMPARE(QDir(scratch.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                 QStringList({u"tessaray-bbbbbb"_s, u"tessaray-cccccc"_s, u"tessaray-films"_s}));
        QCOMPARE(scratch.read(u"tessaray-bbbbbb/job1/temp.ass"_s), QByteArray("x"));
    }

    void aFolderThatALinkLeadsToStays()
    {
        const support::Scratch scratch;
        const TemporaryPlace place(scratch.path(u"tmp"_s));
        QDir().mkpath(scratch.path(u"tmp"_s));
        scratch.write(u"films/lock"_s, "999999999\n\n\n\n\n\n\n");
        QVERIFY(QFile::link(scratch.path(u"films"_s), scratch.path(u"tmp/tessaray-aaaaaa"_s)));
        steps::ScratchFolder::clearLeftOvers();
        QVERIFY(QFile::exists(scratch.path(u"films/lock"_s)));
        QVERIFY(QFileInfo(scratch.path(u"tmp/tessaray-aaaaaa"_s)).isSymLink());
    }

    void placeThatAFilterCannotReadIsAvoided_data()
    {
        QTest::addColumn<QString>("name");
        for (const auto &name :
             {u"a:b"_s, u"a'b"_s, u"a,b"_s, u"a;b"_s, u"a\\b"_s, u"a=b"_s, u"a[b"_s, u"a]b"_s})
            QTest::newRow(qPrintable(name)) << name;
    }

    void placeThatAFilterCannotReadIsAvoided()
    {
        QFETCH(QString, name);
        const support::Scratch scratch;
        QVERIFY(QDir(scratch.path()).mkdir(name));
        const TemporaryPlace place(scratch.path(name));
        steps::ScratchFolder folder;
        const QString job = folder.makeJobFolder();
        QVERIFY(QFileInfo(job).isDir());
        QVERIFY(!job.contains(name));
    }
};

TESSARAY_TEST(ScratchFolderTest)
#include "ScratchFolderTest.moc"
