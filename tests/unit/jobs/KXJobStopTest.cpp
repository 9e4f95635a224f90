// Pausing, resuming and stopping, with real processes of both kinds.
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"

#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <algorithm>

using namespace Qt::StringLiterals;
using support::JobFixture;
using support::NotificationRecord;

namespace {

enum class Kind { Process, Background };

const QStringList hang{u"hang"_s};
const QStringList deaf{u"ignore TERM"_s, u"ignore INT"_s, u"ignore HUP"_s};
const QStringList child{u"child PIDS"_s};

/// A job with a running tool; the tool and its children have left their ids.
struct Running
{
    /// "PIDS" in the script stands for the file with the ids, which the tool joins once it has done the rest.
    explicit Running(Kind how, const QStringList &habits = {}, const QStringList &rest = hang)
        : kind(how)
    {
        fixture.setKeepLogs(true);
        fixture.scratch.write(u"film.mkv"_s, "film");
        job->initJobWithSelectionAndPreferences(fixture.selectionFor(path(u"film.mkv"_s)),
                                                fixture.preferences);
        step = start(u"out.m4v"_s, QStringList{u"out begun"_s} + habits + QStringList{u"pid PIDS"_s} + rest);
        ids = 1 + habits.filter(u"child "_s).size();
        if (!support::waitFor([this] { return pids().size() == ids; }))
            qFatal("the tool of this test did not start");
    }

    support::TestConverterPointer start(const QString &output, QStringList script)
    {
        script.replaceInStrings(u"PIDS"_s, path(u"pids"_s));
        script.replaceInStrings(u"GO"_s, path(u"go"_s));
        const QUrl tool = fixture.installTool(output + u".tool"_s, script);
        return kind == Kind::Process ? job->runStep(output, fixture.scratch.url(output), tool)
                                     : job->runBackgroundStep(output, fixture.scratch.url(output), tool);
    }
    QString path(const QString &name) const { return fixture.scratch.path(name); }
    bool exists(const QString &name) const { return QFileInfo::exists(path(name)); }
    QList<qint64> pids() const
    {
        QList<qint64> list;
        for (const QByteArray &line : fixture.scratch.read(u"pids"_s).split('\n')) {
            if (!line.isEmpty())
                list.append(line.toLongLong());
        }
        return list;
    }
    qint64 tool() const
    {
        return kind == Kind::Process ? step->converterTask()->processIdentifier()
                                     : step->doShell_ID().toLongLong();
    }
    bool noneRuns() const
    {
        const auto list = pids();
        return std::none_of(list.begin(), list.end(), &support::runs);
    }
    bool isStopped() const
    {
        return support::waitFor([this] { return support::stateOf(tool()) == 'T'; });
    }
    bool goesOn() const
    {
        return support::waitFor([this] { return support::stateOf(tool()) != 'T'; });
    }

    Kind kind;
    qsizetype ids = 0;
    JobFixture fixture{JobFixture::Tools::Fake};
    support::TestJobPointer job = support::makeTestJob(fixture.jobContext());
    support::TestConverterPointer step;
    NotificationRecord record{fixture.notifications, {u"progressUpdate"_s, u"jobDone"_s}};
};

void addKinds()
{
    QTest::addColumn<Kind>("kind");
    QTest::newRow("process object") << Kind::Process;
    QTest::newRow("background tool") << Kind::Background;
}

} // namespace

class KXJobStopTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void afterAStopNothingOfTheGroupIsLeft_data()
    {
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QStringList>("habits");
        QTest::addColumn<bool>("isPaused");
        for (const Kind kind : {Kind::Process, Kind::Background}) {
            const QByteArray name = kind == Kind::Process ? "process object" : "background tool";
            QTest::newRow((name + ", plain").constData()) << kind << QStringList{} << false;
            QTest::newRow((name + ", paused").constData()) << kind << QStringList{} << true;
            QTest::newRow((name + ", deaf").constData()) << kind << deaf << false;
            QTest::newRow((name + ", deaf and paused").constData()) << kind << deaf << true;
            QTest::newRow((name + ", with a child").constData()) << kind << child << false;
            QTest::newRow((name + ", all of it").constData()) << kind << deaf + child + child << true;
        }
    }

    void afterAStopNothingOfTheGroupIsLeft()
    {
        QFETCH(Kind, kind);
        QFETCH(QStringList, habits);
        QFETCH(bool, isPaused);
        Running running(kind, habits);
        QVERIFY(running.pids().contains(running.tool()));
        if (isPaused) {
            running.job->pauseJob();
            QVERIFY(running.isStopped());
        }
        running.job->stopJob();
        QVERIFY(support::waitFor([&] { return running.noneRuns(); }));
    }

    void everyRunningToolIsStopped_data() { addKinds(); }

    void everyRunningToolIsStopped()
    {
        QFETCH(Kind, kind);
        Running running(kind);
        running.start(u"second.m4v"_s, {u"pid PIDS"_s, u"hang"_s});
        running.start(u"third.m4v"_s, {u"pid PIDS"_s, u"hang"_s});
        QVERIFY(support::waitFor([&] { return running.pids().size() == 3; }));
        running.job->stopJob();
        QVERIFY(support::waitFor([&] { return running.noneRuns(); }));
        QVERIFY(running.job->stepTaskList().isEmpty());
    }

    void processThatHasEndedIsLeftAlone()
    {
        Running running(Kind::Process, {}, {});
        const auto task = running.step->converterTask();
        QVERIFY(support::waitFor([&] { return !task->isRunning(); }));
        running.job->commands.clear();
        running.job->stopJob();
        for (const QString &command : std::as_const(running.job->commands))
            QVERIFY2(!command.startsWith(u"kill"_s), qPrintable(command));
    }

    void textThatIsNoIdStopsNoProcess()
    {
        Running running(Kind::Process);
        running.job->setStepTaskList(
            {u"0"_s, u"-1"_s, u"1x"_s, u""_s, QString(), tools::ToolProcessPointer()});
        running.job->pauseJob();
        running.job->resumeJob();
        running.job->stopJob();
        QVERIFY(support::runs(running.tool()));
        running.step->converterTask()->terminate();
    }

    void stopDeletesLogsAndTemporaryFilesWhateverIsKept_data() { addKinds(); }

    void stopDeletesLogsAndTemporaryFilesWhateverIsKept()
    {
        QFETCH(Kind, kind);
        Running running(kind);
        QVERIFY(running.fixture.preferences.panelFlag(u"keepLogsFlag"_s));
        const QUrl temporary = running.job->guard().claimFree(running.fixture.scratch.url(u"temp.ass"_s));
        QVERIFY(running.job->guard().files().create(temporary, "x"));
        running.job->setTempFilesToDeleteList({temporary});
        const QString folder = running.job->temporaryFolder();
        const QUrl log = running.fixture.scratch.url(u"out.m4v.log"_s);
        QVERIFY(support::waitFor([&] { return running.job->guard().files().isOwn(log); }));
        running.job->stopJob();
        QVERIFY(!running.exists(u"out.m4v.log"_s));
        QVERIFY(!running.exists(u"temp.ass"_s));
        QVERIFY(!QFileInfo::exists(folder));
    }

    void stopNeverDeletesAnInput()
    {
        Running running(Kind::Process);
        const QList<QUrl> film{running.fixture.scratch.url(u"film.mkv"_s)};
        running.job->setTempFilesToDeleteList(film);
        running.job->setLogFilesToDeleteList(film);
        running.step->setOutputFileURL(film.first());
        running.job->stopJob();
        QCOMPARE(running.fixture.scratch.read(u"film.mkv"_s), QByteArray("film"));
    }

    void everythingThatWasWrittenGoes_data() { addKinds(); }

    void everythingThatWasWrittenGoes()
    {
        QFETCH(Kind, kind);
        Running running(kind);
        running.start(u"second.m4v"_s, {u"write 5 last"_s, u"hang"_s});
        const QUrl second = running.fixture.scratch.url(u"second.m4v"_s);
        QVERIFY(support::waitFor([&] { return running.job->guard().files().isOwn(second); }));
        running.job->stopJob();
        QCOMPARE(running.fixture.scratch.names().filter(u".tessaray"_s), QStringList());
        QVERIFY(!running.exists(u"out.m4v"_s) && !running.exists(u"second.m4v"_s));
        QVERIFY(running.exists(u"film.mkv"_s));
    }

    void fileUnderANameThatWasRefusedStays()
    {
        Running running(Kind::Process);
        running.fixture.scratch.write(u"users.m4v"_s, "the user's");
        running.step->setOutputFileURL(running.fixture.scratch.url(u"users.m4v"_s));
        running.job->stopJob();
        QCOMPARE(running.fixture.scratch.read(u"users.m4v"_s), QByteArray("the user's"));
    }

    void theFileThatWasToBeReplacedStays()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        fixture.scratch.write(u"a.m4v"_s, "old");
        const auto job = support::makeTestJob(fixture.jobContext(steps::WhenTaken::Replace));
        job->runStep(u"one"_s, fixture.scratch.url(u"a.m4v"_s),
                     fixture.installTool(u"tool"_s, {u"write 5 last"_s, u"hang"_s}));
        const QUrl output = fixture.scratch.url(u"a.m4v"_s);
        QVERIFY(support::waitFor([&] { return job->guard().files().isOwn(output); }));
        job->stopJob();
        QCOMPARE(fixture.scratch.read(u"a.m4v"_s), QByteArray("old"));
        QCOMPARE(fixture.scratch.names().filter(u"a"_s).filter(u".m4v"_s), QStringList{u"a.m4v"_s});
    }

    /// The files may have their names before the job hears of it.
    void aStopAfterTheFilesHaveTheirNamesIsNone()
    {
        Running running(Kind::Process, {}, {u"await GO"_s, u"write 5 last"_s});
        running.fixture.scratch.write(u"go"_s, {});
        QVERIFY(support::waitFor([&] { return running.exists(u"out.m4v"_s); }));
        running.job->stopJob();
        QCOMPARE(running.job->outcome().verdict, steps::Verdict::Ok);
        QCOMPARE(running.job->outputs(), QList<QUrl>{running.fixture.scratch.url(u"out.m4v"_s)});
        QCOMPARE(running.record.count(u"jobDone"_s), 1);
        QCOMPARE(running.fixture.scratch.names().filter(u".tessaray"_s), QStringList());
    }

    void stoppedJobSaysSoAndIsSilentFromThen_data() { addKinds(); }

    void stoppedJobSaysSoAndIsSilentFromThen()
    {
        QFETCH(Kind, kind);
        Running running(kind);
        QSignalSpy changed(running.job.get(), &KXJob::outcomeChanged);
        running.job->stopJob();
        QVERIFY(running.job->jobIsCancelled());
        QCOMPARE(running.job->outcome().verdict, steps::Verdict::Stopped);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(running.record.all().size(), 1);
        QVERIFY(running.record.all().first().object.value<jobs::ProgressList>().isEmpty());
        running.job->stopJob();
        running.job->jobDone();
        running.job->requestJobDone();
        running.step->post(u"taskCompletion"_s, u"Complete"_s);
        QVERIFY(!support::waitFor([&] { return running.record.all().size() > 1; }, 200));
        QCOMPARE(running.job->heard, 0);
        QCOMPARE(running.job->outcome().verdict, steps::Verdict::Stopped);
    }

    void requestedEndDoesNotComeAfterAStop()
    {
        Running running(Kind::Process);
        running.job->requestJobDone(50);
        running.job->stopJob();
        QVERIFY(!support::waitFor([&] { return running.record.count(u"jobDone"_s) > 0; }, 200));
    }

    void pausedToolsStopAndResumedOnesGoOn_data() { addKinds(); }

    void pausedToolsStopAndResumedOnesGoOn()
    {
        QFETCH(Kind, kind);
        Running running(kind);
        running.start(u"second.m4v"_s, {u"await "_s + running.path(u"go"_s),
                                        u"write 7 %1"_s.arg(running.path(u"second.m4v"_s))});
        running.job->pauseJob();
        QVERIFY(running.isStopped());
        running.fixture.scratch.write(u"go"_s, {});
        QVERIFY(!support::waitFor([&] { return running.exists(u"second.m4v"_s); }, 700));
        running.job->resumeJob();
        QVERIFY(running.goesOn());
        running.job->pauseJob(); // any number of times
        running.job->resumeJob();
        QVERIFY(support::waitFor([&] { return running.fixture.scratch.read(u"second.m4v"_s) == "wwwwwww"; }));
        QVERIFY(running.job->commands.isEmpty()); // no shell is asked
        running.job->stopJob();
    }

    /// Its number may be another's by then.
    void backgroundToolThatHasEndedIsNoLongerSignalled()
    {
        Running running(Kind::Background, {}, {});
        QVERIFY(support::waitFor([&] { return running.job->stepTaskList().isEmpty(); }));
        const auto second = running.start(u"second.m4v"_s, hang);
        QCOMPARE(running.job->stepTaskList(), QList<jobs::StepTask>{second->doShell_ID()});
        running.job->stopJob();
    }

    void monitorLoopEndsWithTheStop()
    {
        Running running(Kind::Background);
        std::atomic_bool loopEnded = false;
        running.job->monitorQueue()->start([&loopEnded, self = running.job] {
            while (!self->jobIsCancelled())
                QThread::msleep(5);
            loopEnded = true;
        });
        bool secondRan = false;
        running.job->monitorQueue()->start([&secondRan] { secondRan = true; }); // waits behind the first
        running.job->stopJob();
        QVERIFY(support::waitFor([&] { return loopEnded.load(); }));
        running.job->monitorQueue()->waitForDone();
        QVERIFY(!secondRan);
    }

    void jobHeldByItsLoopEndsInItsOwnThread()
    {
        Running running(Kind::Process);
        QThread *endedIn = nullptr;
        connect(
            running.job.get(), &QObject::destroyed, this, [&] { endedIn = QThread::currentThread(); },
            Qt::DirectConnection);
        running.job->monitorQueue()->start([self = running.job] {
            while (!self->jobIsCancelled())
                QThread::msleep(5);
            QThread::msleep(50);
        });
        running.job->stopJob();
        running.step.reset();
        running.job.reset();
        QVERIFY(support::waitFor([&] { return endedIn != nullptr; }));
        QCOMPARE(endedIn, thread());
    }
};

TESSARAY_TEST(KXJobStopTest)
#include "KXJobStopTest.moc"
