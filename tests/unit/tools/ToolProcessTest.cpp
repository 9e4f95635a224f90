#include "tools/ToolProcess.h"
#include "support/FakeTool.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QDir>
#include <QTest>
#include <QThread>

#include <csignal>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using support::FakeTool;
using support::waitFor;
using tools::ToolProcess;
using tools::ToolProcessPointer;

namespace {

ToolProcess::Request request(const QStringList &commands)
{
    ToolProcess::Request made;
    made.program = FakeTool::program();
    made.arguments = QStringList{u"--do"_s} + commands;
    made.environment = QProcessEnvironment::systemEnvironment();
    return made;
}

/// What a process object told, in order.
class Listener final : public QObject
{
public:
    explicit Listener(const ToolProcessPointer &tool)
    {
        connect(tool.get(), &ToolProcess::chunkRead, this,
                [this](ToolProcess::Channel channel, const QByteArray &bytes) {
                    (channel == ToolProcess::Channel::Output ? output : error) += bytes;
                    afterEnd = afterEnd || !ends.isEmpty();
                });
        connect(tool.get(), &ToolProcess::channelEnded, this,
                [this](ToolProcess::Channel channel) { ends.append(channel); });
    }

    bool sawBothEndsOnce() const
    {
        return ends.count(ToolProcess::Channel::Output) == 1 && ends.count(ToolProcess::Channel::Error) == 1;
    }

    QByteArray output;
    QByteArray error;
    QList<ToolProcess::Channel> ends;
    bool afterEnd = false;
};

bool hasEnded(const ToolProcessPointer &tool)
{
    return tool->end() != ToolProcess::End::StillRunning;
}

/// Long enough for anything that would come late.
void serveEvents()
{
    waitFor([] { return false; }, 100);
}

} // namespace

class ToolProcessTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lowPriorityReachesTheToolAndWhatItStarts()
    {
        ToolProcess::Request asked;
        asked.program = u"/bin/sh"_s;
        asked.arguments = QStringList{u"-c"_s, u"nice; sh -c nice"_s};
        asked.environment = QProcessEnvironment::systemEnvironment();
        const int ours = ::getpriority(PRIO_PROCESS, 0);
        for (const bool low : {false, true}) {
            asked.atLowPriority = low;
            const auto tool = ToolProcess::start(asked);
            const Listener listener(tool);
            QVERIFY(waitFor([&] { return hasEnded(tool); }));
            const QByteArray expected = QByteArray::number(low ? 10 : ours);
            QCOMPARE(listener.output, expected + '\n' + expected + '\n');
        }
    }

    void saysWhatItReadAndThenThatBothStreamsEnded_data()
    {
        QTest::addColumn<QStringList>("commands");
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<QByteArray>("error");
        QTest::newRow("both") << QStringList{u"out a"_s, u"err b"_s, u"part out half"_s}
                              << QByteArray("a\nhalf") << QByteArray("b\n");
        QTest::newRow("error only") << QStringList{u"err b"_s} << QByteArray() << QByteArray("b\n");
        QTest::newRow("output only") << QStringList{u"out a"_s} << QByteArray("a\n") << QByteArray();
        QTest::newRow("silent") << QStringList{} << QByteArray() << QByteArray();
        QTest::newRow("in pieces") << QStringList{u"part err a\\r"_s, u"sleep 60"_s, u"part err b"_s}
                                   << QByteArray() << QByteArray("a\rb");
    }

    void saysWhatItReadAndThenThatBothStreamsEnded()
    {
        QFETCH(QStringList, commands);
        const auto tool = ToolProcess::start(request(commands));
        const Listener listener(tool);
        QVERIFY(tool->isRunning());
        QVERIFY(waitFor([&] { return hasEnded(tool); }));
        serveEvents();
        QTEST(listener.output, "output");
        QTEST(listener.error, "error");
        QVERIFY(listener.sawBothEndsOnce());
        QVERIFY(!listener.afterEnd);
        QVERIFY(!tool->isRunning());
        QCOMPARE(tool->end(), ToolProcess::End::Exited);
        QCOMPARE(tool->exitStatus(), std::optional<int>(0));
    }

    void exitStatusIsThatOfTheProgram()
    {
        const auto tool = ToolProcess::start(request({u"sleep 50"_s, u"exit 3"_s}));
        QVERIFY(!tool->exitStatus());
        QVERIFY(waitFor([&] { return hasEnded(tool); }));
        QCOMPARE(tool->exitStatus(), std::optional<int>(3));
    }

    void crashHasNoExitStatusAndStillEnds()
    {
        const auto tool = ToolProcess::start(request({u"out a"_s, u"die SEGV"_s}));
        const Listener listener(tool);
        QVERIFY(waitFor([&] { return hasEnded(tool); }));
        QCOMPARE(tool->end(), ToolProcess::End::Crashed);
        QVERIFY(!tool->exitStatus());
        QCOMPARE(listener.output, "a\n");
        QVERIFY(listener.sawBothEndsOnce());
    }

    void startThatFailsEndsToo_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("folder");
        QTest::newRow("missing") << u"/no/such/tool"_s << QString();
        QTest::newRow("not executable") << u"/etc/hostname"_s << QString();
        QTest::newRow("missing folder") << FakeTool::program() << u"/no/such/folder"_s;
        QTest::newRow("no program") << QString() << QString();
    }

    void startThatFailsEndsToo()
    {
        ToolProcess::Request failing = request({});
        QFETCH(QString, program);
        failing.program = program;
        QFETCH(QString, folder);
        failing.workingFolder = folder;
        const auto tool = ToolProcess::start(failing);
        const Listener listener(tool);
        QVERIFY(waitFor([&] { return hasEnded(tool); }));
        serveEvents();
        QCOMPARE(tool->end(), ToolProcess::End::NotStarted);
        QVERIFY(!tool->isRunning());
        QVERIFY(!tool->exitStatus());
        QVERIFY2(listener.error.contains("could not be started"), listener.error.constData());
        QVERIFY(listener.error.contains(program.toUtf8()));
        QVERIFY(listener.error.endsWith('\n'));
        QVERIFY(listener.sawBothEndsOnce());
    }

    void waitingForAStartThatFailsDoesNotSayThatItRuns()
    {
        ToolProcess::Request failing = request({});
        failing.program = u"/no/such/tool"_s;
        const auto tool = ToolProcess::start(failing);
        const Listener listener(tool);
        QVERIFY(tool->waitUntilExit(-1));
        QVERIFY(waitFor([&] { return hasEnded(tool); }));
        QVERIFY(listener.sawBothEndsOnce());
    }

    void waitingBlocksUntilTheExit()
    {
        const support::Scratch scratch;
        const auto tool = ToolProcess::start(
            request({u"out a"_s, u"await "_s + scratch.path(u"go"_s), u"flood err 300000"_s}));
        const Listener listener(tool);
        QVERIFY(!tool->waitUntilExit(50));
        QVERIFY(tool->isRunning());
        scratch.write(u"go"_s, {});
        QVERIFY(tool->waitUntilExit(-1));
        QVERIFY(tool->waitUntilExit(-1));
        QCOMPARE(tool->exitStatus(), std::optional<int>(0));
        QCOMPARE(listener.output, "a\n");
        QCOMPARE(listener.error.size(), 300000);
        QVERIFY(listener.sawBothEndsOnce());
    }

    void floodsOnBothStreamsAreDrained()
    {
        const auto tool =
            ToolProcess::start(request({u"flood err 2000000"_s, u"flood out 300000"_s, u"flood err 500"_s}));
        const Listener listener(tool);
        QVERIFY(waitFor([&] { return hasEnded(tool); }));
        QCOMPARE(listener.error.size(), 2000500);
        QCOMPARE(listener.output.size(), 300000);
        QVERIFY(listener.sawBothEndsOnce());
    }

    void standardInputIsAtItsEnd()
    {
        const auto tool = ToolProcess::start(request({u"cat"_s, u"out done"_s}));
        const Listener listener(tool);
        QVERIFY(waitFor([&] { return hasEnded(tool); }));
        QCOMPARE(listener.output, "done\n");
    }

    void argumentsEnvironmentAndFolderArriveAsTheyStand()
    {
        const support::Scratch scratch;
        const QString record = scratch.path(u"record"_s);
        const QString seen = scratch.path(u"seen"_s);
        ToolProcess::Request asked = request({});
        asked.program = FakeTool::install(
            scratch.path(u"a tool"_s),
            {u"record "_s + record, u"environment PWD_WORD "_s + seen, u"write 5 made here"_s});
        asked.arguments = {u"-i"_s, u"my 'film' $(id).mkv"_s, u""_s, u"two\nlines"_s};
        asked.environment.insert(u"PWD_WORD"_s, u"a b"_s);
        asked.workingFolder = scratch.path();
        const auto tool = ToolProcess::start(asked);
        QVERIFY(waitFor([&] { return hasEnded(tool); }));
        QCOMPARE(tool->launchPath(), asked.program);
        QCOMPARE(tool->arguments(), asked.arguments);
        const auto runs = FakeTool::recordedRuns(record);
        QCOMPARE(runs.size(), 1);
        QCOMPARE(runs.first().arguments, QByteArrayList({"-i", "my 'film' $(id).mkv", "", "two\nlines"}));
        QCOMPARE(scratch.read(u"seen"_s), "PWD_WORD=a b\n");
        QCOMPARE(scratch.read(u"made here"_s), "wwwww");
    }

    void leadsAGroupOfItsOwn()
    {
        const auto tool = ToolProcess::start(request({u"out up"_s, u"hang"_s}));
        const Listener listener(tool);
        QVERIFY(waitFor([&] { return !listener.output.isEmpty(); }));
        QCOMPARE(::getpgid(static_cast<pid_t>(tool->processIdentifier())),
                 static_cast<pid_t>(tool->processIdentifier()));
        QVERIFY(tool->processIdentifier() != ::getpgrp());
    }

    void suspendedToolStandsStillAndGoesOn()
    {
        const support::Scratch scratch;
        const auto tool =
            ToolProcess::start(request({u"out up"_s, u"await "_s + scratch.path(u"go"_s), u"out on"_s}));
        const Listener listener(tool);
        QVERIFY(waitFor([&] { return listener.output == "up\n"; }));
        tool->suspend();
        QVERIFY(tool->isSuspended());
        QVERIFY(waitFor([&] { return support::stateOf(tool->processIdentifier()) == 'T'; }));
        scratch.write(u"go"_s, {});
        waitFor([] { return false; }, 300);
        QCOMPARE(listener.output, "up\n");
        QVERIFY(tool->isRunning());
        tool->resume();
        QVERIFY(!tool->isSuspended());
        QVERIFY(waitFor([&] { return hasEnded(tool); }));
        QCOMPARE(listener.output, "up\non\n");
    }

    void suspendingReachesTheWholeGroup()
    {
        const support::Scratch scratch;
        const auto tool =
            ToolProcess::start(request({u"child "_s + scratch.path(u"pid"_s), u"out up"_s, u"hang"_s}));
        const Listener listener(tool);
        QVERIFY(waitFor([&] { return listener.output == "up\n"; }));
        const qint64 child = scratch.read(u"pid"_s).trimmed().toLongLong();
        tool->suspend();
        QVERIFY(waitFor([&] { return support::stateOf(child) == 'T'; }));
        tool->resume();
        QVERIFY(waitFor([&] { return support::stateOf(child) == 'S'; }));
        tool->terminate();
        QVERIFY(waitFor([&] { return !support::runs(child); }));
    }

    void suspendedToolHearsThatItShallEnd()
    {
        const auto tool = ToolProcess::start(request({u"out up"_s, u"hang"_s}));
        const Listener listener(tool);
        QVERIFY(waitFor([&] { return listener.output == "up\n"; }));
        tool->suspend();
        QVERIFY(waitFor([&] { return support::stateOf(tool->processIdentifier()) == 'T'; }));
        tool->terminate();
        QVERIFY(!tool->isSuspended());
        QVERIFY(waitFor([&] { return hasEnded(tool); }));
        QCOMPARE(tool->end(), ToolProcess::End::Crashed);
        QVERIFY(listener.sawBothEndsOnce());
    }

    void endedToolIsLeftAlone()
    {
        const auto tool = ToolProcess::start(request({}));
        QVERIFY(tool->waitUntilExit(support::patience));
        tool->suspend();
        QVERIFY(!tool->isSuspended());
        tool->resume();
        tool->terminate();
        QCOMPARE(tool->exitStatus(), std::optional<int>(0));
    }

    void closedReadersReportNothingMore()
    {
        const support::Scratch scratch;
        const auto tool = ToolProcess::start(request({u"out up"_s, u"await "_s + scratch.path(u"go"_s),
                                                      u"flood out 300000"_s, u"flood err 300000"_s}));
        const Listener listener(tool);
        QVERIFY(waitFor([&] { return listener.output == "up\n"; }));
        tool->closeReaders();
        scratch.write(u"go"_s, {});
        QVERIFY(waitFor([&] { return hasEnded(tool); })); // still drained: it could not end otherwise
        serveEvents();
        QCOMPARE(listener.output, "up\n");
        QVERIFY(listener.error.isEmpty());
        QVERIFY(listener.ends.isEmpty());
        QCOMPARE(tool->exitStatus(), std::optional<int>(0));
    }

    void readersClosedAtTheFirstEndReportNoSecond()
    {
        const auto tool = ToolProcess::start(request({u"out a"_s}));
        const Listener listener(tool);
        connect(tool.get(), &ToolProcess::channelEnded, this, [&] { tool->closeReaders(); });
        QVERIFY(waitFor([&] { return hasEnded(tool); }));
        serveEvents();
        QCOMPARE(listener.ends.size(), 1);
    }

    void lettingGoKillsTheWholeGroup()
    {
        const support::Scratch scratch;
        const QString pids = scratch.path(u"pids"_s);
        auto tool =
            ToolProcess::start(request({u"ignore TERM"_s, u"child "_s + pids, u"pid "_s + pids, u"hang"_s}));
        QVERIFY(waitFor([&] { return scratch.read(u"pids"_s).count('\n') == 2; }));
        tool.reset();
        for (const QByteArray &pid : scratch.read(u"pids"_s).trimmed().split('\n'))
            QVERIFY(waitFor([&] { return !support::runs(pid.toLongLong()); }));
    }

    void lettingGoOfASuspendedToolKillsIt()
    {
        auto tool = ToolProcess::start(request({u"hang"_s}));
        const qint64 pid = tool->processIdentifier();
        tool->suspend();
        QVERIFY(waitFor([&] { return support::stateOf(pid) == 'T'; }));
        tool.reset();
        QVERIFY(!support::runs(pid));
    }

    void lettingGoRightAfterTheStartKillsIt()
    {
        qint64 pid = 0;
        {
            const auto tool = ToolProcess::start(request({u"hang"_s}));
            pid = tool->processIdentifier();
        }
        QVERIFY(pid > 1);
        QVERIFY(!support::runs(pid));
    }

    void listenerMayLetGoAtTheEnd()
    {
        auto tool = ToolProcess::start(request({u"out a"_s, u"err b"_s}));
        std::weak_ptr<ToolProcess> watched = tool;
        int ends = 0;
        connect(tool.get(), &ToolProcess::channelEnded, this, [&] {
            ++ends;
            tool.reset();
        });
        QVERIFY(waitFor([&] { return ends == 2; }));
        QVERIFY(watched.expired());
        serveEvents();
    }

    void listenerMayLetGoWhileTheToolRuns()
    {
        auto tool = ToolProcess::start(request({u"out a"_s, u"hang"_s}));
        const qint64 pid = tool->processIdentifier();
        connect(tool.get(), &ToolProcess::chunkRead, this, [&] { tool.reset(); });
        QVERIFY(waitFor([&] { return !tool; }));
        QVERIFY(waitFor([&] { return !support::runs(pid); }));
    }

    void anotherThreadMayLetGo()
    {
        auto tool = ToolProcess::start(request({u"hang"_s}));
        const qint64 pid = tool->processIdentifier();
        QThread *endedOn = nullptr;
        const auto note = [&] { endedOn = QThread::currentThread(); };
        connect(tool.get(), &QObject::destroyed, this, note, Qt::DirectConnection);
        std::thread([held = std::move(tool)]() mutable { held.reset(); }).join();
        QVERIFY(waitFor([&] { return endedOn != nullptr; }));
        QCOMPARE(endedOn, QThread::currentThread());
        QVERIFY(!support::runs(pid));
    }

    void leavesNoDescriptorOpen()
    {
        const auto descriptors = [] {
            return QDir(u"/proc/self/fd"_s)
                .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
                .size();
        };
        QVERIFY(ToolProcess::start(request({}))->waitUntilExit(5000));
        const qsizetype before = descriptors();
        for (int i = 0; i < 20; ++i)
            QVERIFY(ToolProcess::start(request({u"out a"_s}))->waitUntilExit(5000));
        QCOMPARE(descriptors(), before);
    }
};

TESSARAY_TEST(ToolProcessTest)
#include "ToolProcessTest.moc"
