// What is installed beside the programs: manual pages, desktop entry, metainfo, icons, documents, and an
// installed program that finds its resources through the link in bin.
#include "support/CliFixture.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>
#include <QXmlStreamReader>
#include <QtEndian>

using namespace Qt::StringLiterals;
using support::Scratch;

namespace {

const QString id = u"org.tessaray.Tessaray"_s;
const QString source = QStringLiteral(TESSARAY_SOURCE_DIR);
const QString packaging = source + u"/packaging"_s;

QString contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// Standard output and error of a program that must end well.
QString said(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
        return program + u" did not run"_s;
    const QString words = QString::fromUtf8(process.readAll());
    return process.exitCode() == 0 ? words : u"%1 failed: %2"_s.arg(program, words);
}

/// All that is in the pattern's first group.
QStringList all(const QString &text, const QString &pattern)
{
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    QStringList found;
    for (auto match = expression.globalMatch(text); match.hasNext();)
        found.append(match.next().captured(1));
    return found;
}

/// A manual page as its reader sees it, on one line and without bold and hyphens.
QString page(const QString &name)
{
    const QString path = packaging + u"/man/"_s + name;
    return said(u"groff"_s, {u"-man"_s, u"-Tascii"_s, u"-P-cbou"_s, u"-rLL=2000n"_s, path}).simplified();
}

} // namespace

class PackagingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QCOMPARE(said(u"cmake"_s, {u"--install"_s, QStringLiteral(TESSARAY_BUILD_DIR), u"--prefix"_s, root(),
                                   u"--strip"_s})
                     .count(u"failed"_s),
                 0);
    }

    void manualPagesHaveNoFaults_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("window") << u"tessaray.1"_s;
        QTest::newRow("terminal") << u"tessaray-cli.1"_s;
    }

    void manualPagesHaveNoFaults()
    {
        QFETCH(QString, name);
        const QString path = root(u"share/man/man1/"_s + name);
        QVERIFY(QFile::exists(path));
        QCOMPARE(said(u"groff"_s, {u"-man"_s, u"-ww"_s, u"-z"_s, u"-Tascii"_s, path}), QString());
    }

    /// Whatever help tells, the page tells too, and the page names no option that there is not.
    void theManualPageIsComplete()
    {
        const support::CliFixture cli;
        const QString text = page(u"tessaray-cli.1"_s);
        const QString general = QString::fromUtf8(cli.run({u"--help"_s}).output);
        const QStringList commands = all(general, u"^  ([a-z]+) "_s);
        QVERIFY(commands.size() > 10);
        QStringList options = all(general, u"^  (--[a-z-]+)"_s);
        for (const QString &command : commands) {
            QVERIFY2(text.contains(u' ' + command + u' '), qPrintable(command));
            options += all(QString::fromUtf8(cli.run({command, u"--help"_s}).output), u"^  (--[a-z-]+)"_s);
        }
        for (const QString &option : std::as_const(options))
            QVERIFY2(text.contains(option), qPrintable(option));
        for (const QString &option : all(text, u"(--[a-z][a-z-]+)"_s))
            QVERIFY2(options.contains(option), qPrintable(option));
        for (const QString &key :
             all(QString::fromUtf8(cli.run({u"prefs"_s, u"list"_s}).output), u"^(\\w+)"_s))
            QVERIFY2(text.contains(key), qPrintable(key));
    }

    void theManualPageSaysTheExitStatus()
    {
        const QString text = page(u"tessaray-cli.1"_s).section(u"EXIT STATUS"_s, 1);
        for (const auto &status : {u"0 Success"_s, u"1 Finished with warnings"_s, u"2 Something failed"_s,
                                   u"64 Wrong usage"_s, u"130 Interrupted"_s, u"143 Terminated"_s})
            QVERIFY2(text.contains(status), qPrintable(status));
    }

    void theVersionIsToldInOneLine()
    {
        const QString version =
            all(contentOf(source + u"/CMakeLists.txt"_s), u"Tessaray VERSION ([0-9.]+)"_s).value(0);
        QVERIFY(!version.isEmpty());
        QCOMPARE(said(root(u"bin/tessaray-cli"_s), {u"--version"_s}), u"tessaray-cli %1\n"_s.arg(version));
        QCOMPARE(said(u"env"_s, withoutDisplay(u"--version"_s)), u"tessaray %1\n"_s.arg(version));
    }

    void theWindowProgramExplainsItselfWithoutADisplay()
    {
        QVERIFY(said(u"env"_s, withoutDisplay(u"--help"_s)).contains(u"--defaults <FILE>"_s));
    }

    void theDesktopEntryIsValid()
    {
        const QString path = root(u"share/applications/%1.desktop"_s.arg(id));
        QVERIFY(QFile::exists(path));
        QCOMPARE(said(u"desktop-file-validate"_s, {path}), QString());
        const QString entry = contentOf(path);
        QCOMPARE(
            all(entry, u"^MimeType=(.*)$"_s),
            QStringList({u"video/x-matroska;video/mp4;video/quicktime;video/x-msvideo;video/mp2t;video/x-flv;"
                         "video/x-ms-wmv;video/ogg;application/x-subrip;"_s}));
        QCOMPARE(all(entry, u"^Exec=(.*)$"_s), QStringList({u"tessaray %F"_s}));
        QCOMPARE(all(entry, u"^Icon=(.*)$"_s), QStringList({id}));
    }

    void theMetainfoIsValid()
    {
        const QString path = root(u"share/metainfo/%1.metainfo.xml"_s.arg(id));
        QVERIFY(QFile::exists(path));
        const QString verdict = said(u"appstreamcli"_s, {u"validate"_s, u"--no-net"_s, path});
        QVERIFY2(verdict.contains(u"successful"_s) && !verdict.contains(u"warning"_s), qPrintable(verdict));
        const QString text = contentOf(path);
        QCOMPARE(all(text, u"<id>(.*)</id>"_s), QStringList({id}));
        QCOMPARE(all(text, u"desktop-id\">(.*)</launchable>"_s), QStringList({id + u".desktop"_s}));
        const QString entry = contentOf(root(u"share/applications/%1.desktop"_s.arg(id)));
        QCOMPARE(all(text, u"<mediatype>(.*)</mediatype>"_s).join(u';') + u';',
                 all(entry, u"^MimeType=(.*)$"_s).value(0));
        QVERIFY(!text.contains(u'@'));
    }

    void iconsHaveTheSizeOfTheirFolder()
    {
        for (const int size : {16, 24, 32, 48, 64, 128, 256, 512}) {
            QFile icon(root(u"share/icons/hicolor/%1x%1/apps/%2.png"_s.arg(size).arg(id)));
            QVERIFY2(icon.open(QIODevice::ReadOnly), qPrintable(icon.fileName()));
            const QByteArray head =
                icon.read(24); // signature, length and name of the first chunk, width, height
            QVERIFY(head.startsWith("\x89PNG\r\n"));
            QCOMPARE(qFromBigEndian<qint32>(head.constData() + 16), size);
            QCOMPARE(qFromBigEndian<qint32>(head.constData() + 20), size);
        }
        QVERIFY(contentOf(root(u"share/icons/hicolor/scalable/apps/%1.svg"_s.arg(id))).contains(u"<svg"_s));
    }

    /// XML throughout, no address outside, and every link leads somewhere.
    void documentsStandOnTheirOwn_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("guide") << u"guide.html"_s;
        QTest::newRow("troubleshooting") << u"troubleshooting.html"_s;
    }

    void documentsStandOnTheirOwn()
    {
        QFETCH(QString, name);
        const QString folder = root(u"lib/tessaray/Resources/docs/"_s);
        const QString text = contentOf(folder + name);
        QVERIFY2(text.contains(u"</html>"_s), qPrintable(folder + name));
        QVERIFY(!text.contains(u"//"_s) && !text.contains(u"<script"_s));
        for (const QString &target : all(text, u"(?:href|src)=\"([^\"]*)\""_s)) {
            const QString file = target.section(u'#', 0, 0);
            const QString place = target.section(u'#', 1);
            const QString there = file.isEmpty() ? text : contentOf(folder + file);
            QVERIFY2(!there.isEmpty(), qPrintable(target));
            QVERIFY2(place.isEmpty() || there.contains(u"id=\"%1\""_s.arg(place)), qPrintable(target));
        }
        QVERIFY(contentOf(folder + u"style.css"_s).contains(u"prefers-color-scheme: dark"_s));
    }

    void theBundlesPropertyListIsWellFormed()
    {
        QXmlStreamReader reader(contentOf(packaging + u"/macos/Info.plist.in"_s));
        QStringList texts;
        while (!reader.atEnd()) {
            if (reader.readNext() == QXmlStreamReader::Characters && !reader.isWhitespace())
                texts.append(reader.text().toString());
        }
        QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
        for (const auto &word : {id, u"CFBundleDocumentTypes"_s, u"public.movie"_s, u"mkv"_s, u"srt"_s})
            QVERIFY2(texts.contains(word), qPrintable(word));
    }

    /// Through the link in bin, in a read-only folder.
    void theInstalledProgramUsesTheInstalledTools()
    {
        const QFileInfo link(root(u"bin/tessaray-cli"_s));
        QVERIFY(link.isSymLink());
        QCOMPARE(link.canonicalFilePath(),
                 QFileInfo(root(u"lib/tessaray/bin/tessaray-cli"_s)).canonicalFilePath());
        const QString resources = QFileInfo(root(u"lib/tessaray/Resources"_s)).canonicalFilePath();
        for (const auto *tool : {"ffmpeg/ffmpeg", "ffmpeg/ffprobe", "mkvtoolnix/mkvmerge", "mplayer/mplayer"})
            QVERIFY2(QFileInfo(resources + u'/' + QLatin1String(tool)).isExecutable(), tool);
        QVERIFY(QDir(resources).entryList({u"*.zip"_s}).isEmpty());
        const QStringList before = everything(resources);
        QVERIFY(QFile::setPermissions(resources, QFile::ReadOwner | QFile::ExeOwner));
        const QString defaults = m_scratch.path(u"defaults.json"_s);
        const QString tools = said(link.filePath(), {u"tools"_s, u"--defaults"_s, defaults});
        QVERIFY2(tools.contains(QRegularExpression(u"ffmpeg +%1/ffmpeg/ffmpeg  [0-9]"_s.arg(resources))),
                 qPrintable(tools));
        for (const QString &line : tools.split(u'\n', Qt::SkipEmptyParts))
            QVERIFY2(line.contains(QRegularExpression(
                         u"^\\w+ +/\\S+  ([0-9N]\\S+|works; its version is unknown|is missing\\. .*)$"_s)),
                     qPrintable(line));
        QVERIFY(QFile::setPermissions(resources, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QCOMPARE(everything(resources), before);
    }

private:
    QString root(const QString &name = {}) const { return m_scratch.path(u"usr/"_s + name); }
    /// How the window program is asked where there is no display.
    QStringList withoutDisplay(const QString &word) const
    {
        return {u"-u"_s, u"DISPLAY"_s, u"-u"_s, u"WAYLAND_DISPLAY"_s, root(u"bin/tessaray"_s), word};
    }
    static QStringList everything(const QString &folder)
    {
        QStringList paths;
        for (QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
             files.hasNext();)
            paths.append(files.next());
        paths.sort();
        return paths;
    }

    Scratch m_scratch;
};

TESSARAY_TEST(PackagingTest)
#include "PackagingTest.moc"
