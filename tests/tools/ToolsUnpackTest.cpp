#include "platform/FileLock.h"
#include "prefs/ToolArchives.h"
#include "prefs/ToolsUnpacker.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/Unprivileged.h"
#include "support/Waiting.h"
#include "tools/KXHelpers.h"
#include "tools/ToolPlaces.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QProcess>
#include <QTest>
#include <QThread>

#include <atomic>
#include <memory>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

class Places final : public tools::ToolPlaces
{
public:
    explicit Places(const QString &folder)
        : m_folder(folder)
    {
    }
    QUrl toolsLocation() const override { return QUrl::fromLocalFile(m_folder + u"/tools"_s); }
    QUrl resourcesLocation() const override { return QUrl::fromLocalFile(m_folder + u"/archives"_s); }
    QString workingFolder() const override { return m_folder; }

private:
    QString m_folder;
};

/// Runs for real and remembers every command.
class Listener final : public KXHelpers
{
public:
    using KXHelpers::KXHelpers;
    void logObjectWithString(const QVariant &object, const QString &) const override
    {
        m_commands.append(object.toString());
    }
    QStringList takeCommands() const { return std::exchange(m_commands, {}); }

private:
    mutable QStringList m_commands;
};

/// A folder with archives of launchers, a tools folder, and who unpacks one into the other.
struct Site
{
    explicit Site(const QString &name = u"site"_s)
        : folder(scratch.path(name))
        , places(folder)
        , listener(&places)
    {
        QDir().mkpath(folder + u"/tools"_s);
        QDir().mkpath(folder + u"/archives"_s);
    }

    /// Packs launchers of these tools with a real zip.
    void pack(const QString &archive, const QStringList &toolNames,
              const QString &program = u"/bin/true"_s) const
    {
        const QString stage = scratch.path(u"stage"_s);
        QDir(stage).removeRecursively();
        for (const QString &tool : toolNames) {
            const QString file = scratch.write(u"stage/%1/%2"_s.arg(archive, tool),
                                               u"#!/bin/sh\nexec \"%1\" \"$@\"\n"_s.arg(program).toUtf8());
            QFile::setPermissions(file, QFile::Permissions(0x7755));
        }
        const QString target = folder + u"/archives/"_s + archive + u".zip"_s;
        QFile::remove(target);
        QProcess zip;
        zip.setWorkingDirectory(stage);
        zip.start(u"zip"_s, {u"-qr"_s, target, archive});
        QVERIFY2(zip.waitForFinished() && zip.exitCode() == 0, zip.readAllStandardError().constData());
    }

    void packAll() const
    {
        for (const auto &archive : prefs::toolArchives())
            pack(archive.folder, archive.tools);
    }

    QString tool(const QString &name) const { return folder + u"/tools/"_s + name; }
    QString unpack() const { return prefs::ToolsUnpacker(listener, places).unpack(); }
    /// A wait for another program would take so long that the test is ended as a hang.
    QString unpackWithoutWaiting() const
    {
        return prefs::ToolsUnpacker(listener, places).unpack(10 * support::patience);
    }

    support::Scratch scratch;
    QString folder;
    Places places;
    Listener listener;
};

const QStringList &allTools()
{
    static const QStringList tools{
        u"ffmpeg/ffmpeg"_s,      u"ffmpeg/ffprobe"_s, u"mkvtoolnix/mkvmerge"_s, u"mkvtoolnix/mkvextract"_s,
        u"mkvtoolnix/mkvinfo"_s, u"mp4box/mp4box"_s,  u"mplayer/mplayer"_s};
    return tools;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

ino_t inodeOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
}

void verifyWhole(const Site &site)
{
    for (const QString &tool : allTools()) {
        const QString path = site.tool(tool);
        QVERIFY2(QFileInfo(path).isExecutable(), qPrintable(path));
        QCOMPARE(contentOf(path), QByteArray("#!/bin/sh\nexec \"/bin/true\" \"$@\"\n"));
    }
}

constexpr auto readOnly = QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup | QFile::ExeGroup |
                          QFile::ReadOther | QFile::ExeOther;
constexpr auto writable = readOnly | QFile::WriteOwner;

/// Makes the tools folder unwritable (and everything above it reachable) for Unprivileged.
void closeToolsFolder(const Site &site)
{
    QFile::setPermissions(site.scratch.path(), writable);
    QFile::setPermissions(site.folder + u"/tools"_s, readOnly);
}

void openToolsFolder(const Site &site)
{
    QFile::setPermissions(site.folder + u"/tools"_s, writable);
}

} // namespace

class ToolsUnpackTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freshFolderGetsEveryTool()
    {
        const Site site;
        site.packAll();
        QVERIFY(site.unpack().isNull());
        verifyWhole(site);
        const QString line = u"unzip -d \"%1/tools\" -uoq \"%1/archives/%2.zip\" '%2/*'"_s;
        QCOMPARE(site.listener.takeCommands(),
                 QStringList({line.arg(site.folder, u"ffmpeg"_s), line.arg(site.folder, u"mkvtoolnix"_s),
                              line.arg(site.folder, u"mp4box"_s), line.arg(site.folder, u"mplayer"_s)}));
        QCOMPARE(
            QDir(site.folder + u"/tools"_s).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
            QStringList({u"ffmpeg"_s, u"mkvtoolnix"_s, u"mp4box"_s, u"mplayer"_s})); // the lock is gone
    }

    void secondRunTouchesNothing()
    {
        const Site site;
        site.packAll();
        QVERIFY(site.unpack().isNull());
        QList<ino_t> before;
        for (const QString &tool : allTools())
            before.append(inodeOf(site.tool(tool)));
        site.listener.takeCommands();
        QVERIFY(site.unpack().isNull());
        QCOMPARE(site.listener.takeCommands().size(), 4); // no second look at any archive
        QList<ino_t> after;
        for (const QString &tool : allTools())
            after.append(inodeOf(site.tool(tool)));
        QCOMPARE(after, before);
    }

    void onlyTheArchivesThatAreThereAreUnpacked()
    {
        const Site site;
        site.pack(u"mkvtoolnix"_s, {u"mkvmerge"_s, u"mkvextract"_s, u"mkvinfo"_s});
        QVERIFY(site.unpack().isNull());
        QCOMPARE(site.listener.takeCommands().size(), 1);
        QVERIFY(QFileInfo(site.tool(u"mkvtoolnix/mkvinfo"_s)).isExecutable());
        QVERIFY(!QFileInfo::exists(site.tool(u"ffmpeg"_s)));
    }

    void withoutArchivesNothingIsRun()
    {
        const Site site;
        QVERIFY(site.unpack().isNull());
        QCOMPARE(site.listener.takeCommands(), QStringList());
        QVERIFY(
            QDir(site.folder + u"/tools"_s).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    }

    void withoutArchivesThereIsNoWait()
    {
        const Site site;
        QLockFile lock(site.folder + u"/tools/.unpacking.lock"_s);
        QVERIFY(lock.lock());
        QVERIFY(site.unpackWithoutWaiting().isNull());
    }

    void aNewerArchiveReplacesWhatIsThere()
    {
        const Site site;
        site.pack(u"mplayer"_s, {u"mplayer"_s}, u"/bin/false"_s);
        QVERIFY(site.unpack().isNull());
        QTest::qWait(1100); // archives count in seconds
        site.pack(u"mplayer"_s, {u"mplayer"_s}, u"/bin/true"_s);
        QVERIFY(site.unpack().isNull());
        QVERIFY(contentOf(site.tool(u"mplayer/mplayer"_s)).contains("/bin/true"));
    }

    void lostRunBitIsRepaired()
    {
        const Site site;
        site.packAll();
        QVERIFY(site.unpack().isNull());
        QVERIFY(QFile::setPermissions(site.tool(u"mkvtoolnix/mkvextract"_s),
                                      QFile::ReadOwner | QFile::WriteOwner));
        site.listener.takeCommands();
        QVERIFY(site.unpack().isNull());
        verifyWhole(site);
        const QStringList commands = site.listener.takeCommands();
        QCOMPARE(commands.size(), 5);
        QVERIFY(commands.at(1).contains(u" -uoq "_s) && commands.at(1).contains(u"mkvtoolnix.zip"_s));
        QVERIFY(commands.at(2).contains(u" -oq "_s) && commands.at(2).contains(u"mkvtoolnix.zip"_s));
    }

    void partlyWrittenFileIsRepaired()
    {
        const Site site;
        site.packAll();
        QVERIFY(site.unpack().isNull());
        // What an unpacking that was killed leaves: half the bytes, newer than the archive, no run bits yet.
        site.scratch.write(u"site/tools/ffmpeg/ffprobe"_s, "#!/bi");
        QFile::setPermissions(site.tool(u"ffmpeg/ffprobe"_s), QFile::ReadOwner | QFile::WriteOwner);
        QVERIFY(site.unpack().isNull());
        verifyWhole(site);
    }

    void emptyFileIsRepaired()
    {
        const Site site;
        site.packAll();
        QVERIFY(site.unpack().isNull());
        site.scratch.write(u"site/tools/mp4box/mp4box"_s, {}); // a full disk leaves this, run bits and all
        QVERIFY(QFileInfo(site.tool(u"mp4box/mp4box"_s)).isExecutable());
        QVERIFY(site.unpack().isNull());
        verifyWhole(site);
    }

    void removedToolComesBack()
    {
        const Site site;
        site.packAll();
        QVERIFY(site.unpack().isNull());
        QVERIFY(QFile::remove(site.tool(u"mplayer/mplayer"_s)));
        QVERIFY(site.unpack().isNull());
        verifyWhole(site);
    }

    void aFolderOfThePatternsNameInTheWorkingFolderDoesNoHarm()
    {
        const Site site;
        site.packAll();
        site.scratch.write(u"work/ffmpeg/other"_s, "x");
        site.scratch.write(u"work/mplayer/some"_s, "x");
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(site.scratch.path(u"work"_s)));
        const QString problem = site.unpack();
        QDir::setCurrent(before);
        QVERIFY2(problem.isNull(), qPrintable(problem));
        verifyWhole(site);
        QCOMPARE(site.listener.takeCommands().size(), 4);
    }

    void foldersMayHaveAnyName()
    {
        const Site site(u"a b$(x)`y\"z'[é]"_s);
        site.packAll();
        const QString problem = site.unpack();
        QVERIFY2(problem.isNull(), qPrintable(problem));
        verifyWhole(site);
    }

    void completeFolderThatCannotBeWrittenIsLeftAlone()
    {
        const Site site;
        site.packAll();
        QVERIFY(site.unpack().isNull());
        site.listener.takeCommands();
        closeToolsFolder(site);
        QString problem;
        {
            const support::Unprivileged other;
            problem = site.unpack();
        }
        openToolsFolder(site);
        QVERIFY2(problem.isNull(), qPrintable(problem));
        QCOMPARE(site.listener.takeCommands(), QStringList());
        verifyWhole(site);
    }

    void incompleteFolderThatCannotBeWrittenIsSaid()
    {
        const Site site;
        site.packAll();
        QVERIFY(site.unpack().isNull());
        QVERIFY(QFile::remove(site.tool(u"ffmpeg/ffprobe"_s)));
        site.listener.takeCommands();
        closeToolsFolder(site);
        QString problem;
        {
            const support::Unprivileged other;
            problem = site.unpackWithoutWaiting(); // for a lock that can't be had
        }
        openToolsFolder(site);
        QVERIFY2(problem.contains(site.folder + u"/tools"_s), qPrintable(problem));
        QCOMPARE(site.listener.takeCommands(), QStringList());
    }

    void damagedArchiveIsSaidAndTheOthersAreUnpacked()
    {
        const Site site;
        site.packAll();
        site.scratch.write(u"site/archives/mkvtoolnix.zip"_s, "no zip at all");
        const QString problem = site.unpack();
        QVERIFY2(problem.contains(u"mkvtoolnix.zip did not give mkvmerge, mkvextract, mkvinfo."_s),
                 qPrintable(problem));
        QVERIFY(QFileInfo(site.tool(u"ffmpeg/ffmpeg"_s)).isExecutable());
        QVERIFY(QFileInfo(site.tool(u"mplayer/mplayer"_s)).isExecutable());
    }

    void archiveWithoutItsToolIsSaid()
    {
        const Site site;
        site.pack(u"ffmpeg"_s, {u"ffmpeg"_s});
        const QString problem = site.unpack();
        QVERIFY2(problem.startsWith(u"ffmpeg.zip did not give ffprobe."_s), qPrintable(problem));
    }

    /// A kill at the wrong moment and a full disk leave this.
    void anEmptyLockBlocksNothing()
    {
        const Site site;
        site.packAll();
        site.scratch.write(u"site/tools/.unpacking.lock"_s, {});
        QVERIFY(site.unpackWithoutWaiting().isNull());
        verifyWhole(site);
    }

    void whoUnpacksIsWaitedFor()
    {
        const Site site;
        site.packAll();
        auto holder = std::make_unique<platform::FileLock>(site.folder + u"/tools/.unpacking.lock"_s);
        QVERIFY(holder->tryLock(0));
        std::atomic_bool isReleased = false;
        const std::unique_ptr<QThread> other(QThread::create([&] {
            QThread::msleep(700);
            isReleased = true;
            holder.reset();
        }));
        other->start();
        QVERIFY(site.unpack().isNull());
        QVERIFY(isReleased);
        other->wait();
        verifyWhole(site);
    }

    void programsMayStartTogether_data()
    {
        QTest::addColumn<bool>("lockIsLeft");
        QTest::newRow("a fresh folder") << false;
        QTest::newRow("an empty lock was left") << true;
    }

    void programsMayStartTogether()
    {
        QFETCH(bool, lockIsLeft);
        const Site site;
        site.packAll();
        if (lockIsLeft)
            site.scratch.write(u"site/tools/.unpacking.lock"_s, {});
        std::vector<std::unique_ptr<QProcess>> programs;
        for (int number = 0; number < 4; ++number) {
            programs.push_back(std::make_unique<QProcess>());
            programs.back()->start(QCoreApplication::applicationFilePath(), {u"--unpack"_s, site.folder});
        }
        for (const auto &program : programs) {
            QVERIFY(program->waitForFinished());
            QCOMPARE(program->readAllStandardError(), QByteArray());
            QCOMPARE(program->exitCode(), 0);
        }
        verifyWhole(site);
    }
};

namespace {

/// One of the programs that start together.
int unpackOnce(const QString &folder)
{
    const Places places(folder);
    const KXHelpers helpers(&places);
    const QString problem = prefs::ToolsUnpacker(helpers, places).unpack();
    if (!problem.isNull())
        qCritical("%s", qPrintable(problem));
    const QString tool = folder + u"/tools/mplayer/mplayer"_s;
    return problem.isNull() && QProcess::execute(tool, {}) == 0 ? 0 : 1;
}

} // namespace

TESSARAY_TEST(ToolsUnpackTest)
TESSARAY_ROLE("--unpack", unpackOnce(words.value(1)))
#include "ToolsUnpackTest.moc"
