// Operations on Matroska files that are stopped, paused and resumed while mkvmerge works. The short form
// draws some of the operations.
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/engines/MkvFaults.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;
using steps::WhenTaken;

namespace {

const QStringList everything{mkv::join, mkv::split,    mkv::remux,     mkv::remove,
                             mkv::mux,  mkv::editJoin, mkv::editSplit, mkv::editRemux};

bool allAre(const QList<qint64> &pids, bool stopped)
{
    return std::all_of(pids.begin(), pids.end(),
                       [&](qint64 pid) { return (stateOf(pid) == 'T') == stopped; });
}

} // namespace

class MkvStopTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { manyPacketsBeginMkv(); }

    void init() { make(WhenTaken::NextFreeName); }

    void stopped_data() { rowsFor(everything, 3); }

    void stopped()
    {
        QFETCH(QString, operation);
        startAndMeet(operation);
        const QStringList others = shownNames();
        const auto processes = m_fault->runs.processes();
        QVERIFY(!processes.isEmpty());
        const JobPointer job = queue().currentJob();
        queue().stopCurrentJob();
        QVERIFY(waitFor([&] {
            return std::none_of(processes.begin(), processes.end(), [](qint64 pid) { return runs(pid); });
        }));
        QCOMPARE(m_fault->runs.names(), others);
        QVERIFY(job->outcome().verdict == Verdict::Stopped);
        QVERIFY(m_fault->runs.waitForEnd());
        compareVerdict(*m_fault->another, Verdict::Ok, {});
        compareFiles();
    }

    void stoppedWhilePaused_data() { rowsFor({mkv::join, mkv::split, mkv::remove}, 1); }

    void stoppedWhilePaused()
    {
        QFETCH(QString, operation);
        startAndMeet(operation);
        const QStringList others = shownNames();
        const auto processes = m_fault->runs.processes();
        QVERIFY(!processes.isEmpty());
        queue().pauseQueueButton(u"Pause"_s);
        QVERIFY(waitFor([&] { return allAre(processes, true); }));
        queue().stopCurrentJob();
        QVERIFY(waitFor([&] {
            return std::none_of(processes.begin(), processes.end(), [](qint64 pid) { return runs(pid); });
        }));
        QCOMPARE(m_fault->runs.names(), others);
        QVERIFY(m_fault->runs.waitForEnd());
        compareFiles();
    }

    void whatIsToBeReplacedStays_data() { rowsFor({mkv::join, mkv::split, mkv::remux, mkv::remove}, 1); }

    void whatIsToBeReplacedStays()
    {
        QFETCH(QString, operation);
        make(WhenTaken::Replace);
        const QString output = m_fault->output(operation);
        writeContent(output, "mine");
        m_fault->before[output] = "mine";
        startAndMeet(operation);
        QCOMPARE(contentOf(output), "mine");
        const QStringList others = shownNames();
        queue().stopCurrentJob();
        QCOMPARE(contentOf(output), "mine");
        QCOMPARE(m_fault->runs.names(), others);
        QVERIFY(m_fault->runs.waitForEnd());
        compareFiles();
    }

    void pausedAndResumed_data() { rowsFor(everything, 2); }

    void pausedAndResumed()
    {
        QFETCH(QString, operation);
        startAndMeet(operation);
        const JobPointer job = queue().currentJob();
        const auto processes = m_fault->runs.processes();
        QVERIFY(!processes.isEmpty());
        queue().pauseQueueButton(u"Pause"_s);
        QVERIFY(waitFor([&] { return allAre(processes, true); }));
        const qint64 written = bytesWritten();
        QVERIFY(!waitFor(
            [&] { return !allAre(processes, true) || m_fault->runs.record.count(u"jobDone"_s) > 0; }, 700));
        QCOMPARE(bytesWritten(), written);
        queue().pauseQueueButton(u"Resume"_s);
        QVERIFY(waitFor([&] { return allAre(processes, false); }));
        QVERIFY(m_fault->runs.waitForEnd());
        compareVerdict(*job, Verdict::Ok, {});
        m_fault->compareAnotherAndFiles();
        double hours = 0; // of a split's parts together
        for (const QUrl &output : job->outputs())
            hours += secondsOf(output.toLocalFile()) / 3600;
        QVERIFY2(hours > 3.9, qPrintable(QString::number(hours)));
    }

private:
    void make(WhenTaken taken)
    {
        m_fault.reset();
        m_fault = std::make_unique<MkvFaultRun>(taken);
        m_fault->runs.splitSeconds = u"5400"_s;
        m_fault->runs.partnerClip = manyPacketsBeginMkv();
        m_fault->runs.soundClip = manyPacketsAac();
    }

    KXQueueController &queue() const { return m_fault->runs.queue(); }

    /// Starts a job that takes seconds, with another behind it, and comes back when it has written something.
    void startAndMeet(const QString &operation)
    {
        const bool isRaw = operation == mkv::mux;
        const QString source =
            isRaw ? m_fault->sourceFor(operation) : m_fault->film(manyPacketsMkv(), u"a.mkv"_s);
        m_fault->runs.add(operation, source);
        m_fault->addAnother();
        m_fault->runs.queue().theQueueLoop();
        QVERIFY(waitFor([&] { return bytesWritten() > 10; }));
    }

    qint64 bytesWritten() const
    {
        qint64 bytes = 0;
        for (const QString &file : filesAtWork(m_fault->runs.path(), u"1*.mkv"_s))
            bytes += QFileInfo(file).size();
        return bytes;
    }

    /// What others see in the folder while the job works: that, and nothing else, must be there once it stopped.
    QStringList shownNames() const
    {
        QStringList names = m_fault->runs.names();
        names.removeIf([](const QString &name) { return name.startsWith(u".tessaray-"_s); });
        return names;
    }

    void compareFiles() const
    {
        for (auto file = m_fault->before.cbegin(); file != m_fault->before.cend(); ++file)
            QVERIFY2(contentOf(file.key()) == file.value(), qPrintable(file.key()));
    }

    std::unique_ptr<MkvFaultRun> m_fault;
};

TESSARAY_TEST(MkvStopTest)
#include "MkvStopTest.moc"
