#include "support/FakePlaces.h"
#include "support/FakeTool.h"
#include "support/Scratch.h"
#include "support/Waiting.h"
#include "tools/KXHelpers.h"
#include "tools/ToolProcess.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTest>
#include <QThread>

#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;
using support::FakeTool;
using tools::OptionItem;
using tools::OptionList;

namespace {

class ListeningHelpers final : public KXHelpers
{
public:
    using KXHelpers::KXHelpers;
    void logString(const QString &text) const override { strings.append(text); }
    void logObjectWithString(const QVariant &object, const QString &label) const override
    {
        lines.append(label + object.toString());
    }

    mutable QStringList strings;
    mutable QStringList lines;
};

/// Each of a run's commands as one word of data.
OptionList playing(const QStringList &commands)
{
    OptionList options{u"--do"_s};
    for (const QString &command : commands)
        options.append(OptionItem::withData({}, command, tools::Quoting::Single));
    return options;
}

} // namespace

class KXHelpersProcessesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Orphans of our shells become ours, as they do below a container's first process.
        QCOMPARE(::prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
    }

    void answerLosesOneLineFeedAtItsEnd_data()
    {
        QTest::addColumn<QString>("printed");
        QTest::addColumn<QString>("answer");
        QTest::newRow("one") << u"a\\n"_s << u"a"_s;
        QTest::newRow("none") << u"a"_s << u"a"_s;
        QTest::newRow("only one of two") << u"a\\n\\n"_s << u"a\n"_s;
        QTest::newRow("carriage return stays") << u"a\\r\\n"_s << u"a\r"_s;
        QTest::newRow("line feed alone") << u"\\n"_s << u""_s;
        QTest::newRow("at the beginning") << u"\\na"_s << u"\na"_s;
        QTest::newRow("blank at the end") << u"a\\n "_s << u"a\n "_s;
        QTest::newRow("nothing") << u""_s << u""_s;
        QTest::newRow("not ASCII") << u"F\\xc3\\xbc\\xc3\\x9fe\\n"_s << u"Füße"_s;
    }

    void answerLosesOneLineFeedAtItsEnd()
    {
        QFETCH(QString, printed);
        QFETCH(QString, answer);
        const QString script = answerOf({u"part out "_s + printed});
        QCOMPARE(script, answer);
        QVERIFY(!script.isNull());
        const QString command = m_helpers.doUnixCommandWithOptions(tools::doubleQuoted(FakeTool::program()),
                                                                   playing({u"part out "_s + printed}));
        QCOMPARE(command, answer);
        QVERIFY(!command.isNull());
    }

    void answerThatIsNotUtf8IsAbsent_data()
    {
        QTest::addColumn<QString>("printed");
        QTest::newRow("Latin-1") << u"caf\\xe9\\n"_s;
        QTest::newRow("cut in the middle of a letter") << u"a\\xc3"_s;
        QTest::newRow("surrogate") << u"\\xed\\xa0\\x80"_s;
        QTest::newRow("overlong") << u"\\xc0\\x80"_s;
    }

    void answerThatIsNotUtf8IsAbsent()
    {
        QFETCH(QString, printed);
        QVERIFY(answerOf({u"part out "_s + printed}).isNull());
        QVERIFY(m_helpers
                    .doUnixCommandWithOptions(tools::doubleQuoted(FakeTool::program()),
                                              playing({u"part out "_s + printed}))
                    .isNull());
    }

    void failureAnswersTheErrorStream()
    {
        QCOMPARE(answerOf({u"out fine"_s, u"err broken"_s}), u"fine"_s);
        QCOMPARE(answerOf({u"out fine"_s, u"err broken"_s, u"exit 1"_s}), u"broken"_s);
        QCOMPARE(answerOf({u"out fine"_s, u"exit 1"_s}), u""_s);
        QCOMPARE(m_helpers.doUnixCommandWithOptions(u"echo fine; echo broken >&2; exit"_s, {u"4"_s}),
                 u"broken"_s);
    }

    void missingToolAnswersTheShellsMessage()
    {
        const QString answer = m_helpers.doShellScriptForWithOptions(m_scratch.url(u"no tool"_s), {});
        QVERIFY2(answer.contains(m_scratch.path(u"no tool"_s)), qPrintable(answer));
    }

    void pathWithQuotesAndDollarsReachesTheTool()
    {
        const QString record = m_scratch.path(u"reached"_s);
        const QString tool =
            FakeTool::install(m_scratch.path(u"t \"o\" $l/ffprobe"_s), {u"record "_s + record});
        const QUrl movie = m_scratch.url(u"my \"film\" $HOME.mkv"_s);
        m_helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(tool), {u"-i"_s, movie, u"2>&1"_s});
        const auto runs = FakeTool::recordedRuns(record);
        QCOMPARE(runs.size(), 1);
        QCOMPARE(runs.first().program, tool.toUtf8());
        QCOMPARE(runs.first().arguments, QByteArrayList({"-i", movie.toLocalFile().toUtf8()}));
    }

    void toolsRunInTheFolderOfTheApplicationAndCommandsInOurs()
    {
        QCOMPARE(m_helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(u"/bin/pwd"_s), {}),
                 m_scratch.path());
        QCOMPARE(m_helpers.doUnixCommandWithOptions(u"/bin/pwd"_s, {}), QDir::currentPath());
    }

    void mkvToolsGetTheirExports()
    {
        const QString seen = m_scratch.path(u"seen"_s);
        const QString tool =
            FakeTool::install(m_scratch.path(u"tools/mkvtoolnix/mkvmerge"_s),
                              {u"environment LANG "_s + seen, u"environment LD_LIBRARY_PATH "_s + seen,
                               u"environment LC_ALL "_s + seen});
        m_helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(tool), {});
        const QByteArrayList lines = m_scratch.read(u"seen"_s).split('\n');
        QCOMPARE(lines.at(0), "LANG=en_US.UTF-8");
        QCOMPARE(lines.at(1), "LD_LIBRARY_PATH=" + m_scratch.path(u"Resources/mkvtoolnix/lib"_s).toUtf8());
        QVERIFY(lines.at(2) == "LC_ALL=C.UTF-8" || lines.at(2) == "LC_ALL=en_US.UTF-8");
    }

    void hookHearsTheLineAsItIsMeant()
    {
        ListeningHelpers helpers(&m_places);
        helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(u"/bin/true"_s),
                                            {u"&>"_s, m_scratch.url(u"hook.log"_s)});
        const QString meant =
            u"doShellScript String: \"/bin/true\" &> \"%1\""_s.arg(m_scratch.path(u"hook.log"_s));
        QCOMPARE(helpers.lines, QStringList({meant}));
        helpers.lines.clear();
        helpers.doUnixCommandWithOptions(u"true"_s, {u"-p"_s});
        QCOMPARE(helpers.lines, QStringList({u"doUnixCommand string: true -p"_s}));
    }

    void hookIsSparedTheFrequentCalls()
    {
        ListeningHelpers helpers(&m_places);
        for (const QString &name : {u"MediaInfo"_s, u"mkvinfo"_s})
            helpers.doShellScriptForWithOptions(m_scratch.url(name), {});
        for (const QString &command : {u"ps"_s, u"tr '\\r' '\\n' < "_s, u"dscacheutil"_s, u"ls"_s})
            helpers.doUnixCommandWithOptions(command, {u"/dev/null"_s});
        QVERIFY2(helpers.lines.isEmpty(), qPrintable(helpers.lines.join(u'|')));
        helpers.doUnixCommandWithOptions(u"ls "_s, {u"/dev/null"_s}); // the whole text counts
        QCOMPARE(helpers.lines.size(), 1);
    }

    void progressLinesAreSearchedByPipeline()
    {
        const QString log = m_scratch.write(u"a $log`.txt"_s, "Progress: 1%\rProgress: 2%\rOther\r");
        QCOMPARE(m_helpers.doUnixCommandWithOptions(
                     u"tr '\\r' '\\n' < "_s,
                     {QUrl::fromLocalFile(log), u"| tail -20"_s, u"| grep '%1'"_s.arg(u"Progress"_s)}),
                 u"Progress: 1%\nProgress: 2%"_s);
    }

    void foreignBytesInALogDoNotHideItsLines()
    {
        const QString log = m_scratch.write(u"latin1.txt"_s, "title: caf\xe9\nError: it failed\n");
        QCOMPARE(
            m_helpers.doUnixCommandWithOptions(
                u"tr '\\r' '\\n' < "_s, {QUrl::fromLocalFile(log), u"| tail -20"_s, u"| grep 'Error'"_s}),
            u"Error: it failed"_s);
    }

    void backgroundStartAnswersTheToolsIdAtOnce_data()
    {
        QTest::addColumn<bool>("inOnePiece");
        QTest::newRow("log in an item of its own") << false;
        QTest::newRow("one string") << true;
    }

    void backgroundStartAnswersTheToolsIdAtOnce()
    {
        QFETCH(bool, inOnePiece);
        const QString pids = m_scratch.path(u"started"_s);
        QFile::remove(pids);
        const QUrl log = m_scratch.url(u"tool 1.log"_s);
        OptionList options = playing({u"pid "_s + pids, u"out said"_s, u"err cried"_s, u"sleep 1000"_s});
        if (inOnePiece)
            options.append(u"&> /dev/null & echo $!"_s);
        else
            options.append({u"&>"_s, log, u"& echo $!"_s});
        QElapsedTimer clock;
        clock.start();
        const QString pid =
            m_helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(FakeTool::program()), options);
        QVERIFY(clock.elapsed() < 900);
        QVERIFY(support::waitFor([&] { return !m_scratch.read(u"started"_s).isEmpty(); }));
        QCOMPARE(pid, QString::fromLatin1(m_scratch.read(u"started"_s)).trimmed());
        QVERIFY(m_helpers.processIsRunningWithPID(pid));
        QVERIFY(support::waitFor([&] { return !m_helpers.processIsRunningWithPID(pid); }));
        QCOMPARE(m_scratch.read(u"tool 1.log"_s), inOnePiece ? QByteArray() : QByteArray("said\ncried\n"));
        QFile::remove(log.toLocalFile());
    }

    void backgroundStartOfAnMkvToolAnswersTheToolsId()
    {
        // With the exports in front, too, the id is the tool's own and not a shell's.
        const QString pids = m_scratch.path(u"mkv started"_s);
        const QString tool =
            FakeTool::install(m_scratch.path(u"tools/mkvtoolnix/mkvextract"_s), {u"pid "_s + pids});
        const QString pid = m_helpers.doShellScriptForWithOptions(
            QUrl::fromLocalFile(tool), {u"&>"_s, m_scratch.url(u"mkv.log"_s), u"& echo $!"_s});
        QVERIFY(support::waitFor([&] { return !m_scratch.read(u"mkv started"_s).isEmpty(); }));
        QCOMPARE(pid, QString::fromLatin1(m_scratch.read(u"mkv started"_s)).trimmed());
    }

    void backgroundStartInBashIsTheSame()
    {
        const QString pids = m_scratch.path(u"bash started"_s);
        OptionList options = playing({u"pid "_s + pids, u"out said"_s, u"err cried"_s, u"sleep 1000"_s});
        options.append({u"&>"_s, m_scratch.url(u"bash.log"_s), u"& echo $!"_s});
        const auto line = tools::toolLine(QUrl::fromLocalFile(FakeTool::program()), options, m_places,
                                          tools::ShellKind::KnowsAmpersandRedirect);
        QProcess bash;
        QElapsedTimer clock;
        clock.start();
        bash.start(u"bash"_s, {u"-c"_s, line.launched});
        QVERIFY(bash.waitForFinished());
        QVERIFY(clock.elapsed() < 900);
        const QByteArray pid = bash.readAllStandardOutput().trimmed();
        QVERIFY(support::waitFor([&] { return !m_scratch.read(u"bash started"_s).isEmpty(); }));
        QCOMPARE(m_scratch.read(u"bash started"_s).trimmed(), pid);
        QVERIFY(support::waitFor([&] { return !support::runs(pid.toLongLong()); }));
        QCOMPARE(m_scratch.read(u"bash.log"_s), "said\ncried\n");
    }

    void nobodyRunsWithoutAProperId()
    {
        ListeningHelpers helpers(&m_places);
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", "/nowhere"); // asking ps would fail aloud
        for (const QString &pid :
             {u"0"_s, u""_s, QString(), u"000"_s, u"abc"_s, u"1; id"_s, u"-1"_s, u" 1"_s}) {
            QVERIFY2(!helpers.processIsRunningWithPID(pid), qPrintable(pid));
            QVERIFY2(!helpers.terminatePIDWaitUntilTerminated(pid, KXHelpers::Wait::UntilTerminated),
                     qPrintable(pid));
        }
        qputenv("PATH", path);
        QVERIFY(helpers.lines.isEmpty());
        QVERIFY(helpers.strings.isEmpty());
    }

    void stoppingIdNothingStopsNobody()
    {
        // "kill -s stop 0" would stop the very shell that runs it, and us waiting for it.
        QElapsedTimer clock;
        clock.start();
        for (const QString &pid : {u"0"_s, u"00"_s, u""_s, u"x"_s}) {
            m_helpers.suspendPID(pid);
            m_helpers.resumePID(pid);
        }
        QVERIFY(clock.elapsed() < 1000);
    }

    void idIsComparedWhole()
    {
        const QString pid = startHanging();
        QVERIFY(m_helpers.processIsRunningWithPID(pid));
        QVERIFY(!m_helpers.processIsRunningWithPID(u"0"_s + pid));
        QVERIFY(!m_helpers.processIsRunningWithPID(u"99999999999999999999"_s));
        m_helpers.terminatePIDWaitUntilTerminated(pid, KXHelpers::Wait::UntilTerminated);
    }

    void terminatingWaitsUntilTheToolIsGone()
    {
        ListeningHelpers helpers(&m_places);
        const QString pid = startHanging();
        QVERIFY(helpers.terminatePIDWaitUntilTerminated(pid, KXHelpers::Wait::UntilTerminated));
        QVERIFY(!support::runs(pid.toLongLong()));
        QVERIFY(helpers.strings.contains(u"Waiting to terminate"_s));
        QVERIFY(helpers.lines.contains(u"doUnixCommand string: kill -s KILL "_s + pid));
    }

    void terminatingMayNotWait()
    {
        ListeningHelpers helpers(&m_places);
        const QString pid = startHanging();
        QVERIFY(helpers.terminatePIDWaitUntilTerminated(pid, KXHelpers::Wait::No));
        QVERIFY(helpers.strings.isEmpty());
        QVERIFY(support::waitFor([&] { return !support::runs(pid.toLongLong()); }));
    }

    void suspendedToolStandsStillAndGoesOn()
    {
        const QString pid = startHanging();
        m_helpers.suspendPID(pid);
        QVERIFY(support::waitFor([&] { return support::stateOf(pid.toLongLong()) == 'T'; }));
        QVERIFY(m_helpers.processIsRunningWithPID(pid));
        m_helpers.resumePID(pid);
        QVERIFY(support::waitFor([&] { return support::stateOf(pid.toLongLong()) == 'S'; }));
        m_helpers.suspendPID(pid);
        QVERIFY(m_helpers.terminatePIDWaitUntilTerminated(pid, KXHelpers::Wait::UntilTerminated));
        QVERIFY(!support::runs(pid.toLongLong()));
    }

    void zombieOfOursHasEndedAndIsReaped()
    {
        const QString pid = startHanging();
        ::kill(pid.toInt(), SIGKILL);
        QVERIFY(support::waitFor([&] { return support::stateOf(pid.toLongLong()) == 'Z'; }));
        QVERIFY(!m_helpers.processIsRunningWithPID(pid));
        QCOMPARE(::kill(pid.toInt(), 0), -1);
        QCOMPARE(errno, ESRCH);
    }

    void zombieOfSomebodyElseHasEnded()
    {
        QProcess parent; // never waits for its child
        parent.start(u"bash"_s, {u"-c"_s, u"sleep 0 & echo $!; exec sleep 60"_s});
        QVERIFY(parent.waitForReadyRead());
        const QString pid = QString::fromLatin1(parent.readLine()).trimmed();
        QVERIFY(support::waitFor([&] { return support::stateOf(pid.toLongLong()) == 'Z'; }));
        QVERIFY(!m_helpers.processIsRunningWithPID(pid));
        QCOMPARE(support::stateOf(pid.toLongLong()), 'Z');
        parent.kill();
        parent.waitForFinished();
    }

    void zombieOfAProcessObjectKeepsItsStatusForIt()
    {
        tools::ToolProcess::Request request;
        request.program = FakeTool::program();
        request.arguments = {u"--do"_s, u"exit 7"_s};
        request.environment = QProcessEnvironment::systemEnvironment();
        const auto tool = tools::ToolProcess::start(request);
        const qint64 pid = tool->processIdentifier();
        QElapsedTimer clock; // events are not served meanwhile: nobody reaps
        clock.start();
        while (support::stateOf(pid) != 'Z' && clock.elapsed() < 5000)
            QThread::msleep(5);
        QVERIFY(!m_helpers.processIsRunningWithPID(QString::number(pid)));
        QVERIFY(support::waitFor([&] { return tool->end() != tools::ToolProcess::End::StillRunning; }));
        QCOMPARE(tool->exitStatus(), std::optional<int>(7));
    }

    void stopFlagEndsAWait()
    {
        KXHelpers helpers(&m_places);
        const auto stop = std::make_shared<std::atomic_bool>(true);
        helpers.setStopFlag(stop);
        QElapsedTimer clock;
        clock.start();
        helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(FakeTool::program()), playing({u"hang"_s}));
        QVERIFY(clock.elapsed() < 3000);
    }

    void waitingIsWithAnEventLoopUnlessTold()
    {
        KXHelpers helpers(&m_places);
        bool served = false;
        QMetaObject::invokeMethod(
            this, [&] { served = true; }, Qt::QueuedConnection);
        helpers.setWaiting(tools::Waiting::Blocking);
        helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(FakeTool::program()),
                                            playing({u"sleep 100"_s}));
        QVERIFY(!served);
        helpers.setWaiting(tools::Waiting::WithEventLoop);
        helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(FakeTool::program()),
                                            playing({u"sleep 100"_s}));
        QVERIFY(served);
    }

private:
    QString answerOf(const QStringList &commands) const
    {
        return m_helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(FakeTool::program()),
                                                     playing(commands));
    }

    QString startHanging() const
    {
        OptionList options = playing({u"ignore TERM"_s, u"hang"_s});
        options.append(u"&> /dev/null & echo $!"_s);
        return m_helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(FakeTool::program()), options);
    }

    support::Scratch m_scratch;
    support::FakePlaces m_places{m_scratch.path()};
    KXHelpers m_helpers{&m_places};
};

QTEST_GUILESS_MAIN(KXHelpersProcessesTest)
#include "KXHelpersProcessesTest.moc"
