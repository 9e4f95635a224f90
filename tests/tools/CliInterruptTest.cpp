// Ctrl-C and the terminate signal, in whatever the program is busy with: a second later no tool runs, what
// was unfinished is gone, and the sources are untouched.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/Words.h"

#include <QFile>
#include <QTest>

#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::waitFor;
using support::words;

namespace {

constexpr int patienceMs = 60000;
/// What was killed is gone in moments, and no tool here ends by itself so soon.
constexpr int goneMs = 5000;

/// Slows a tool down to the speed of the film.
const QString slowFfmpeg = u"exec /usr/bin/ffmpeg -re \"$@\""_s;
/// Never gets to its probe; the launcher has a child, which must end too.
const QString hangingFfprobe = u"sleep 120\nexec /usr/bin/ffprobe \"$@\""_s;

QStringList eventsIn(const QByteArray &output)
{
    QStringList events;
    CliFixture::Run run;
    run.output = output;
    for (const QJsonObject &object : run.objects()) {
        const QString event = object.value(u"event"_s).toString();
        if (event != u"progress"_s)
            events.append(event + u' ' + object.value(u"fileName"_s).toString());
    }
    return events;
}

} // namespace

class CliInterruptTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_output.clear();
    }

    void cleanup()
    {
        for (const qint64 pid : m_cli->processes()) // only after a failure
            ::kill(static_cast<pid_t>(pid), SIGKILL);
        m_process->disconnect(this);
        m_process.reset();
    }

    void aRunIsStopped_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("tool");   ///< "ffmpeg" or "ffprobe": the one that is slowed down
        QTest::addColumn<QString>("isBusy"); ///< in the command line of a tool
        QTest::addColumn<QString>("isSaid"); ///< in what the program has told by then
        QTest::addColumn<int>("signal");
        QTest::addColumn<int>("status");
        const auto row = [](const char *name, const QString &line, const QString &tool, const QString &busy,
                            const QString &said) {
            for (const int signal : support::drawn(QList<int>{SIGINT, SIGTERM}, 1))
                QTest::addRow("%s, %s", name, signal == SIGINT ? "interrupt" : "terminate")
                    << line << tool << busy << said << signal << 128 + signal;
        };
        const QString twoPasses = u"convert long.mkv --video 2pass --video-bitrate 300"_s;
        row("pass 1", twoPasses, {}, u"/dev/null"_s, u"Pass #1"_s);
        row("pass 2", twoPasses, {}, u"long.mkv"_s, u"Pass #2"_s);
        row("one pass", u"convert long.mkv --video 1pass"_s, {}, u"long.mkv"_s, u"%\""_s);
        row("a copy", u"convert long.mkv"_s, u"ffmpeg"_s, u"long.mkv"_s, u"%\""_s);
        row("an extraction", u"extract long.mkv"_s, u"ffmpeg"_s, u".aac"_s, u"%\""_s);
        row("an extraction in the background", u"convert full.mkv --video 1pass --subtitles burn"_s,
            u"ffmpeg"_s, u".srt"_s, u"started"_s);
        row("burning", u"convert full.mkv --video 2pass --video-bitrate 300 --subtitles burn --tracks 0,3"_s,
            u"ffmpeg"_s, u"/dev/null"_s, u"started"_s);
        row("a probe", u"probe full.mkv long.mkv"_s, u"ffprobe"_s, u"sleep 120"_s, {});
        row("the probe of a conversion", u"convert full.mkv"_s, u"ffprobe"_s, u"sleep 120"_s, {});
    }

    void aRunIsStopped()
    {
        QFETCH(QString, line);
        QFETCH(QString, tool);
        QFETCH(QString, isBusy);
        QFETCH(QString, isSaid);
        QFETCH(int, signal);
        QFETCH(int, status);
        m_cli->clip(support::longMkv(120), u"long.mkv"_s);
        m_cli->clip(support::fullMkv(), u"full.mkv"_s);
        const QByteArray sources = content(u"long.mkv"_s) + content(u"full.mkv"_s);
        if (!tool.isEmpty()) {
            m_cli->useOwnTools();
            m_cli->setTool(u"ffmpeg/"_s + tool, tool == u"ffmpeg"_s ? slowFfmpeg : hangingFfprobe);
        }
        start(words(line));
        QVERIFY2(isBusyWith(isBusy, isSaid), qPrintable(m_cli->commandLines().join(u'\n') + said()));
        const QString left = toolsAfter(signal);
        QVERIFY2(left.isEmpty(), qPrintable(left));
        const auto run = end();
        QCOMPARE(run.status, status);
        QVERIFY2(!run.said().contains(u"not a video"_s),
                 qPrintable(run.said())); // the probe was not completed
        QCOMPARE(m_cli->mediaNames(), QStringList({u"full.mkv"_s, u"long.mkv"_s}));
        QVERIFY2(m_cli->temporaryNames().isEmpty(), qPrintable(m_cli->temporaryNames().join(u' ')));
        QVERIFY(content(u"long.mkv"_s) + content(u"full.mkv"_s) == sources);
        QVERIFY(!isSaid.isEmpty() || m_output.isEmpty());
    }

    void aStoppedJobSaysSo()
    {
        m_cli->clip(support::longMkv(120), u"long.mkv"_s);
        start(words(u"convert long.mkv --video 1pass"_s));
        QVERIFY(isBusyWith(u"long.mkv"_s, u"%\""_s));
        QVERIFY(toolsAfter(SIGINT).isEmpty());
        const auto run = end();
        CliFixture::Run whole;
        whole.output = m_output;
        const QJsonObject done = whole.objects().constLast();
        QCOMPARE(done.value(u"event"_s).toString(), u"done"_s);
        QCOMPARE(done.value(u"outcome"_s).toString(), u"stopped"_s);
        QVERIFY(done.value(u"log"_s).isNull());
        QVERIFY2(run.said().contains(u"long.mkv: stopped"_s), qPrintable(run.said()));
    }

    void laterJobsDontStart_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("interrupt") << SIGINT;
        QTest::newRow("terminate") << SIGTERM;
    }

    void laterJobsDontStart()
    {
        QFETCH(int, signal);
        for (const auto &name : {u"a.mkv"_s, u"b.mkv"_s, u"c.mkv"_s})
            m_cli->clip(support::longMkv(120), name);
        start(words(u"convert a.mkv b.mkv c.mkv --video 1pass"_s));
        QVERIFY(isBusyWith(u"a.mkv"_s, u"%\""_s));
        QVERIFY(toolsAfter(signal).isEmpty());
        QCOMPARE(end().status, 128 + signal);
        QCOMPARE(eventsIn(m_output), QStringList({u"queued a.mkv"_s, u"queued b.mkv"_s, u"queued c.mkv"_s,
                                                  u"started a.mkv"_s, u"done a.mkv"_s}));
        QCOMPARE(m_cli->mediaNames(), QStringList({u"a.mkv"_s, u"b.mkv"_s, u"c.mkv"_s}));
    }

    void whatWasFinishedBeforeStays()
    {
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        m_cli->clip(support::longMkv(120), u"b.mkv"_s);
        start(words(u"convert a.mkv b.mkv --video 1pass --no-keep-logs"_s));
        QVERIFY(isBusyWith(u"b.mkv"_s, u"done"_s));
        QVERIFY(toolsAfter(SIGINT).isEmpty());
        QCOMPARE(end().status, 130);
        QCOMPARE(m_cli->mediaNames(), QStringList({u"a.m4v"_s, u"a.mkv"_s, u"b.mkv"_s}));
        QCOMPARE(support::codecsOf(m_cli->media(u"a.m4v"_s)), u"h264 ac3 mov_text"_s);
    }

    void aReplacedFileReturns_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("isSaid");
        QTest::newRow("one pass") << u"--video 1pass"_s << u"%\""_s;
        QTest::newRow("pass 1") << u"--video 2pass --video-bitrate 300"_s << u"Pass #1"_s;
        QTest::newRow("pass 2") << u"--video 2pass --video-bitrate 300"_s << u"Pass #2"_s;
    }

    void aReplacedFileReturns()
    {
        QFETCH(QString, options);
        QFETCH(QString, isSaid);
        m_cli->clip(support::longMkv(120), u"a.mkv"_s);
        m_cli->scratch().write(u"media/a.m4v"_s, "mine");
        start(words(u"convert a.mkv --force "_s + options));
        QVERIFY(isBusyWith(u"a.mkv"_s, isSaid));
        QVERIFY(toolsAfter(SIGTERM).isEmpty());
        QCOMPARE(end().status, 143);
        QCOMPARE(content(u"a.m4v"_s), "mine");
        QCOMPARE(m_cli->mediaNames(), QStringList({u"a.m4v"_s, u"a.mkv"_s}));
    }

    void aToolThatWontEndIsEnded()
    {
        m_cli->useOwnTools();
        m_cli->setTool(u"ffmpeg/ffmpeg"_s, u"trap '' TERM INT HUP\nsleep 121 &\nwait\nsleep 122"_s);
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        start(words(u"convert a.mkv"_s));
        QVERIFY(isBusyWith(u"sleep 121"_s, u"started"_s));
        const QString left = toolsAfter(SIGINT);
        QVERIFY2(left.isEmpty(), qPrintable(left));
        QCOMPARE(end().status, 130);
    }

    void aTerminalsInterruptReachesOnlyTheProgram()
    {
        m_cli->clip(support::longMkv(120), u"long.mkv"_s);
        start(words(u"convert long.mkv --video 1pass"_s));
        QVERIFY(isBusyWith(u"long.mkv"_s, u"%\""_s));
        int tools = 0;
        for (const qint64 pid : m_cli->processes()) {
            if (pid == m_process->processId())
                continue;
            ++tools;
            QVERIFY(::getpgid(static_cast<pid_t>(pid)) !=
                    ::getpgid(static_cast<pid_t>(m_process->processId())));
        }
        QVERIFY(tools > 0);
        QVERIFY(toolsAfter(SIGINT).isEmpty());
    }

    void aClosedTerminalStopsIt()
    {
        m_cli->clip(support::longMkv(120), u"long.mkv"_s);
        start(words(u"convert long.mkv --video 1pass"_s));
        QVERIFY(isBusyWith(u"long.mkv"_s, u"%\""_s));
        QVERIFY(toolsAfter(SIGHUP).isEmpty());
        QCOMPARE(end().status, 143);
        QCOMPARE(m_cli->mediaNames(), QStringList({u"long.mkv"_s}));
    }

    void aClosedTerminalMayBeIgnored()
    {
        m_cli->clip(support::longMkv(120), u"long.mkv"_s);
        const auto before = ::signal(SIGHUP, SIG_IGN); // what "nohup" hands on
        start(words(u"convert long.mkv --video 1pass"_s));
        ::signal(SIGHUP, before);
        QVERIFY(isBusyWith(u"long.mkv"_s, u"%\""_s));
        ::kill(static_cast<pid_t>(m_process->processId()), SIGHUP);
        QTest::qWait(300);
        QCOMPARE(m_process->state(), QProcess::Running);
        QVERIFY(toolsAfter(SIGINT).isEmpty());
        QCOMPARE(end().status, 130);
    }

    void theSecondInterruptEndsAtOnce_data()
    {
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("second");
        QTest::newRow("twice interrupted") << SIGINT << SIGINT;
        QTest::newRow("twice terminated") << SIGTERM << SIGTERM;
    }

    void theSecondInterruptEndsAtOnce()
    {
        QFETCH(int, first);
        QFETCH(int, second);
        // Unpacking the tools is the one wait that the first one doesn't end.
        m_cli->useOwnTools();
        QVERIFY(QFile::remove(m_cli->resources() + u"/ffmpeg/ffmpeg"_s));
        m_cli->scratch().write(u"app/Resources/ffmpeg.zip"_s, "x");
        support::installScript(m_cli->scratch().path(u"path/unzip"_s), u"sleep 1230"_s);
        m_cli->setEnvironment(u"PATH"_s, m_cli->scratch().path(u"path"_s) + u":/usr/bin:/bin"_s);
        start(words(u"prefs list"_s));
        QVERIFY(isBusyWith(u"sleep 1230"_s, {}));
        ::kill(static_cast<pid_t>(m_process->processId()), first);
        QTest::qWait(300);
        QCOMPARE(m_process->state(), QProcess::Running);
        ::kill(static_cast<pid_t>(m_process->processId()), second);
        QCOMPARE(end().status, 128 + second);
        QCOMPARE(m_process->exitStatus(), QProcess::CrashExit);
    }

