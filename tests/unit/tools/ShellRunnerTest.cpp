#include "tools/ShellRunner.h"
#include "support/FakeTool.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "tools/OptionItem.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <fcntl.h>
#include <thread>

using namespace Qt::StringLiterals;
using tools::ShellReply;
using tools::ShellRequest;
using tools::Waiting;

Q_DECLARE_METATYPE(tools::Waiting)

namespace {

ShellRequest request(const QString &line, Waiting waiting = Waiting::Blocking)
{
    ShellRequest made;
    made.line = line;
    made.waiting = waiting;
    return made;
}

/// A line that plays these commands with the fake tool.
QString played(const QStringList &commands)
{
    QString line = tools::safelyDoubleQuoted(support::FakeTool::program()) + u" --do"_s;
    for (const QString &command : commands)
        line += u' ' + tools::safelySingleQuoted(command);
    return line;
}

QStringList openDescriptors()
{
    return QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace

class ShellRunnerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void statusSelectsTheStream_data() { bothWaysOfWaiting(); }
    void statusSelectsTheStream()
    {
        QFETCH(Waiting, waiting);
        const ShellReply good = tools::runShell(request(u"echo out; echo err >&2"_s, waiting));
        QCOMPARE(good.status, 0);
        QCOMPARE(good.output, "out\n");
        QCOMPARE(good.error, "err\n");
        QCOMPARE(good.selected(), "out\n");
        const ShellReply bad = tools::runShell(request(u"echo out; echo err >&2; exit 3"_s, waiting));
        QCOMPARE(bad.status, 3);
        QCOMPARE(bad.selected(), "err\n");
    }

    void missingProgramAnswersTheShellsMessage()
    {
        const ShellReply reply = tools::runShell(request(u"/no/such/tool"_s));
        QCOMPARE(reply.status, 127);
        QVERIFY(reply.selected().contains("/no/such/tool"));
    }

    void drainsFloodsOnBothStreams_data() { bothWaysOfWaiting(); }
    void drainsFloodsOnBothStreams()
    {
        QFETCH(Waiting, waiting);
        const QStringList flood{u"flood err 300000"_s, u"flood out 310000"_s, u"flood err 1000"_s};
        const ShellReply reply = tools::runShell(request(played(flood), waiting));
        QCOMPARE(reply.status, 0);
        QCOMPARE(reply.output.size(), 310000);
        QCOMPARE(reply.error.size(), 301000);
    }

    void standardInputIsAtItsEnd_data() { bothWaysOfWaiting(); }
    void standardInputIsAtItsEnd()
    {
        QFETCH(Waiting, waiting);
        QCOMPARE(tools::runShell(request(u"cat; echo done"_s, waiting)).output, "done\n");
    }

    void outputOfWhatTheShellLeavesBehindIsReadToItsEnd_data() { bothWaysOfWaiting(); }
    void outputOfWhatTheShellLeavesBehindIsReadToItsEnd()
    {
        QFETCH(Waiting, waiting);
        const QString line = u"(sleep 0.3; echo late; echo wrong >&2) & echo now"_s;
        const ShellReply reply = tools::runShell(request(line, waiting));
        QCOMPARE(reply.status, 0);
        QCOMPARE(reply.output, "now\nlate\n");
        QCOMPARE(reply.error, "wrong\n");
    }

    void oneStreamMayEndLongBeforeTheOther()
    {
        const ShellReply reply = tools::runShell(request(u"exec 2>&-; sleep 0.2; echo out"_s));
        QCOMPARE(reply.output, "out\n");
        QCOMPARE(tools::runShell(request(u"exec >&-; sleep 0.2; echo err >&2; exit 1"_s)).error, "err\n");
        QCOMPARE(tools::runShell(request(u"exec >&- 2>&-; sleep 0.2; exit 5"_s)).status, 5);
    }

    void timeoutKillsTheWholeGroup_data() { bothWaysOfWaiting(); }
    void timeoutKillsTheWholeGroup()
    {
        QFETCH(Waiting, waiting);
        const support::Scratch scratch;
        ShellRequest hanging = request(hangingFamily(scratch) + u"; echo never"_s, waiting);
        const ShellReply reply = endedByItsLimit(hanging);
        QCOMPARE(reply.status, -1);
        QCOMPARE(reply.output, "begun\n");
        familyIsGone(scratch);
    }

    void stopFlagKillsTheWholeGroup_data() { bothWaysOfWaiting(); }
    void stopFlagKillsTheWholeGroup()
    {
        QFETCH(Waiting, waiting);
        const support::Scratch scratch;
        ShellRequest hanging = request(hangingFamily(scratch) + u"; echo never"_s, waiting);
        hanging.stop = std::make_shared<std::atomic_bool>(false);
        std::thread stopper([&] {
            while (scratch.read(u"pids"_s).count('\n') < 2)
                QThread::msleep(5);
            *hanging.stop = true;
        });
        const ShellReply reply = tools::runShell(hanging);
        stopper.join();
        QCOMPARE(reply.status, -1);
        familyIsGone(scratch);
    }

    void timeoutKillsWhatTheShellLeftBehind_data() { bothWaysOfWaiting(); }
    void timeoutKillsWhatTheShellLeftBehind()
    {
        QFETCH(Waiting, waiting);
        ShellRequest leaving = request(u"sleep 60 & echo $!"_s, waiting);
        const ShellReply reply = endedByItsLimit(leaving);
        const qint64 pid = reply.output.trimmed().toLongLong();
        QVERIFY(pid > 1);
        QVERIFY(support::waitFor([&] { return !support::runs(pid); }));
    }

    void flagThatIsAlreadySetStopsAtOnce_data() { bothWaysOfWaiting(); }
    void flagThatIsAlreadySetStopsAtOnce()
    {
        QFETCH(Waiting, waiting);
        ShellRequest stopped = request(u"sleep 1000"_s, waiting);
        stopped.stop = std::make_shared<std::atomic_bool>(true);
        QCOMPARE(tools::runShell(stopped).status, -1);
    }

    void limitsThatAreNotReachedChangeNothing_data() { bothWaysOfWaiting(); }
    void limitsThatAreNotReachedChangeNothing()
    {
        QFETCH(Waiting, waiting);
        ShellRequest limited = request(u"sleep 0.2; echo whole"_s, waiting);
        limited.timeoutMs = 20000;
        limited.stop = std::make_shared<std::atomic_bool>(false);
        QCOMPARE(tools::runShell(limited).output, "whole\n");
    }

    void killedShellCountsAsFailed()
    {
        const ShellReply reply = tools::runShell(request(u"echo out; echo err >&2; kill -s KILL $$"_s));
        QCOMPARE(reply.status, -1);
        QCOMPARE(reply.selected(), "err\n");
    }

    void leadsAGroupOfItsOwn()
    {
        const ShellReply reply = tools::runShell(request(u"echo $$; ps -o pgid= -p $$"_s));
        const QByteArrayList ids = reply.output.simplified().split(' ');
        QCOMPARE(ids.size(), 2);
        QCOMPARE(ids.at(0), ids.at(1));
    }

    void takesFolderAndEnvironment()
    {
        const support::Scratch scratch;
        QDir().mkpath(scratch.path(u"a b"_s));
        ShellRequest asked = request(u"pwd; echo \"$TESSARAY_WORD\""_s);
        asked.workingFolder = scratch.path(u"a b"_s);
        asked.environment.insert(u"TESSARAY_WORD"_s, u"ü $x"_s);
        QCOMPARE(tools::runShell(asked).output, (scratch.path(u"a b"_s) + u"\nü $x\n"_s).toUtf8());
    }

    void folderThatIsMissingIsSaidAndNothingRuns_data() { bothWaysOfWaiting(); }
    void folderThatIsMissingIsSaidAndNothingRuns()
    {
        QFETCH(Waiting, waiting);
        ShellRequest lost = request(u"echo ran"_s, waiting);
        lost.workingFolder = u"/no/such/folder"_s;
        const ShellReply reply = tools::runShell(lost);
        QCOMPARE(reply.status, -1);
        QVERIFY(reply.output.isEmpty());
        QVERIFY(!reply.selected().isEmpty());
    }

    void eventLoopServesTimersMeanwhile()
    {
        int ticks = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [&] { ++ticks; });
        timer.start(10);
        tools::runShell(request(u"sleep 0.5"_s, Waiting::Blocking));
        QCOMPARE(ticks, 0);
        tools::runShell(request(u"sleep 0.5"_s, Waiting::WithEventLoop));
        QVERIFY(ticks > 1);
    }

