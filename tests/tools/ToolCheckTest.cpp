#include "prefs/ToolCheck.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "tools/KXHelpers.h"
#include "tools/ToolPlaces.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;
using State = prefs::ToolReport::State;

namespace {

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

/// A tools folder that a test fills.
struct Site
{
    Site()
        : places(scratch.path())
        , helpers(&places)
    {
    }

    QString script(const QString &name, const QByteArray &content) const
    {
        const QString path = scratch.write(name, content);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }
    void launcher(const QString &name, const QString &program) const
    {
        script(name, u"#!/bin/sh\nexec \"%1\" \"$@\"\n"_s.arg(program).toUtf8());
    }
    prefs::ToolReport check(const QString &name) const { return prefs::ToolCheck(places).check(name); }

    support::Scratch scratch;
    Places places;
    KXHelpers helpers;
};

QString installed(const QString &program)
{
    return QStandardPaths::findExecutable(program);
}

} // namespace

class ToolCheckTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void installedToolTellsItsVersion_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("wordBefore"); // in the tool's own first line
        QTest::newRow("ffmpeg") << u"ffmpeg/ffmpeg"_s << QStringList{u"-version"_s} << u"version "_s;
        QTest::newRow("ffprobe") << u"ffmpeg/ffprobe"_s << QStringList{u"-version"_s} << u"version "_s;
        QTest::newRow("mkvmerge") << u"mkvtoolnix/mkvmerge"_s << QStringList{u"--version"_s}
                                  << u"mkvmerge v"_s;
        QTest::newRow("mkvextract") << u"mkvtoolnix/mkvextract"_s << QStringList{u"--version"_s}
                                    << u"mkvextract v"_s;
        QTest::newRow("mkvinfo") << u"mkvtoolnix/mkvinfo"_s << QStringList{u"--version"_s} << u"mkvinfo v"_s;
    }

    void installedToolTellsItsVersion()
    {
        QFETCH(QString, file);
        QFETCH(QStringList, options);
        QFETCH(QString, wordBefore);
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        const Site site;
        site.launcher(file, installed(name));
        const prefs::ToolReport report = site.check(name);
        QCOMPARE(report.state, State::Works);
        QCOMPARE(report.program, installed(name));
        QCOMPARE(report.location, site.scratch.url(file));
        QProcess direct;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
        direct.setProcessEnvironment(environment);
        direct.start(installed(name), options);
        QVERIFY(direct.waitForFinished());
        const QString line = QString::fromUtf8(direct.readAllStandardOutput()).section(u'\n', 0, 0);
        QVERIFY(!report.version.isEmpty());
        QVERIFY2(line.startsWith(line.section(wordBefore, 0, 0) + wordBefore + report.version + u' '),
                 qPrintable(line + u" / "_s + report.version));
    }

    void mplayerIsAskedWithoutAWordInTheUsersHome()
    {
        const Site site;
        QVERIFY(!installed(u"mplayer"_s).isEmpty());
        site.launcher(u"mplayer/mplayer"_s, installed(u"mplayer"_s));
        const QByteArray home = qgetenv("HOME");
        QVERIFY(QDir().mkpath(site.scratch.path(u"home"_s)));
        qputenv("HOME", site.scratch.path(u"home"_s).toUtf8());
        const prefs::ToolReport report = site.check(u"mplayer"_s);
        qputenv("HOME", home);
        QCOMPARE(report.state, State::Works);
        QVERIFY(QDir(site.scratch.path(u"home"_s))
                    .isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    }

    /// Debian builds some without one: what stands in its place is not shown for a version.
    void onlyAVersionIsShownForOne_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("program");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("before"); // in what the tool itself says
        QTest::newRow("mplayer") << u"mplayer/mplayer"_s << u"mplayer"_s
                                 << QStringList{u"-noconfig"_s, u"all"_s} << u"\nMPlayer "_s;
        QTest::newRow("atomicparsley") << u"atomicparsley"_s << u"AtomicParsley"_s
                                       << QStringList{u"--version"_s} << u"\nAtomicParsley version: "_s;
    }

    void onlyAVersionIsShownForOne()
    {
        QFETCH(QString, file);
        QFETCH(QString, program);
        QFETCH(QStringList, options);
        QFETCH(QString, before);
        const Site site;
        QProcess direct;
        direct.start(installed(program), options);
        QVERIFY(direct.waitForFinished());
        const QString said = u'\n' + QString::fromUtf8(direct.readAllStandardOutput());
        QVERIFY2(said.contains(before), qPrintable(said));
        const QString word = said.section(before, 1).trimmed().section(u' ', 0, 0).section(u'\n', 0, 0);
        const bool isVersion = !word.startsWith(u"UNKNOWN"_s) && word != u"(utf8)"_s;
        site.launcher(file, installed(program));
        const prefs::ToolReport report = site.check(QString::fromLatin1(QTest::currentDataTag()));
        QCOMPARE(report.state, State::Works);
        QCOMPARE(report.version, isVersion ? word : QString());
    }

    void versionIsReadFromWhatToolsPrint_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("printed");
        QTest::addColumn<QString>("version");
        QTest::newRow("mp4box") << u"mp4box/mp4box"_s
                                << QByteArray("MP4Box - GPAC version 2.2.1-rev0 (c) 2000-2023")
                                << u"2.2.1-rev0"_s;
        QTest::newRow("mplayer")
            << u"mplayer/mplayer"_s
            << QByteArray("Creating config file: /MPlayer x/config\nMPlayer 1.5 (Debian), built") << u"1.5"_s;
        QTest::newRow("atomicparsley")
            << u"atomicparsley"_s << QByteArray("AtomicParsley version: 20210715.151551.0 e7ad03a (utf8)")
            << u"20210715.151551.0"_s;
        QTest::newRow("mplayer without one")
            << u"mplayer/mplayer"_s << QByteArray("MPlayer UNKNOWN-12 (C) 2000-2023 MPlayer Team")
            << QString();
        QTest::newRow("mplayer of a day")
            << u"mplayer/mplayer"_s << QByteArray("MPlayer SVN-r38407-13 (C) 2000-2023 MPlayer Team")
            << u"SVN-r38407-13"_s;
        QTest::newRow("atomicparsley without one")
            << u"atomicparsley"_s << QByteArray("AtomicParsley version:   (utf8)") << QString();
        QTest::newRow("mediainfo") << u"mediainfo"_s
                                   << QByteArray("MediaInfo Command line,\nMediaInfoLib - v23.04")
                                   << u"23.04"_s;
        QTest::newRow("tesseract") << u"tesseract/tesseract"_s
                                   << QByteArray("tesseract 5.3.0\n leptonica-1.82.0") << u"5.3.0"_s;
        QTest::newRow("ffmpeg") << u"ffmpeg/ffmpeg"_s
                                << QByteArray("ffmpeg version N-109968-gcc76e8340d Copyright")
                                << u"N-109968-gcc76e8340d"_s;
    }

    void versionIsReadFromWhatToolsPrint()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, printed);
        QFETCH(QString, version);
        const Site site;
        site.script(file, "#!/bin/sh\ncat >&2 <<'END'\n" + printed + "\nEND\n");
        const prefs::ToolReport report =
            site.check(QString::fromLatin1(QTest::currentDataTag()).section(u' ', 0, 0));
        QCOMPARE(report.version, version);
        QVERIFY(report.works());
        QCOMPARE(report.program, site.scratch.path(file)); // no launcher: the program itself
    }

    void missingTool()
    {
        const Site site;
        const prefs::ToolReport report = site.check(u"mkvextract"_s);
        QCOMPARE(report.state, State::Missing);
        QVERIFY(report.program.isNull());
        QVERIFY(report.version.isNull());
        QCOMPARE(report.location, site.scratch.url(u"mkvtoolnix/mkvextract"_s));
        QVERIFY(report.switchesOff.contains(u"subtitles"_s));
        QCOMPARE(prefs::describe(report.state), u"is missing"_s);
    }

    void aFolderIsNoTool()
    {
        const Site site;
        QVERIFY(QDir().mkpath(site.scratch.path(u"mplayer/mplayer"_s)));
        QCOMPARE(site.check(u"mplayer"_s).state, State::Missing);
    }

    void toolWithoutRunBits()
    {
        const Site site;
        site.scratch.write(u"ffmpeg/ffmpeg"_s, "#!/bin/sh\necho version 1\n");
        QCOMPARE(site.check(u"ffmpeg"_s).state, State::NotExecutable);
    }

    void launcherOfARemovedProgram()
    {
        const Site site;
        const QString program = site.script(u"bin/the \"$`\\tool"_s, "#!/bin/sh\necho version 7\n");
        site.script(u"ffmpeg/ffmpeg"_s, "#!/bin/sh\nexec \"" + site.scratch.path(u"bin"_s).toUtf8() +
                                            "/the \\\"\\$\\`\\\\tool\" \"$@\"\n");
        QCOMPARE(site.check(u"ffmpeg"_s).version, u"7"_s);
        QCOMPARE(site.check(u"ffmpeg"_s).program, program);
        QVERIFY(QFile::setPermissions(program, QFile::ReadOwner));
        QCOMPARE(site.check(u"ffmpeg"_s).state, State::Hollow);
        QVERIFY(QFile::remove(program));
        const prefs::ToolReport report = site.check(u"ffmpeg"_s);
        QCOMPARE(report.state, State::Hollow);
        QVERIFY(!report.works());
        QCOMPARE(report.program, program);
    }

    void toolThatFailsOrSaysNothing_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::newRow("fails") << QByteArray("#!/bin/sh\necho version 1.0\nexit 1\n");
        QTest::newRow("dies") << QByteArray("#!/bin/sh\necho version 1.0\nkill -ABRT $$\n");
        QTest::newRow("says nothing") << QByteArray("#!/bin/sh\n");
        QTest::newRow("a library is gone")
            << QByteArray("#!/bin/sh\necho 'libx.so: version 3 not found' >&2\nexit 127\n");
        QTest::newRow("is no program") << QByteArray("\177ELF");
    }

    void toolThatFailsOrSaysNothing()
    {
        QFETCH(QByteArray, script);
        const Site site;
        site.script(u"ffmpeg/ffprobe"_s, script);
        const prefs::ToolReport report = site.check(u"ffprobe"_s);
        QCOMPARE(report.state, State::Silent);
        QVERIFY(report.version.isNull());
    }

    void hangingToolIsEndedAfterAShortWhile()
    {
        const Site site;
        site.script(u"ffmpeg/ffprobe"_s,
                    "#!/bin/sh\ntrap '' TERM\necho $$ > \"$0.pid\"\nsleep 1000; sleep 1000\n");
        QCOMPARE(site.check(u"ffprobe"_s).state, State::Silent);
        const QString pid = QString::fromUtf8(site.scratch.read(u"ffmpeg/ffprobe.pid"_s)).trimmed();
        QVERIFY(!pid.isEmpty());
        QTRY_VERIFY(!site.helpers.processIsRunningWithPID(pid));
    }

    void allToolsAreLookedAtInOrder()
    {
        const Site site;
        site.script(u"ffmpeg/ffprobe"_s, "#!/bin/sh\necho ffprobe version 1\n");
        QStringList names;
        QStringList working;
        for (const prefs::ToolReport &report : prefs::ToolCheck(site.places).checkAll()) {
            names.append(report.name);
            if (report.works())
                working.append(report.name);
            QVERIFY2(report.switchesOff.endsWith(u'.'), qPrintable(report.name));
        }
        QCOMPARE(names, QStringList({u"ffmpeg"_s, u"ffprobe"_s, u"mkvmerge"_s, u"mkvextract"_s, u"mkvinfo"_s,
                                     u"mp4box"_s, u"mplayer"_s, u"atomicparsley"_s, u"mediainfo"_s,
                                     u"tesseract"_s}));
        QCOMPARE(working, QStringList{u"ffprobe"_s});
        QCOMPARE(site.check(u"rm"_s).state, State::Missing);
    }
};

TESSARAY_TEST(ToolCheckTest)
#include "ToolCheckTest.moc"
