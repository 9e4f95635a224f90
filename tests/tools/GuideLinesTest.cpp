// The guide's five lines to a watched folder, as a shell runs them for a user who has nothing yet.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

/// The lines as they stand in the guide, entities resolved.
QStringList guideLines()
{
    QFile guide(QStringLiteral(TESSARAY_SOURCE_DIR "/docs/guide.html"));
    if (!guide.open(QIODevice::ReadOnly))
        return {};
    static const QRegularExpression block(u"<pre id=\"five-lines\"><code>(.*?)</code>"_s,
                                          QRegularExpression::DotMatchesEverythingOption);
    const QString lines = block.match(QString::fromUtf8(guide.readAll())).captured(1);
    return QString(lines).replace(u"&amp;"_s, u"&"_s).split(u'\n', Qt::SkipEmptyParts);
}

} // namespace

class GuideLinesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fiveLinesLeadToAWatchedFolder()
    {
        const CliFixture cli;
        const QString home = cli.scratch().path(u"bare"_s);
        QVERIFY(QDir().mkpath(home));
        QProcess shell;
        QProcessEnvironment environment = cli.environment();
        environment.insert(u"PATH"_s, QFileInfo(cli.program()).path() + u':' + environment.value(u"PATH"_s));
        environment.insert(u"HOME"_s, home);
        for (const auto *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            environment.remove(QString::fromLatin1(name));
        shell.setProcessEnvironment(environment);
        shell.setWorkingDirectory(home);
        QStringList lines = guideLines();
        QCOMPARE(lines.size(), 5);
        lines.last().prepend(u"exec "_s); // so that the signal reaches the program
        shell.start(u"sh"_s, {u"-e"_s, u"-c"_s, lines.join(u'\n')});
        const QString incoming = home + u"/Incoming"_s;
        QByteArray told;
        QVERIFY(support::waitFor([&] {
            shell.waitForReadyRead(50);
            told += shell.readAllStandardOutput();
            return told.contains("atching") || shell.state() == QProcess::NotRunning;
        }));
        QVERIFY2(shell.state() == QProcess::Running, shell.readAllStandardError().constData());
        QVERIFY(QFile::copy(support::fullMkv(), incoming + u"/film.mkv"_s));
        const QString result = home + u"/Converted/film.m4v"_s;
        QVERIFY(support::waitFor([&] {
            shell.waitForReadyRead(50);
            return QFile::exists(result) || shell.state() == QProcess::NotRunning;
        }));
        ::kill(static_cast<pid_t>(shell.processId()), SIGINT);
        QVERIFY(shell.waitForFinished(60000));
        // The film has English sound first and German sound behind it.
        const QStringList streams = support::shownStreams(result);
        QCOMPARE(streams.size(), 2);
        QVERIFY2(streams.constFirst().startsWith(u"h264"_s) && streams.constLast() == u"aac 2 deu"_s,
                 qPrintable(streams.join(u", "_s)));
    }
};

TESSARAY_TEST(GuideLinesTest)
#include "GuideLinesTest.moc"
