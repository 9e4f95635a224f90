#include "support/FakePlaces.h"
#include "support/FakeTool.h"
#include "support/ListeningHelpers.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "tools/KXHelpers.h"
#include "tools/ShellRunner.h"
#include "tools/ToolProcess.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTest>
#include <QThread>

#include <csignal>
#include <sys/prctl.h>

using namespace Qt::StringLiterals;
using support::FakeTool;
using support::ListeningHelpers;
using support::playing;
using tools::OptionItem;
using tools::OptionList;

class BackgroundToolsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Orphans of our shells become ours, as they do below a container's first process.
        QCOMPARE(::prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
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
        const QString end = m_scratch.path(u"end"_s);
        QFile::remove(end);
        OptionList options = playing({u"pid "_s + pids, u"out said"_s, u"err cried"_s, u"await "_s + end});
        if (inOnePiece)
            options.append(OptionItem(u"&> /dev/null & echo $!"));
        else
            options.append({u"&>", log, u"& echo $!"});
        const QString pid =
            m_helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(FakeTool::program()), options);
        QVERIFY(support::waitFor([&] { return !m_scratch.read(u"started"_s).isEmpty(); }));
        QCOMPARE(pid, QString::fromLatin1(m_scratch.read(u"started"_s)).trimmed());
        QVERIFY(m_helpers.processIsRunningWithPID(pid));
        m_scratch.write(u"end"_s, {});
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
            QUrl::fromLocalFile(tool), {u"&>", m_scratch.url(u"mkv.log"_s), u"& echo $!"});
        QVERIFY(support::waitFor([&] { return !m_scratch.read(u"mkv started"_s).isEmpty(); }));
        QCOMPARE(pid, QString::fromLatin1(m_scratch.read(u"mkv started"_s)).trimmed());
    }

    void backgroundStartInBashIsTheSame()
    {
        const QString pids = m_scratch.path(u"bash started"_s);
        const QString end = m_scratch.path(u"bash end"_s);
        OptionList options = playing({u"pid "_s + pids, u"out said"_s, u"err cried"_s, u"await "_s + end});
        options.append({u"&>", m_scratch.url(u"bash.log"_s), u"& echo $!"});
        const auto line = tools::toolLine(QUrl::fromLocalFile(FakeTool::program()), options, m_places,
                                          tools::ShellKind::KnowsAmpersandRedirect);
        QProcess bash;
        bash.start(u"bash"_s, {u"-c"_s, line.launched});
        QVERIFY(bash.waitForFinished());
        const QByteArray pid = bash.readAllStandardOutput().trimmed();
        QVERIFY(support::waitFor([&] { return !m_scratch.read(u"bash started"_s).isEmpty(); }));
        QCOMPARE(m_scratch.read(u"bash started"_s).trimmed(), pid);
        QVERIFY(support::runs(pid.toLongLong()));
        m_scratch.write(u"bash end"_s, {});
        QVERIFY(support::waitFor([&] { return !support::runs(pid.toLongLong()); }));
        QCOMPARE(m_scratch.read(u"bash.log"_s), "said\ncried\n");
    }

    void withoutAProperIdNothingRuns()
    {
        ListeningHelpers helpers(&m_places);
        for (const QString &pid :
             {u"0"_s, u""_s, QString(), u"000"_s, u"abc"_s, u"1; id"_s, u"-1"_s, u" 1"_s}) {
            QVERIFY2(!helpers.processIsRunningWithPID(pid), qPrintable(pid));
            QVERIFY2(!helpers.terminatePIDWaitUntilTerminated(pid, KXHelpers::Wait::UntilTerminated),
                     qPrintable(pid));
        }
        QVERIFY(helpers.lines.isEmpty());
        QVERIFY(helpers.strings.isEmpty());
    }

    void stoppingAnEmptyIdStopsNothing()
    {
        // 0 is our own group, -1 is everybody.
        QProcess other;
        other.start(FakeTool::program(), {u"--do"_s, u"hang"_s});
        QVERIFY(other.waitForStarted());
        for (const QString &pid : {u"0"_s, u"00"_s, u"-1"_s, u""_s, u"x"_s}) {
            m_helpers.suspendPID(pid);
            m_helpers.terminatePIDWaitUntilTerminated(pid, KXHelpers::Wait::No);
            m_helpers.resumePID(pid);
        }
        QVERIFY(!support::waitFor([&] { return support::stateOf(other.processId()) == 'T'; }, 100));
        QVERIFY(support::runs(other.processId()));
        other.kill();
        QVERIFY(other.waitForFinished());
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
        QVERIFY(helpers.lines.isEmpty()); // no shell is asked
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

    void zombieOfAnotherParentHasEnded()
    {
        QProcess parent;
        parent.start(u"bash"_s, {u"-c"_s, u"sleep 60 & echo $!; exec cat"_s});
        QVERIFY(parent.waitForReadyRead());
        const QString pid = QString::fromLatin1(parent.readLine()).trimmed();
        parent.write("here\n"); // the shell would wait for its child, cat that answers never does
        QVERIFY(parent.waitForReadyRead());
        QCOMPARE(parent.readLine(), "here\n");
        ::kill(pid.toInt(), SIGKILL);
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
        QElapsedTimer clock; // events are not served meanwhile: it is not reaped
        clock.start();
        while (support::stateOf(pid) != 'Z' && clock.elapsed() < support::patience)
            QThread::msleep(5);
        QVERIFY(!m_helpers.processIsRunningWithPID(QString::number(pid)));
        QVERIFY(support::waitFor([&] { return tool->end() != tools::ToolProcess::End::StillRunning; }));
        QCOMPARE(tool->exitStatus(), std::optional<int>(7));
    }

private:
    QString startHanging() const
    {
        OptionList options = playing({u"ignore TERM"_s, u"hang"_s});
        options.append(OptionItem(u"&> /dev/null & echo $!"));
        return m_helpers.doShellScriptForWithOptions(QUrl::fromLocalFile(FakeTool::program()), options);
    }

    support::Scratch m_scratch;
    support::FakePlaces m_places{m_scratch.path()};
    KXHelpers m_helpers{&m_places};
};

TESSARAY_TEST(BackgroundToolsTest)
#include "BackgroundToolsTest.moc"
