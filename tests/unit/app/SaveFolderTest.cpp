// Whether the folder that a job writes to can be written is asked before it starts.
#include "app/JobStarter.h"

#include "support/TestMain.h"
#include "support/Unprivileged.h"
#include "support/app/AppFixture.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::AppFixture;
using support::convertible;

class SaveFolderTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<AppFixture>();
        m_fixture->fakeTool(u"ffmpeg/ffmpeg"_s, {u"hang"_s}); // whatever starts stays in the queue
        m_fixture->fakeTool(u"mkvtoolnix/mkvmerge"_s, {u"hang"_s});
        m_fixture->presets().setSelectionMethodIndex(2); // "All Tracks"
    }
    void cleanup() { m_fixture.reset(); }

    void aReadOnlyFolderGivesThePermissionAlertAndQueuesNothing_data()
    {
        QTest::addColumn<QString>("title");
        for (const char *title : {"Convert", "Extract", "Send"})
            QTest::newRow(title) << QString::fromLatin1(title);
    }

    void aReadOnlyFolderGivesThePermissionAlertAndQueuesNothing()
    {
        QFETCH(QString, title);
        open({convertible(file(u"locked/a.mkv"_s)), convertible(file(u"b.mkv"_s))});
        const QSignalSpy refused(&m_fixture->starter(), &app::JobStarter::refused);
        startWithLocked(u"locked"_s, title);
        QCOMPARE(refused.size(), 1);
        // "permision" is meant.
        QCOMPARE(m_fixture->shownAlerts(),
                 QStringList{u"The application does not have permision to write to the save folder for this "
                             "job.|Either move the file, change the save location, or edit the permissions "
                             "for the output folder.|10000"_s});
        QCOMPARE(m_fixture->alerts().shown().constFirst()->style, platform::AlertStyle::Informational);
        QVERIFY(m_fixture->jobs().isEmpty());
        QVERIFY(!m_fixture->starter().isFinishing());
        QCOMPARE(m_fixture->openNames().size(), 2);
    }

    void onTheEditingTabTheFolderOfTheFirstFileCounts_data()
    {
        QTest::addColumn<QString>("locked");
        QTest::addColumn<int>("alerts");
        QTest::newRow("that of the first file") << u"one"_s << 1;
        QTest::newRow("that of the second file") << u"two"_s << 0;
        QTest::newRow("that of the current video") << u"video"_s << 0;
    }

    void onTheEditingTabTheFolderOfTheFirstFileCounts()
    {
        QFETCH(QString, locked);
        QFETCH(int, alerts);
        open({convertible(file(u"video/a.mkv"_s))});
        m_fixture->controller().setCurrentTab(u"Edit Files"_s);
        m_fixture->controller().currentSelection()->setEditFilesURLsList(
            support::urlsOf({file(u"one/1.mkv"_s), file(u"two/2.mkv"_s)}));
        startWithLocked(locked, u"Join"_s);
        QCOMPARE(m_fixture->alerts().shown().size(), alerts);
        QCOMPARE(m_fixture->jobs().size(), 1 - alerts);
    }

    void aSaveFolderThatIsSetTakesTheFilesPlace_data()
    {
        QTest::addColumn<QString>("locked");
        QTest::addColumn<int>("alerts");
        QTest::newRow("the film's folder is locked") << u"film"_s << 0;
        QTest::newRow("the save folder is locked") << u"save"_s << 1;
    }

    void aSaveFolderThatIsSetTakesTheFilesPlace()
    {
        QFETCH(QString, locked);
        QFETCH(int, alerts);
        open({convertible(file(u"film/a.mkv"_s))});
        file(u"save/anything"_s);
        m_fixture->program().preferences().setSaveDirectoryPath(m_fixture->path(u"save"_s));
        startWithLocked(locked, u"Convert"_s);
        QCOMPARE(m_fixture->alerts().shown().size(), alerts);
        QCOMPARE(m_fixture->jobs().size(), 1 - alerts);
    }

    void aSaveFolderThatIsGoneCannotBeWritten()
    {
        open({convertible(file(u"a.mkv"_s))});
        m_fixture->program().preferences().setSaveDirectoryPath(m_fixture->path(u"gone"_s));
        m_fixture->starter().startProcess(u"Convert"_s);
        QCOMPARE(m_fixture->alerts().shown().size(), 1);
        QVERIFY(m_fixture->jobs().isEmpty());
    }

private:
    QString file(const QString &name) const { return m_fixture->scratch().write(name, "film"); }
    void open(const QList<std::pair<QString, TrackList>> &films) { m_fixture->openByHand(films); }
    void startWithLocked(const QString &folder, const QString &title)
    {
        // Another user has to reach the folders, but may not write where it is locked.
        QFile::setPermissions(m_fixture->path(), QFile::Permissions(0x7777));
        for (const QString &name : QDir(m_fixture->path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            QFile::setPermissions(m_fixture->path(name), QFile::Permissions(0x7777));
        QFile::setPermissions(m_fixture->path(folder), QFile::Permissions(0x5555));
        {
            const support::Unprivileged nobody;
            m_fixture->starter().startProcess(title);
        }
        QFile::setPermissions(m_fixture->path(folder), QFile::Permissions(0x7777));
    }

    std::unique_ptr<AppFixture> m_fixture;
};

TESSARAY_TEST(SaveFolderTest)
#include "SaveFolderTest.moc"
