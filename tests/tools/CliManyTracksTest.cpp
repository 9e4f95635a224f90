// A film with many tracks: never more tools at once than the machine has cores, nor more looks at films that
// check what they made, and a signal ends all of it.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/StartedPrograms.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <QThread>

#include <csignal>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

constexpr int subtitles = 60;
constexpr int patienceMs = 120000;

} // namespace

class CliManyTracksTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        const QString subtitle =
            m_cli->scratch().write(u"s.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\nHello\n");
        QStringList words{u"-q"_s, u"-o"_s, m_cli->media(u"film.mkv"_s), support::longMkv(4)};
        words += QStringList(subtitles, subtitle);
        QProcess mkvmerge;
        mkvmerge.start(u"mkvmerge"_s, words);
        QVERIFY(mkvmerge.waitForFinished());
        QCOMPARE(mkvmerge.exitCode(), 0);
    }

    void cleanup()
    {
        for (const qint64 pid : m_cli->processes()) // only after a failure
            ::kill(static_cast<pid_t>(pid), SIGKILL);
    }

    void anExtractionRunsAToolACore()
    {
        const auto process = m_cli->start({u"extract"_s, u"film.mkv"_s, u"--no-keep-logs"_s});
        AtOnce most;
        support::waitFor(
            [&] {
                const AtOnce now = running();
                most = {qMax(most.tools, now.tools), qMax(most.checks, now.checks)};
                return process->state() == QProcess::NotRunning;
            },
            patienceMs);
        const auto run = CliFixture::outcomeOf(*process);
        QVERIFY2(run.status == 0, qPrintable(run.said()));
        QCOMPARE(m_cli->mediaNames().size(), 1 + 2 + subtitles);
        const int cores = QThread::idealThreadCount();
        QVERIFY2(most.tools >= 1 && most.tools <= cores, qPrintable(QString::number(most.tools)));
        QVERIFY2(most.checks >= 1 && most.checks <= cores, qPrintable(QString::number(most.checks)));
    }

    void aSignalEndsAllOfIt()
    {
        const auto process = m_cli->start({u"extract"_s, u"film.mkv"_s, u"--json"_s});
        QByteArray told;
        QVERIFY(support::waitFor(
            [&] { return (told += process->readAllStandardOutput()).count("\"Complete\"") > 3; },
            patienceMs));
        ::kill(static_cast<pid_t>(process->processId()), SIGTERM);
        QVERIFY(process->waitForFinished(patienceMs));
        QCOMPARE(CliFixture::outcomeOf(*process).status, 143);
        QVERIFY2(m_cli->nothingRuns(), qPrintable(m_cli->commandLines().join(u'\n')));
        QVERIFY(m_cli->mediaNames().size() < 1 + 2 + subtitles); // it was still at it
        for (const QString &name : m_cli->mediaNames())
            QVERIFY2(!name.endsWith(u".log"_s), qPrintable(name));
    }

private:
    struct AtOnce
    {
        qsizetype tools = 0;
        qsizetype checks = 0; ///< the source is read while the tools work, so these count by themselves
    };

    /// Those that were there at one moment: between two looks at all processes, of which each takes a while.
    AtOnce running() const
    {
        const QList<qint64> before = m_cli->processes();
        AtOnce both;
        for (const qint64 pid : m_cli->processes()) {
            const QByteArrayList line = before.contains(pid) ? commandLine(pid) : QByteArrayList();
            const bool isCheck = !support::started::checkedFile(line).isNull();
            both.checks += isCheck;
            both.tools += !isCheck && isTool(line);
        }
        return both;
    }

    /// The program by its name alone; nothing for a process that has just ended.
    static QByteArrayList commandLine(qint64 pid)
    {
        QFile file(u"/proc/%1/cmdline"_s.arg(pid));
        const QByteArray line = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        if (line.isEmpty())
            return {};
        QByteArrayList words = line.chopped(1).split('\0');
        words.first() = QFileInfo(QFile::decodeName(words.constFirst())).fileName().toUtf8();
        return words;
    }

    static bool isTool(const QByteArrayList &line)
    {
        return !line.isEmpty() && !line.contains("tessaray-cli") && line.constFirst() != "sh";
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliManyTracksTest)
#include "CliManyTracksTest.moc"
