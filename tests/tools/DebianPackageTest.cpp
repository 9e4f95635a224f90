// The Debian package: what Debian's own checks ask of one, and nothing that another package brings.
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using support::Scratch;

namespace {

QString outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    const bool hasEnded = process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit;
    const QString words = QString::fromUtf8(process.readAll());
    return hasEnded && process.exitCode() == 0 ? words : u"%1 failed: %2"_s.arg(program, words);
}

} // namespace

class DebianPackageTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Packs what is installed. A build tree packs the same way, but would be brought up to date before.
    void initTestCase()
    {
        const QString build = QStringLiteral(TESSARAY_BUILD_DIR);
        const QString installed = m_scratch.path(u"installed"_s);
        const QString said =
            outputOf(u"cmake"_s, {u"--install"_s, build, u"--prefix"_s, installed + u"/usr"_s, u"--strip"_s});
        QVERIFY2(!said.contains(u"failed"_s), qPrintable(said));
        const QString packed =
            outputOf(u"cpack"_s, {u"--config"_s, build + u"/CPackConfig.cmake"_s, u"-G"_s, u"DEB"_s, u"-B"_s,
                                  m_scratch.path(u"packed"_s), u"-D"_s, u"CPACK_INSTALL_CMAKE_PROJECTS="_s,
                                  u"-D"_s, u"CPACK_INSTALLED_DIRECTORIES=%1;/"_s.arg(installed)});
        const QDir folder(m_scratch.path(u"packed"_s));
        const QStringList names = folder.entryList({u"*.deb"_s}, QDir::Files);
        QVERIFY2(names.size() == 1, qPrintable(packed));
        m_package = folder.filePath(names.first());
        m_contents = outputOf(u"dpkg-deb"_s, {u"--contents"_s, m_package});
    }

    void itsMaintainerCanBeWrittenTo()
    {
        const QString maintainer = field(u"Maintainer"_s);
        QVERIFY2(maintainer.contains(QRegularExpression(u"^[\\w ]+ <\\w+@\\w+\\.org>$"_s)),
                 qPrintable(maintainer));
    }

    /// What has changed in the program, and what has changed in its package.
    void changelogsAreCompressed()
    {
        const QString folder = u"./usr/share/doc/tessaray/"_s;
        QVERIFY(contentOf(folder + u"changelog.gz"_s).startsWith(u"# Changelog\n"_s));
        const QString changes = contentOf(folder + u"changelog.Debian.gz"_s);
        QVERIFY2(changes.startsWith(u"tessaray (%1) "_s.arg(field(u"Version"_s))), qPrintable(changes));
        QVERIFY2(changes.contains(u"\n -- %1  "_s.arg(field(u"Maintainer"_s))), qPrintable(changes));
    }

    void manualPagesAreCompressed()
    {
        for (const auto &page : {u"tessaray.1"_s, u"tessaray-cli.1"_s}) {
            const QString path = u"./usr/share/man/man1/"_s + page;
            QVERIFY(contentOf(path + u".gz"_s).startsWith(u".TH TESSARAY"_s));
            QVERIFY(!m_contents.contains(path + u'\n'));
        }
    }

    void theFontComesFromItsOwnPackage()
    {
        QVERIFY2(m_contents.contains(u"/fonts/fonts.conf\n"_s), qPrintable(m_contents));
        QVERIFY(!m_contents.contains(u".ttf"_s));
        QVERIFY(field(u"Depends"_s).contains(u"fonts-dejavu-core"_s));
    }

private:
    QString field(const QString &name) const
    {
        return outputOf(u"dpkg-deb"_s, {u"--field"_s, m_package, name}).trimmed();
    }
    /// A file of the package that is compressed in it, as a reader sees it.
    QString contentOf(const QString &path) const
    {
        return outputOf(u"sh"_s, {u"-c"_s, u"dpkg-deb --fsys-tarfile \"$0\" | tar -xO \"$1\" | gzip -dc"_s,
                                  m_package, path});
    }

    Scratch m_scratch;
    QString m_package;
    QString m_contents; ///< one line a file
};

TESSARAY_TEST(DebianPackageTest)
#include "DebianPackageTest.moc"