    void runsWithinTheWaitOfAnother()
    {
        QByteArray inner;
        QTimer::singleShot(
            0, this, [&] { inner = tools::runShell(request(u"echo in"_s, Waiting::WithEventLoop)).output; });
        QCOMPARE(tools::runShell(request(u"sleep 0.4; echo out"_s, Waiting::WithEventLoop)).output, "out\n");
        QCOMPARE(inner, "in\n");
    }

    void threadsDoNotMixTheirAnswers()
    {
        std::atomic_int wrong = 0;
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 6; ++thread) {
            threads.emplace_back([thread, &wrong] {
                for (int i = 0; i < 10; ++i) {
                    const QByteArray word = QByteArray::number(thread * 100 + i);
                    const QString line = QLatin1String("echo %1; echo e%1 >&2").arg(QLatin1String(word));
                    const ShellReply reply = tools::runShell(request(line, Waiting::WithEventLoop));
                    wrong +=
                        reply.output != word + '\n' || reply.error != 'e' + word + '\n' || reply.status != 0;
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(wrong.load(), 0);
    }

    void leavesNoDescriptorOpen_data() { bothWaysOfWaiting(); }
    void leavesNoDescriptorOpen()
    {
        QFETCH(Waiting, waiting);
        tools::runShell(request(u"true"_s, waiting));
        const qsizetype before = openDescriptors().size();
        for (int i = 0; i < 20; ++i)
            tools::runShell(request(u"echo x; exit 1"_s, waiting));
        QCOMPARE(openDescriptors().size(), before);
    }

    void childrenInheritNothingOfOurs()
    {
        QStringList allowed{u"0"_s, u"1"_s, u"2"_s};
        for (const QString &descriptor : openDescriptors()) {
            const int flags = ::fcntl(descriptor.toInt(), F_GETFD);
            if (flags >= 0 && (flags & FD_CLOEXEC) == 0)
                allowed.append(descriptor); // inherited by the test itself
        }
        int free = 0;
        while (allowed.contains(QString::number(free)))
            ++free;
        allowed.append(QString::number(free)); // the folder that ls reads
        const QByteArray listed = tools::runShell(request(u"exec ls /proc/self/fd"_s)).output;
        for (const QString &descriptor : QString::fromLatin1(listed).trimmed().split(u'\n'))
            QVERIFY2(allowed.contains(descriptor), listed.constData());
    }

    void kindOfTheShellIsWhatItDoes()
    {
        const support::Scratch scratch;
        ShellRequest asked = request(u"echo x &> asked; wait"_s);
        asked.workingFolder = scratch.path();
        const ShellReply reply = tools::runShell(asked);
        const bool knows = reply.output.isEmpty() && scratch.read(u"asked"_s) == "x\n";
        QCOMPARE(tools::shellKind(),
                 knows ? tools::ShellKind::KnowsAmpersandRedirect : tools::ShellKind::PlainBourne);
    }

private:
    static void bothWaysOfWaiting()
    {
        QTest::addColumn<Waiting>("waiting");
        QTest::newRow("blocking") << Waiting::Blocking;
        QTest::newRow("event loop") << Waiting::WithEventLoop;
    }

    /// Its answer with a limit that was long enough for the line to say something.
    static ShellReply endedByItsLimit(ShellRequest asked)
    {
        ShellReply reply;
        for (asked.timeoutMs = 500; reply.output.isEmpty() && asked.timeoutMs < support::patience;
             asked.timeoutMs *= 4) {
            QElapsedTimer clock;
            clock.start();
            reply = tools::runShell(asked);
            if (clock.elapsed() < asked.timeoutMs)
                qFatal("it was ended before its time");
        }
        return reply;
    }

    /// A tool that ignores being asked to end, and its child, both noted in "pids".
    static QString hangingFamily(const support::Scratch &scratch)
    {
        const QString pids = scratch.path(u"pids"_s);
        return played({u"ignore TERM"_s, u"child "_s + pids, u"pid "_s + pids, u"out begun"_s, u"hang"_s});
    }

    static void familyIsGone(const support::Scratch &scratch)
    {
        const QByteArrayList pids = scratch.read(u"pids"_s).trimmed().split('\n');
        QCOMPARE(pids.size(), 2);
        for (const QByteArray &pid : pids)
            QVERIFY(support::waitFor([&] { return !support::runs(pid.toLongLong()); }));
    }
};

TESSARAY_TEST(ShellRunnerTest)
#include "ShellRunnerTest.moc"
