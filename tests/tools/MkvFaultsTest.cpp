// Operations on Matroska files that go wrong for real: bad and vanished sources, a tool that is killed, a
// split that can't be made. Each time the row ends as completed, the outcome says what happened, the job
// behind it runs, and no file that was there before is changed. The short form draws some of the operations.
#include "support/engines/MkvFaults.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

namespace {

const QStringList inTheTab{mkv::join, mkv::split, mkv::remux, mkv::remove};
const QStringList inTheEditor{mkv::editJoin, mkv::editSplit, mkv::editRemux};

/// fullMkv() with the head of its fourth cluster overwritten, which mkvmerge sees and warns of.
QString brokenClusterMkv()
{
    return clip(u"broken-cluster.mkv"_s, [](const QString &path) {
        QByteArray content = contentOf(fullMkv());
        const QByteArray cluster = QByteArray::fromHex("1f43b675");
        qsizetype at = -1;
        for (int i = 0; i < 4; ++i)
            at = content.indexOf(cluster, at + 1);
        if (at < 0)
            qFatal("there are fewer than four clusters");
        writeContent(path, content.replace(at, 2000, QByteArray(2000, '\x5a')));
    });
}

} // namespace

class MkvFaultsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fault.reset();
        m_fault = std::make_unique<MkvFaultRun>();
    }

    void damageIsDoneWithWarnings_data() { rowsFor(inTheTab + inTheEditor, 2); }

    void damageIsDoneWithWarnings()
    {
        QFETCH(QString, operation);
        const QString source = m_fault->film(brokenClusterMkv(), u"a.mkv"_s);
        const auto job = m_fault->runs.add(operation, source);
        m_fault->runWithAnother();
        compareVerdict(*job, Verdict::Warnings, u"mkvmerge warned: The source is damaged"_s);
        QVERIFY2(job->outcome().sentence.contains(u"The source is damaged from 0:02 to 0:04."_s),
                 qPrintable(job->outcome().sentence));
        QCOMPARE(job->outputs().constFirst().toLocalFile(), m_fault->output(operation));
        QVERIFY(secondsOf(m_fault->output(operation)) > 1);
    }

    /// mkvmerge does not report a file that just ends; the check does.
    void aTruncatedFileIsWrittenAsFarAsItGoes_data() { rowsFor(inTheTab, 2); }

    void aTruncatedFileIsWrittenAsFarAsItGoes()
    {
        QFETCH(QString, operation);
        const auto job = m_fault->runs.add(operation, m_fault->film(truncatedMkv(), u"a.mkv"_s));
        m_fault->runWithAnother();
        compareVerdict(*job, Verdict::Warnings, u"ends at 0:05 of 0:08."_s);
        const double seconds = secondsOf(m_fault->output(operation));
        const double mostSeconds = operation == mkv::join ? 15 : 7;
        QVERIFY2(seconds > 1 && seconds < mostSeconds, qPrintable(QString::number(seconds)));
    }

    void aFileThatWasEmptied_data() { rowsFor(inTheTab + inTheEditor + QStringList{mkv::mux}, 2); }

    void aFileThatWasEmptied()
    {
        QFETCH(QString, operation);
        const QString source = m_fault->sourceFor(operation);
        const auto job = m_fault->runs.add(operation, source);
        writeContent(source, {});
        m_fault->before[source] = {};
        m_fault->runWithAnother();
        compareVerdict(*job, Verdict::Failed, u"mkvmerge failed"_s);
        QVERIFY2(job->outcome().sentence.contains(u"could not be recognized"_s),
                 qPrintable(job->outcome().sentence));
        compareFailedLog(*job, operation);
    }

    void aFileThatVanished_data() { aFileThatWasEmptied_data(); }

    void aFileThatVanished()
    {
        QFETCH(QString, operation);
        const QString source = m_fault->sourceFor(operation);
        const auto job = m_fault->runs.add(operation, source);
        QVERIFY(QFile::remove(source));
        m_fault->before.remove(source);
        m_fault->runWithAnother();
        const bool isJoin = operation.contains(u"join"_s); // looks first, so no tool is started
        compareVerdict(*job, Verdict::Failed,
                       isJoin ? u"is no file that can be read"_s : u"mkvmerge failed"_s);
        QVERIFY2(job->outcome().sentence.contains(source), qPrintable(job->outcome().sentence));
        if (!isJoin)
            compareFailedLog(*job, operation);
        QVERIFY(!QFile::exists(source));
    }

    void theSecondFileOfAJoin_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<Verdict>("verdict");
        QTest::addColumn<QString>("words");
        QTest::newRow("damaged") << brokenClusterMkv() << Verdict::Warnings
                                 << u"The source is damaged from 0:02 to 0:04."_s;
        QTest::newRow("empty") << emptyMkv() << Verdict::Failed << u"second.mkv can't be read as a film"_s;
        QTest::newRow("no film") << srtFile() << Verdict::Failed << u"second.mkv can't be joined to a.mkv"_s;
        QTest::newRow("gone") << QString() << Verdict::Failed << u"second.mkv is no file that can be read"_s;
    }

    void theSecondFileOfAJoin()
    {
        QFETCH(QString, clip);
        QFETCH(Verdict, verdict);
        QFETCH(QString, words);
        QStringList files{m_fault->film(fullMkv(), u"a.mkv"_s), m_fault->runs.path(u"second.mkv"_s)};
        if (!clip.isNull())
            m_fault->film(clip, u"second.mkv"_s);
        const auto job = m_fault->runs.add(MkvRuns::filesSelection(files, u"MKV Joining"_s));
        m_fault->runWithAnother();
        compareVerdict(*job, verdict, words);
    }

    void aToolThatIsKilled_data() { rowsFor(inTheTab + inTheEditor, 2); }

    void aToolThatIsKilled()
    {
        QFETCH(QString, operation);
        m_fault->runs.splitSeconds = u"5400"_s;
        m_fault->runs.partnerClip = manyPacketsBeginMkv();
        const auto job = m_fault->runs.add(operation, m_fault->film(manyPacketsMkv(), u"a.mkv"_s));
        m_fault->addAnother();
        m_fault->runs.queue().theQueueLoop();
        QVERIFY(waitFor([&] {
            const QStringList written = filesAtWork(m_fault->runs.path(), u"1*.mkv"_s);
            return !written.isEmpty() && QFileInfo(written.constLast()).size() > 0;
        }));
        const auto processes = m_fault->runs.processes();
        QVERIFY(!processes.isEmpty());
        for (const qint64 pid : processes)
            ::kill(static_cast<pid_t>(pid), SIGKILL);
        QVERIFY(m_fault->runs.waitForEnd());
        compareVerdict(*job, Verdict::Failed, u"mkvmerge was ended from outside or crashed"_s);
        static const QRegularExpression kept(
            u"The incomplete output \\S+ \\(incomplete\\)\\.mkv was kept\\."_s);
        QVERIFY2(job->outcome().sentence.contains(kept), qPrintable(job->outcome().sentence));
        m_fault->compareAnotherAndFiles();
    }

    void aRangeBeyondTheEnd_data() { rowsFor({mkv::split, mkv::editSplit}, 1); }

    void aRangeBeyondTheEnd()
    {
        QFETCH(QString, operation);
        const auto selection = m_fault->runs.selectionFor(operation, m_fault->film(fullMkv(), u"a.mkv"_s));
        selection->setSplitType(u"time"_s);
        selection->setSplitStartTimeText(u"01:00:00"_s);
        selection->setSplitEndTimeText(u"02:00:00"_s);
        const auto job = m_fault->runs.add(selection, editKindFor(operation));
        m_fault->runWithAnother();
        compareVerdict(*job, Verdict::Failed, u"mkvmerge ended without writing a.mkv.split.mkv"_s);
        QVERIFY(m_fault->runs.names().filter(u"split.mkv"_s).isEmpty());
    }

    void anUnknownSplitType_data() { rowsFor({mkv::split, mkv::editSplit}, 1); }

    void anUnknownSplitType()
    {
        QFETCH(QString, operation);
        const auto selection = m_fault->runs.selectionFor(operation, m_fault->film(fullMkv(), u"a.mkv"_s));
        selection->setSplitType(u"colour"_s);
        const auto job = m_fault->runs.add(selection, editKindFor(operation));
        m_fault->runWithAnother();
        compareVerdict(*job, Verdict::Failed, u"There is no way to split by \"colour\""_s);
        QVERIFY(m_fault->runs.names().filter(u"split"_s).isEmpty());
    }

private:
    static std::optional<jobs::JobKind> editKindFor(const QString &operation)
    {
        return operation == mkv::editSplit ? std::optional(jobs::JobKind::MkvEditing) : std::nullopt;
    }

    /// The log of a failed step stays, is named and ends with what happened; no output is left.
    void compareFailedLog(const KXJob &job, const QString &operation) const
    {
        const QStringList logs = m_fault->runs.names().filter(QRegularExpression(u"^a\\..*log$"_s));
        QCOMPARE(logs.size(), 1);
        const QString log = m_fault->runs.path(logs.constFirst());
        QVERIFY(job.outcome().sentence.contains(u"The log is %1."_s.arg(log)));
        QVERIFY(contentOf(log).trimmed().split('\n').last().startsWith("Tessaray: failed: "));
        QVERIFY(!QFile::exists(m_fault->output(operation)));
    }

    std::unique_ptr<MkvFaultRun> m_fault;
};

TESSARAY_TEST(MkvFaultsTest)
#include "MkvFaultsTest.moc"
