// A signal is answered within a second, in whatever the program is busy with, and signals may come in any
// rhythm.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/PresetLists.h"
#include "support/PresetRecords.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/Words.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <csignal>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::waitFor;
using support::words;

namespace {

/// None of what is waited for here ends by itself before that.
constexpr int answeredMs = 30000;
/// Each probe takes so long that a run that goes through its files would take minutes.
const QString slowFfprobe = u"sleep 2\nexec /usr/bin/ffprobe \"$@\""_s;
const QString presets = u"watch in --track-preset Rule --settings-preset Set"_s;

} // namespace

class CliSignalsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_films.clear();
        m_said.clear();
    }

    void cleanup()
    {
        for (const qint64 pid : m_cli->processes()) // only after a failure
            ::kill(static_cast<pid_t>(pid), SIGKILL);
        m_process.reset();
    }

    void aWatchThatOpensManyFilmsEnds()
    {
        prepareFilms(u"in/"_s);
        support::storePresets(*m_cli, {support::trackPreset(u"Rule"_s, u"#1"_s)},
                              {support::settingsPreset(u"Set"_s, u"MKV"_s)});
        QDir(m_cli->media()).rename(u"in"_s, u"films"_s);
        QDir().mkpath(m_cli->media(u"in"_s));
        start(words(presets));
        QVERIFY(hasPrinted(u"Watching"_s));
        for (const QString &name : QDir(m_cli->media(u"films"_s)).entryList(QDir::Files))
            QFile::rename(m_cli->media(u"films/"_s + name), m_cli->media(u"in/"_s + name));
        QVERIFY(runsTool(u"ffprobe"_s));
        QVERIFY(endsBy({SIGTERM}, 143));
    }

    void aRunThatOpensManyFilmsEnds()
    {
        prepareFilms({});
        start(QStringList{u"convert"_s} + m_films);
        QVERIFY(runsTool(u"ffprobe"_s));
        QVERIFY(endsBy({SIGTERM}, 143));
    }

    void aJoinThatLooksAtItsFilesEnds()
    {
        prepareFilms({});
        start(QStringList{u"join"_s} + m_films);
        QVERIFY(runsTool(u"ffprobe"_s));
        QVERIFY(endsBy({SIGINT}, 130));
    }

    void toolsThatAreUnpackedAreNotWaitedFor()
    {
        m_cli->useOwnTools();
        QVERIFY(QFile::remove(m_cli->resources() + u"/ffmpeg/ffmpeg"_s));
        m_cli->scratch().write(u"app/Resources/ffmpeg.zip"_s, "x");
        support::installScript(m_cli->scratch().path(u"path/unzip"_s), u"sleep 1230"_s);
        m_cli->setEnvironment(u"PATH"_s, m_cli->scratch().path(u"path"_s) + u":/usr/bin:/bin"_s);
        start(words(u"prefs list"_s));
        QVERIFY(runsTool(u"sleep 1230"_s));
        QVERIFY(endsBy({SIGTERM}, 143));
    }

    void whatIsNoFileIsNotWaitedFor_data()
    {
        QTest::addColumn<QString>("line");
        for (const char *line : {"--defaults pipe prefs list", "--defaults pipe presets add tracks Rule",
                                 "--defaults pipe prefs set keepLogsFlag true", "presets import pipe",
                                 "convert pipe", "probe pipe"})
            QTest::newRow(line) << QString::fromLatin1(line);
    }

    /// A pipe into which nobody writes.
    void whatIsNoFileIsNotWaitedFor()
    {
        QFETCH(QString, line);
        QCOMPARE(::mkfifo(QFile::encodeName(m_cli->media(u"pipe"_s)).constData(), 0600), 0);
        m_process = std::make_unique<QProcess>(); // without the settings that a test has as a rule
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"HOME"_s, m_cli->scratch().path(u"home"_s));
        environment.remove(u"XDG_CONFIG_HOME"_s);
        m_process->setProcessEnvironment(environment);
        m_process->setWorkingDirectory(m_cli->media());
        m_process->start(QStringLiteral(TESSARAY_BUILD_DIR "/bin/tessaray-cli"), words(line));
        QVERIFY(m_process->waitForFinished(answeredMs));
        QCOMPARE(m_process->exitStatus(), QProcess::NormalExit);
        QVERIFY(QFileInfo(m_cli->media(u"pipe"_s)).exists());
    }

    void signalsInAnyRhythm_data()
    {
        QTest::addColumn<QList<int>>("signalNumbers");
        QTest::newRow("twice") << QList<int>{SIGINT, SIGINT};
        QTest::newRow("two kinds") << QList<int>{SIGTERM, SIGINT};
        QTest::newRow("three") << QList<int>{SIGINT, SIGINT, SIGTERM};
        QTest::newRow("hang-up first") << QList<int>{SIGHUP, SIGTERM, SIGTERM};
        QTest::newRow("killed") << QList<int>{SIGTERM, SIGKILL};
    }

    void signalsInAnyRhythm()
    {
        QFETCH(QList<int>, signalNumbers);
        m_cli->clip(support::longMkv(120), u"film.mkv"_s);
        const QByteArray source = m_cli->scratch().read(u"media/film.mkv"_s);
        start(words(u"convert film.mkv --video 1pass"_s));
        QVERIFY(runsTool(u".tessaray-"_s));
        for (const int number : signalNumbers)
            ::kill(static_cast<pid_t>(m_process->processId()), number);
        QVERIFY(m_process->waitForFinished(answeredMs));
        QVERIFY(waitFor([&] { return m_cli->processes().isEmpty(); }));
        QCOMPARE(m_cli->mediaNames(), QStringList({u"film.mkv"_s}));
        QVERIFY2(m_cli->temporaryNames().isEmpty(), qPrintable(m_cli->temporaryNames().join(u' ')));
        QCOMPARE(m_cli->scratch().read(u"media/film.mkv"_s), source);
    }

private:
    void prepareFilms(const QString &folder)
    {
        constexpr int films = 20;
        m_cli->useOwnTools();
        m_cli->setTool(u"ffmpeg/ffprobe"_s, slowFfprobe);
        QDir().mkpath(m_cli->media(folder));
        for (int i = 0; i < films; ++i)
            m_films.append(m_cli->clip(support::fullMkv(), folder + u"film%1.mkv"_s.arg(i)));
    }

    void start(const QStringList &line) { m_process = m_cli->start(line); }

    bool hasPrinted(const QString &text)
    {
        return waitFor([&] {
            m_said += m_process->readAllStandardOutput();
            return QString::fromUtf8(m_said).contains(text);
        });
    }

    bool runsTool(const QString &part)
    {
        return waitFor([&] { return m_cli->commandLines().join(u'\n').contains(part); });
    }

    /// So fast that nothing but the signal can have ended it.
    bool endsBy(const QList<int> &signalNumbers, int status)
    {
        for (const int number : signalNumbers)
            ::kill(static_cast<pid_t>(m_process->processId()), number);
        return m_process->waitForFinished(answeredMs) && m_process->exitCode() == status &&
               waitFor([&] { return m_cli->processes().isEmpty(); });
    }

    std::unique_ptr<CliFixture> m_cli;
    std::unique_ptr<QProcess> m_process;
    QStringList m_films;
    QByteArray m_said;
};

TESSARAY_TEST(CliSignalsTest)
#include "CliSignalsTest.moc"
