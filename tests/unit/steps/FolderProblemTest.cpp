// Why an output can't be made.
#include "steps/FolderProblem.h"

#include "support/Scratch.h"
#include "support/SmallFiles.h"
#include "support/TestMain.h"
#include "support/Unprivileged.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using steps::problemWithFolderOf;

class FolderProblemTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFolderThatTakesFiles()
    {
        QVERIFY(problemWithFolderOf(m_scratch.url(u"a.mkv"_s)).isNull());
        QCOMPARE(QDir(m_scratch.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList());
    }

    void aFolderThatIsNotThere()
    {
        QCOMPARE(problemWithFolderOf(m_scratch.url(u"gone/a.mkv"_s)), u"its folder is not there"_s);
        m_scratch.write(u"file"_s, "x");
        QCOMPARE(problemWithFolderOf(m_scratch.url(u"file/a.mkv"_s)), u"its folder is not there"_s);
    }

    void aFullVolume()
    {
        const support::SmallFiles limit(100);
        QCOMPARE(problemWithFolderOf(m_scratch.url(u"a.mkv"_s)), u"there is no room left"_s);
    }

    void aFolderOfOthers()
    {
        const QUrl output = m_scratch.url(u"a.mkv"_s);
        const auto before = QFile::permissions(m_scratch.path());
        QVERIFY(QFile::setPermissions(m_scratch.path(),
                                      QFile::ReadUser | QFile::ExeUser | QFile::ReadOther | QFile::ExeOther));
        {
            const support::Unprivileged other;
            QCOMPARE(problemWithFolderOf(output), u"its folder can't be written to"_s);
        }
        QVERIFY(QFile::setPermissions(m_scratch.path(), before));
    }

    void aFolderOfTheSystem()
    {
        QVERIFY(!problemWithFolderOf(QUrl::fromLocalFile(u"/proc/a.mkv"_s)).isNull());
    }

private:
    support::Scratch m_scratch;
};

TESSARAY_TEST(FolderProblemTest)
#include "FolderProblemTest.moc"