private:
    void start(const QStringList &line)
    {
        m_process = m_cli->start(QStringList{u"--json"_s} + line);
        connect(m_process.get(), &QProcess::readyReadStandardOutput, this,
                [this] { m_output += m_process->readAllStandardOutput(); });
    }

    bool isBusyWith(const QString &part, const QString &told)
    {
        return waitFor(
            [&] { return said().contains(told) && m_cli->commandLines().join(u'\n').contains(part); },
            patienceMs);
    }

    /// Sends the signal and answers which tools are left when the program has ended.
    QString toolsAfter(int signal)
    {
        const qint64 program = m_process->processId();
        ::kill(static_cast<pid_t>(program), signal);
        waitFor([&] { return m_process->state() == QProcess::NotRunning; });
        const auto left = [&] {
            QList<qint64> tools = m_cli->processes();
            tools.removeAll(program);
            return tools;
        };
        const bool areGone = waitFor([&] { return left().isEmpty(); }, goneMs);
        return areGone ? QString() : m_cli->commandLines().join(u'\n') + u'\n' + said();
    }

    CliFixture::Run end()
    {
        CliFixture::Run run = CliFixture::outcomeOf(*m_process, 10000);
        m_output += run.output;
        return run;
    }

    QString said() const { return QString::fromUtf8(m_output); }
    QByteArray content(const QString &name) const { return m_cli->scratch().read(u"media/"_s + name); }

    std::unique_ptr<CliFixture> m_cli;
    std::unique_ptr<QProcess> m_process;
    QByteArray m_output;
};

TESSARAY_TEST(CliInterruptTest)
#include "CliInterruptTest.moc"
