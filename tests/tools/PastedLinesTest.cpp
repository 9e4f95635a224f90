// Every line of a dry run, pasted into /bin/sh in turn, makes the files that the job makes: for every
// operation, also where LANG names a locale that the machine does not have.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

const QString film = u"it's $(a) film.mkv"_s;

/// A hash of the packets of every stream; of a file that is no film, one of its text.
QString contentOf(const QString &path)
{
    QProcess process;
    process.start(u"ffmpeg"_s, {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-i"_s, path, u"-map"_s, u"0"_s, u"-c"_s,
                                u"copy"_s, u"-f"_s, u"streamhash"_s, u"-"_s});
    process.waitForFinished(60000);
    const QString hashes = QString::fromUtf8(process.readAllStandardOutput());
    return process.exitCode() == 0 ? hashes : u"no film"_s;
}

} // namespace

class PastedLinesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_cli->setEnvironment(u"LANG"_s, u"qx_QX.UTF-8"_s);
        for (const auto &name : {u"LC_ALL"_s, u"LC_CTYPE"_s})
            m_cli->setEnvironment(name, {});
        m_cli->clip(support::fullMkv(), film);
        m_cli->clip(support::fullMkv(), u"b.mkv"_s);
        m_cli->clip(support::rawH264(), u"raw.h264"_s);
    }
    void cleanup() { m_cli.reset(); }

    void pastedLinesMakeTheFilesOfTheJob_data()
    {
        QTest::addColumn<QString>("line"); // F is the film
        QTest::newRow("pass-through") << u"convert F"_s;
        QTest::newRow("one pass") << u"convert F --video 1pass --width 160"_s;
        QTest::newRow("two passes") << u"convert F --video 2pass --video-bitrate 200 --tracks 0,1"_s;
        QTest::newRow("burned in") << u"convert F --video 1pass --subtitles burn --tracks 0,3"_s;
        QTest::newRow("into Matroska") << u"convert F --kind mkv --video 1pass"_s;
        QTest::newRow("extract") << u"extract F"_s;
        QTest::newRow("join") << u"join F b.mkv"_s;
        QTest::newRow("split by time") << u"split F --time 00:00:02-00:00:05"_s;
        QTest::newRow("split by duration") << u"split F --duration 00:00:03"_s;
        QTest::newRow("remux") << u"remux F"_s;
        QTest::newRow("remove") << u"remove F --tracks 1"_s;
        QTest::newRow("mux a raw stream") << u"convert raw.h264 --kind mkv"_s;
    }

    void pastedLinesMakeTheFilesOfTheJob()
    {
        QFETCH(QString, line);
        const QStringList command = line.split(u' ').replaceInStrings(QRegularExpression(u"^F$"_s), film);
        const QStringList before = m_cli->mediaNames();
        const auto dry = m_cli->run(command + QStringList{u"--dry-run"_s});
        QVERIFY2(dry.status == 0 && !dry.lines().isEmpty(), dry.error.constData());
        for (const QString &pasted : dry.lines()) {
            const QString complaint = complaintOfPasted(pasted);
            QVERIFY2(complaint.isNull(), qPrintable(pasted + u'\n' + complaint));
        }
        const QMap<QString, QString> byHand = takeAll(before);
        const auto run = m_cli->run(command);
        QVERIFY2(run.status == 0 || run.status == 1, run.error.constData());
        const QMap<QString, QString> byJob = takeAll(before);
        QVERIFY(!byJob.isEmpty());
        for (auto file = byJob.begin(); file != byJob.end(); ++file)
            QVERIFY2(byHand.value(file.key()) == *file,
                     qPrintable(file.key() + u'\n' + *file + u'\n' + QStringList(byHand.keys()).join(u'\n') +
                                byHand.value(file.key())));
    }

private:
    /// A null text where it ended well; mkvmerge's 1 are warnings.
    QString complaintOfPasted(const QString &line) const
    {
        QProcess shell;
        QProcessEnvironment environment = m_cli->environment();
        environment.remove(u"LC_ALL"_s);
        environment.remove(u"LC_CTYPE"_s);
        environment.insert(u"LANG"_s, u"qx_QX.UTF-8"_s);
        shell.setProcessEnvironment(environment);
        shell.setWorkingDirectory(m_cli->scratch().path(u"home"_s));
        shell.setStandardInputFile(QProcess::nullDevice());
        shell.start(u"/bin/sh"_s, {u"-c"_s, line});
        const bool isWell = shell.waitForFinished(120000) && shell.exitStatus() == QProcess::NormalExit &&
                            shell.exitCode() <= 1;
        return isWell ? QString()
                      : QString::fromUtf8(shell.readAllStandardError() + shell.readAllStandardOutput());
    }

    /// What is new but logs, by name; it is gone afterwards.
    QMap<QString, QString> takeAll(const QStringList &before) const
    {
        QMap<QString, QString> contents;
        for (const QString &name : m_cli->mediaNames()) {
            if (before.contains(name))
                continue;
            if (!name.endsWith(u".log"_s))
                contents.insert(name, contentOf(m_cli->media(name)));
            QFile::remove(m_cli->media(name));
        }
        return contents;
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(PastedLinesTest)
#include "PastedLinesTest.moc"
