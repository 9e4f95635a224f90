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
