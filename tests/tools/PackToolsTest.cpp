#include "prefs/ToolCheck.h"
#include "prefs/ToolsUnpacker.h"
#include "support/FakeTool.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "tools/KXHelpers.h"
#include "tools/ToolPlaces.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QString output(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(120000) || process.exitCode() != 0)
        return u"failed: "_s + QString::fromUtf8(process.readAll());
    return QString::fromUtf8(process.readAll());
}

/// A machine with only the tools that the test puts there, and the resources packed from it.
struct Machine
{
    void install(const QString &name) const
    {
        support::installScript(scratch.path(folder + u'/' + name), u"echo \"%1 got $*\""_s.arg(name));
    }

    /// Null, or what cmake said.
    QString pack() const
    {
        const QString said =
            output(u"cmake"_s, {u"-DTOOL_FOLDERS="_s + scratch.path(folder),
                                u"-DRESOURCES="_s + scratch.path(u"Resources"_s),
                                u"-DSTAGE="_s + scratch.path(u"stage"_s), u"-P"_s,
                                QStringLiteral(TESSARAY_SOURCE_DIR "/packaging/tools/PackTools.cmake")});
        return said.isEmpty() ? QString() : said;
    }

    QString resource(const QString &name) const { return scratch.path(u"Resources/"_s + name); }
    QStringList resources() const
    {
        return QDir(resource({})).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }
    QDateTime packedAt(const QString &name) const { return QFileInfo(resource(name)).lastModified(); }
    QString content(const QString &archive, const QString &member) const
    {
        return output(u"unzip"_s, {u"-p"_s, resource(archive), member});
    }

    support::Scratch scratch;
    QString folder = u"bin"_s;
};

class Places final : public tools::ToolPlaces
{
public:
    explicit Places(const QString &folder)
        : m_folder(folder)
    {
    }
    QUrl toolsLocation() const override { return QUrl::fromLocalFile(m_folder); }
    QUrl resourcesLocation() const override { return QUrl::fromLocalFile(m_folder); }
    QString workingFolder() const override { return m_folder; }

private:
    QString m_folder;
};

const QStringList &everything()
{
    static const QStringList tools{u"ffmpeg"_s,    u"ffprobe"_s,      u"mkvmerge"_s, u"mkvextract"_s,
                                   u"mkvinfo"_s,   u"MP4Box"_s,       u"mplayer"_s,  u"mediainfo"_s,
                                   u"tesseract"_s, u"AtomicParsley"_s};
    return tools;
}

} // namespace

class PackToolsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyToolIsPackedWhereItIsLookedFor()
    {
        Machine machine;
        machine.folder = u"the tools"_s;
        for (const QString &tool : everything())
            machine.install(tool);
        QVERIFY2(machine.pack().isNull(), qPrintable(machine.pack()));
        QCOMPARE(machine.resources(),
                 QStringList({u"atomicparsley"_s, u"ffmpeg.zip"_s, u"mediainfo"_s, u"mkvtoolnix.zip"_s,
                              u"mp4box.zip"_s, u"mplayer.zip"_s, u"tesseract"_s}));
        const Places places(machine.resource({}));
        const KXHelpers helpers(&places);
        const QString problem = prefs::ToolsUnpacker(helpers, places).unpack();
        QVERIFY2(problem.isNull(), qPrintable(problem));
        for (const QString &tool : everything()) {
            const QString path = helpers.urlOfApp(tool.toLower()).toLocalFile();
            QVERIFY2(QFileInfo(path).isExecutable(), qPrintable(path));
            QVERIFY(!QFileInfo(path).isSymLink());
            QCOMPARE(prefs::launchedProgram(path), machine.scratch.path(u"the tools/"_s + tool));
            QCOMPARE(output(path, {u"a  b"_s, u"$c"_s}), tool + u" got a  b $c\n"_s);
        }
    }

    void launcherIsTwoLines()
    {
        const Machine machine;
        machine.install(u"mplayer"_s);
        QVERIFY(machine.pack().isNull());
        QCOMPARE(machine.content(u"mplayer.zip"_s, u"mplayer/mplayer"_s),
                 u"#!/bin/sh\nexec \"%1\" \"$@\"\n"_s.arg(machine.scratch.path(u"bin/mplayer"_s)));
    }

    void launcherKeepsItsProcessId()
    {
        const Machine machine;
        machine.install(u"tesseract"_s);
        support::installScript(machine.scratch.path(u"bin/tesseract"_s), u"echo $$"_s);
        QVERIFY(machine.pack().isNull());
        QProcess process;
        process.start(machine.resource(u"tesseract/tesseract"_s), QStringList());
        QVERIFY(process.waitForStarted());
        const qint64 id = process.processId();
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.readAll().trimmed(), QByteArray::number(id));
    }

    void foldersOfAnyNameAreQuoted()
    {
        Machine machine;
        machine.folder = u"a$b`c\"d é'"_s;
        machine.install(u"mediainfo"_s);
        QVERIFY2(machine.pack().isNull(), qPrintable(machine.pack()));
        QCOMPARE(output(machine.resource(u"mediainfo"_s), {u"x"_s}), u"mediainfo got x\n"_s);
        QCOMPARE(prefs::launchedProgram(machine.resource(u"mediainfo"_s)),
                 machine.scratch.path(u"a$b`c\"d é'/mediainfo"_s));
    }

    void whatIsNotInstalledIsLeftOut()
    {
        const Machine machine;
        machine.install(u"ffmpeg"_s);
        machine.install(u"ffprobe"_s);
        QVERIFY(machine.pack().isNull());
        QCOMPARE(machine.resources(), QStringList({u"ffmpeg.zip"_s}));
    }

    void smallLettersServeForMp4boxToo()
    {
        const Machine machine;
        machine.install(u"mp4box"_s);
        QVERIFY(machine.pack().isNull());
        QVERIFY(machine.content(u"mp4box.zip"_s, u"mp4box/mp4box"_s).contains(u"/bin/mp4box\""_s));
    }

    void packingAgainRewritesNothing()
    {
        const Machine machine;
        for (const QString &tool : everything())
            machine.install(tool);
        QVERIFY(machine.pack().isNull());
        QList<QDateTime> before;
        for (const QString &name : machine.resources())
            before.append(machine.packedAt(name));
        QTest::qWait(20);
        QVERIFY(machine.pack().isNull());
        QList<QDateTime> after;
        for (const QString &name : machine.resources())
            after.append(machine.packedAt(name));
        QCOMPARE(after, before);
    }

    void aToolThatMovedIsPackedAgain()
    {
        Machine machine;
        machine.install(u"mplayer"_s);
        machine.install(u"ffmpeg"_s);
        QVERIFY(machine.pack().isNull());
        machine.folder = u"elsewhere"_s;
        machine.install(u"mplayer"_s);
        QVERIFY(machine.pack().isNull());
        QVERIFY(machine.content(u"mplayer.zip"_s, u"mplayer/mplayer"_s).contains(u"/elsewhere/mplayer"_s));
        QCOMPARE(machine.resources(), QStringList({u"mplayer.zip"_s})); // ffmpeg is gone now
    }

    void aRemovedArchiveComesBack()
    {
        const Machine machine;
        machine.install(u"mplayer"_s);
        QVERIFY(machine.pack().isNull());
        QVERIFY(QFile::remove(machine.resource(u"mplayer.zip"_s)));
        QVERIFY(machine.pack().isNull());
        QVERIFY(QFileInfo::exists(machine.resource(u"mplayer.zip"_s)));
    }

    void installedResourcesAreUnpackedAlready()
    {
        const Machine machine;
        for (const QString &tool : everything())
            machine.install(tool);
        QVERIFY(machine.pack().isNull());
        const QString target = machine.scratch.path(u"installed"_s);
        const QString said = output(
            u"cmake"_s, {u"-DSOURCE="_s + machine.resource({}), u"-DTARGET="_s + target, u"-P"_s,
                         QStringLiteral(TESSARAY_SOURCE_DIR "/packaging/tools/InstallResources.cmake")});
        QCOMPARE(said, QString(u""_s));
        const Places places(target);
        const KXHelpers helpers(&places);
        for (const QString &tool : everything())
            QCOMPARE(output(helpers.urlOfApp(tool.toLower()).toLocalFile(), {u"1"_s}), tool + u" got 1\n"_s);
        QVERIFY(QDir(target).entryList({u"*.zip"_s}).isEmpty()); // nothing is left to unpack
    }
};

TESSARAY_TEST(PackToolsTest)
#include "PackToolsTest.moc"
