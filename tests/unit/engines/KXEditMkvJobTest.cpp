#include "engines/KXEditMkvJob.h"
#include "engines/KXMkvEditor.h"
#include "engines/KXMkvMuxer.h"
#include "engines/KXMkvReMuxer.h"
#include "engines/KXTrackDumper.h"
#include "support/HandMade.h"
#include "support/MkvBench.h"
#include "support/Waiting.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using step::Verdict;

namespace {

const QString extraction = u"MKV Track Extraction"_s;
const QString sending = u"Send To Lintwick"_s;
const QString joining = u"MKV Joining"_s;
const QString removal = u"MKV Track Removal"_s;
const QString splitting = u"MKV Splitting"_s;
const QString remuxing = u"MKV Remux"_s;

/// Answers its polls from a script, then "Complete".
class Answering final : public KXConverter
{
public:
    Answering(const step::ConverterContext &context, const QString &name, const QStringList &answers)
        : KXConverter(context)
        , m_answers(answers)
    {
        setStepName(name);
        setDoShell_ID(u"none"_s);
        setOutputFileURL(QUrl::fromLocalFile(u"/v/a.srt"_s));
    }
    QString monitorConversion() override
    {
        return m_answers.isEmpty() ? u"Complete"_s : m_answers.takeFirst();
    }
    step::Outcome outcome() const override { return step::Outcome::ok(); }

private:
    QStringList m_answers;
};

class EditBench final : public MkvBench
{
public:
    using MkvBench::MkvBench;

    /// A film of three tracks, and all that any of the types reads.
    SelectionPointer chosen(const QString &jobType) const
    {
        const auto made =
            selection(jobType, {videoTrack(u"passthru"_s), audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {}),
                                subtitleTrack(u"2"_s, u"srt"_s)});
        made->setKeepTracksList(made->trackList().mid(0, 1));
        world.scratch.write(u"b.mkv"_s, "film");
        made->setEditFilesURLsList({source, url(u"b.mkv"_s)});
        made->setSplitType(u"time"_s);
        made->setSplitStartTimeText(u"00:10:00"_s);
        made->setSplitEndTimeText(u"00:20:00"_s);
        return made;
    }
    std::shared_ptr<KXEditMkvJob> begin(const QString &jobType)
    {
        return start<KXEditMkvJob>(chosen(jobType));
    }
    /// A job that nobody started, with converters that answer from scripts.
    std::shared_ptr<KXEditMkvJob> unstarted(const QString &jobType, const QStringList &answers)
    {
        const auto made = std::make_shared<KXEditMkvJob>(world.jobContext());
        job = made;
        made->initJobWithSelectionAndPreferences(chosen(jobType), world.preferences);
        made->setStepConverterList({std::make_shared<Answering>(context(), u"Extracting"_s, answers)});
        return made;
    }
    QStringList shownProgress() const
    {
        QStringList items;
        for (const jobs::ProgressItem &item : job->progressList())
            items << item.step + u'=' + item.progress;
        return items;
    }
    void announce(const QString &name, const QString &text, qsizetype step = 0)
    {
        auto *converter = job->stepConverterList().at(step).get();
        world.notifications.post(name, text,
                                 {{u"stepName"_s, converter->stepName()},
                                  {u"theConverter"_s, QVariant::fromValue<QObject *>(converter)}});
    }
    bool waitForText(const QString &text) const
    {
        return waitFor([&] { return progressTexts().contains(text); }, 20000);
    }
};

} // namespace

class KXEditMkvJobTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewJobHasNothing()
    {
        EditBench bench;
        const KXEditMkvJob job(bench.world.jobContext());
        QVERIFY(job.theTracks().isEmpty());
        QCOMPARE(job.muxStepCounter(), 0);
        QCOMPARE(job.oldStepProgress(), 0);
    }

    // What each job type starts.

    void eachJobTypeHasItsStepsAndTheyBeginWithZero_data()
    {
        QTest::addColumn<QString>("jobType");
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QStringList>("logs");
        const QStringList tracks{u"Extracting Video Track=0%"_s, u"Extracting Audio Track=0%"_s,
                                 u"Extracting Subtitle Track=0%"_s};
        const QStringList trackLogs{u"/v/a.mkv.stream0.h264.log"_s, u"/v/a.mkv.stream1.ac3.log"_s,
                                    u"/v/a.mkv.stream2.srt.log"_s};
        QTest::newRow("extraction") << extraction << tracks << trackLogs;
        QTest::newRow("sending") << sending << tracks << trackLogs;
        QTest::newRow("joining") << joining << QStringList{u"Joining Videos=0%"_s}
                                 << QStringList{u"/v/a.mkv.joined.log"_s};
        QTest::newRow("removal") << removal << QStringList{u"Removing Tracks=0%"_s}
                                 << QStringList{u"/v/a.mkv.removed.log"_s};
        QTest::newRow("splitting") << splitting << QStringList{u"Splitting Videos=0%"_s}
                                   << QStringList{u"/v/a.mkv.split.log"_s};
        QTest::newRow("remuxing") << remuxing << QStringList{u"Re-Muxing MKV=0%"_s}
                                  << QStringList{u"/v/a.mkv.remuxing.log"_s};
    }

    void eachJobTypeHasItsStepsAndTheyBeginWithZero()
    {
        QFETCH(QString, jobType);
        QFETCH(QStringList, steps);
        EditBench bench({u"hang"_s});
        bench.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = bench.begin(jobType);
        QCOMPARE(bench.shownProgress(), steps);
        QCOMPARE(bench.progressTexts(), QStringList{steps.join(u',')});
        QCOMPARE(job->theTracks().size(), 3);
        QCOMPARE(job->stepConverterList().size(), steps.size());
        QVERIFY(waitFor([&] { return job->stepTaskList().size() == steps.size(); }));
        QCOMPARE(job->progressStepCounter(), 1);
        QCOMPARE(job->muxStepCounter(), 1);
        QCOMPARE(job->oldStepProgress(), 0);
        QStringList logs;
        for (const QUrl &log : job->logFilesToDeleteList())
            logs << bench.shown(log.toLocalFile());
        QTEST(logs, "logs");
        for (const auto &converter : job->stepConverterList())
            QVERIFY(!converter->isTemporaryOutput());
        QVERIFY(job->tempFilesToDeleteList().isEmpty());
    }

    void aTrackOfAnotherTypeIsJustExtracted()
    {
        EditBench bench;
        bench.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto made = bench.chosen(extraction);
        made->trackList().constLast()->setTrackType(u"Attachment"_s);
        bench.start<KXEditMkvJob>(made);
        QCOMPARE(bench.shownProgress().constLast(), u"Extracting=0%"_s);
    }

    void extractionJoiningAndSendingRunAsProcessObjectsTheRestInTheBackground_data()
    {
        QTest::addColumn<QString>("jobType");
        QTest::addColumn<bool>("asProcess");
        QTest::newRow("extraction") << extraction << true;
        QTest::newRow("sending") << sending << true;
        QTest::newRow("joining") << joining << true;
        QTest::newRow("removal") << removal << false;
        QTest::newRow("splitting") << splitting << false;
        QTest::newRow("remuxing") << remuxing << false;
    }

    void extractionJoiningAndSendingRunAsProcessObjectsTheRestInTheBackground()
    {
        QFETCH(QString, jobType);
        QFETCH(bool, asProcess);
        EditBench bench({u"hang"_s});
        bench.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = bench.begin(jobType);
        for (const auto &task : job->stepTaskList())
            QCOMPARE(std::holds_alternative<tools::ToolProcessPointer>(task), asProcess);
        for (const auto &converter : job->stepConverterList())
            QCOMPARE(converter->doShell_ID().isEmpty(), asProcess);
    }

    void whatEachJobTypeWrites_data()
    {
        QTest::addColumn<QString>("jobType");
        QTest::addColumn<QString>("launched");
        QTest::addColumn<QString>("output");
        QTest::newRow("joining") << joining << u"-o|/v/a.mkv.joined.mkv|/v/a.mkv|+|/v/b.mkv"_s
                                 << u"a.mkv.joined.mkv"_s;
        QTest::newRow("removal") << removal
                                 << u"-o|/v/a.removed.mkv|--language|0:eng|--track-name|0:Video0|"
                                    "--default-track|0:0|--forced-track|0:0|--compression|0:none|"
                                    "-d|0|-A|-S|/v/a.mkv"_s
                                 << u"a.removed.mkv"_s;
        QTest::newRow("splitting") << splitting
                                   << u"-o|/v/a.mkv.split.mkv|--split|parts:00:10:00-00:20:00|--compression|"
                                      "-1:none|/v/a.mkv"_s
                                   << u"a.mkv.split.mkv"_s;
        QTest::newRow("remuxing") << remuxing << u"-o|/v/a.mkv.remux.mkv|--compression|-1:none|/v/a.mkv"_s
                                  << u"a.mkv.remux.mkv"_s;
    }

    void whatEachJobTypeWrites()
    {
        QFETCH(QString, launched);
        QFETCH(QString, output);
        QFETCH(QString, jobType);
        EditBench bench;
        const auto job = bench.begin(jobType);
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.calls(), QList<QStringList>{launched.split(u'|')});
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{bench.url(output)});
        QVERIFY(bench.world.scratch.names().filter(u".log"_s).isEmpty()); // they went with the job
    }

    /// The hand-over is another job's: this one ends when the tracks are written.
    void extractionAndSendingWriteEveryTrackAndHandNothingOver_data()
    {
        QTest::addColumn<QString>("jobType");
        QTest::newRow("extraction") << extraction;
        QTest::newRow("sending") << sending;
    }

    void extractionAndSendingWriteEveryTrackAndHandNothingOver()
    {
        QFETCH(QString, jobType);
        EditBench bench;
        bench.world.preferences.overrideForThisRun(u"lintwickPath"_s, u"/opt/Lintwick"_s);
        const auto job = bench.begin(jobType);
        QVERIFY(bench.waitForEnd());
        QCOMPARE(job->outputs(),
                 QList<QUrl>({bench.url(u"a.mkv.stream0.h264"_s), bench.url(u"a.mkv.stream1.ac3"_s),
                              bench.url(u"a.mkv.stream2.srt"_s)}));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QVERIFY(bench.world.workspace.asked().isEmpty());
        QVERIFY(bench.world.alerts.shown().isEmpty());
        QVERIFY(bench.calls().isEmpty());
    }

    void anUnknownJobTypeStartsNothingAndEndsAsFailed()
    {
        for (const QString &type : {u"MKV Conversion"_s, u"mkv remux"_s, u""_s}) {
            EditBench bench;
            const auto job = bench.begin(type);
            QVERIFY(job->stepConverterList().isEmpty());
            QVERIFY(job->stepTaskList().isEmpty());
            QVERIFY(job->progressList().isEmpty());
            QVERIFY(bench.waitForEnd());
            QCOMPARE(job->outcome().verdict, Verdict::Failed);
            QCOMPARE(job->outcome().sentence, u"There is no job of the type \"%1\"."_s.arg(type));
            QVERIFY(bench.calls().isEmpty());
        }
    }

    void anUnknownSplitTypeEndsAsFailed()
    {
        EditBench bench;
        const auto made = bench.chosen(splitting);
        made->setSplitType(u"chapters"_s);
        const auto job = bench.start<KXEditMkvJob>(made);
        QVERIFY(job->stepTaskList().isEmpty());
        QVERIFY(bench.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QCOMPARE(job->outcome().sentence,
                 u"There is no way to split by \"chapters\", so nothing was started."_s);
        QVERIFY(bench.calls().isEmpty());
    }

    // Announcements.

    void itsOwnStepsPercentagesAreShown_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : {"monitorExtractionUpdate", "monitorJoinUpdate", "monitorSplitUpdate"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void itsOwnStepsPercentagesAreShown()
    {
        QFETCH(QString, name);
        EditBench bench({u"hang"_s});
        const auto job = bench.begin(joining);
        bench.announce(name, u"45%"_s);
        QCOMPARE(bench.shownProgress(), QStringList{u"Joining Videos=45%"_s});
        bench.announce(name, u"no percentage"_s);
        bench.announce(u"monitorConversionUpdate"_s, u"46%"_s); // not observed
        const Answering other(bench.context(), u"Joining Videos"_s, {});
        bench.world.notifications.post(
            name, u"47%"_s,
            {{u"stepName"_s, other.stepName()},
             {u"theConverter"_s, QVariant::fromValue<QObject *>(const_cast<Answering *>(&other))}});
        QCOMPARE(bench.shownProgress(), QStringList{u"Joining Videos=45%"_s});
    }

    void theJobEndsWhenEveryStepIsComplete()
    {
        EditBench bench;
        bench.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = bench.begin(extraction);
        bench.announce(u"taskCompletion"_s, u"Complete"_s, 2);
        bench.announce(u"taskCompletion"_s, u"Complete"_s, 0);
        bench.announce(u"taskCompletion"_s, u"Pass 1 Complete"_s, 1);
        QCOMPARE(bench.shownProgress(),
                 QStringList({u"Extracting Video Track=Complete"_s, u"Extracting Audio Track=0%"_s,
                              u"Extracting Subtitle Track=Complete"_s}));
        QVERIFY(!waitFor([&] { return job->hasEnded(); }, 200));
        bench.announce(u"taskCompletion"_s, u"Complete"_s, 1);
        QVERIFY(bench.waitForEnd());
    }

    /// mkvmerge tells its numbers on the stream that this join doesn't read, on purpose.
    void aJoinShowsNoNumberUntilItIsComplete()
    {
        EditBench bench;
        bench.begin(joining);
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.progressTexts(), QStringList({u"Joining Videos=0%"_s, u"Joining Videos=Complete"_s}));
    }

    // Polling.

    /// Whatever is done there, the step is called so from the first poll on, on purpose.
    void aRemuxStepShowsMuxingStep1_data()
    {
        QTest::addColumn<QString>("jobType");
        QTest::addColumn<QString>("label");
        QTest::newRow("remux") << remuxing << u"Re-Muxing MKV"_s;
        QTest::newRow("split") << splitting << u"Splitting Videos"_s;
        QTest::newRow("removal") << removal << u"Removing Tracks"_s;
    }

    void aRemuxStepShowsMuxingStep1()
    {
        QFETCH(QString, jobType);
        QFETCH(QString, label);
        EditBench bench(QStringList{u"part out Progress: 45%\\r"_s, u"sleep 1500"_s} + MkvBench::wellMuxed());
        const auto job = bench.begin(jobType);
        QVERIFY(bench.waitForText(u"Muxing Step #1=45%"_s));
        QVERIFY(bench.waitForEnd());
        const QStringList texts = bench.progressTexts();
        QCOMPARE(texts.constFirst(), label + u"=0%"_s); // before the first poll
        QVERIFY(texts.contains(u"Muxing Step #1=Complete"_s));
        QCOMPARE(texts.filter(label).size(), texts.filter(label + u"=0%"_s).size());
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void aFallenPercentageIsTheNextMuxingStep()
    {
        EditBench bench;
        const auto job = bench.unstarted(remuxing, {u"80%"_s, u"error"_s, u"5%"_s});
        job->monitorMuxStep();
        QVERIFY(bench.waitForEnd());
        QCOMPARE(job->muxStepCounter(), 2);
        for (const QString &text :
             {u"Muxing Step #1=80%"_s, u"Muxing Step #2=5%"_s, u"Muxing Step #2=Complete"_s})
            QVERIFY2(bench.progressTexts().contains(text), qPrintable(text));
    }

    void aCancelledJobStopsItsPollAndIsNotDone()
    {
        EditBench bench({u"part out Progress: 45%\\r"_s, u"hang"_s});
        const auto job = bench.begin(splitting);
        QVERIFY(bench.waitForText(u"Muxing Step #1=45%"_s));
        job->stopJob();
        QVERIFY(waitFor([&] { return job->monitorQueue()->activeThreadCount() == 0; }));
        QCoreApplication::processEvents();
        QCOMPARE(bench.record.count(u"jobDone"_s), 0);
        QCOMPARE(job->outcome().verdict, Verdict::Stopped);
        QVERIFY(!QFile::exists(bench.path(u"a.mkv.split.log"_s)));
    }

    void aFailedToolIsCompleteAndSaysWhy()
    {
        EditBench bench({u"out Error: The file has no tracks."_s, u"exit 2"_s});
        const auto job = bench.begin(remuxing);
        QVERIFY(bench.waitForEnd());
        QVERIFY(bench.progressTexts().contains(u"Muxing Step #1=Complete"_s));
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY2(job->outcome().sentence.contains(u"The file has no tracks"_s),
                 qPrintable(job->outcome().sentence));
        QVERIFY(QFile::exists(bench.path(u"a.mkv.remuxing.log"_s)));
    }

    // The monitors that startJob() does not start.

    void startJobStartsNeitherOfTheTwoOtherMonitors()
    {
        EditBench bench;
        bench.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = bench.begin(sending);
        // Polled, steps without a background run would be complete at once.
        QVERIFY(!waitFor([&] { return job->hasEnded(); }, 900));
        QCOMPARE(bench.progressTexts().size(), 1);
        QCOMPARE(job->monitorQueue()->activeThreadCount(), 0);
    }

    void thePollingMonitorShowsTheStepsName()
    {
        EditBench bench;
        bench.world.preferences.overrideForThisRun(u"lintwickPath"_s, u"/opt/Lintwick"_s);
        const auto job = bench.unstarted(extraction, {u"80%"_s, u"5%"_s});
        job->monitorStartJob();
        QVERIFY(bench.waitForEnd());
        const QStringList texts = bench.progressTexts();
        for (const QString &text : {u"Extracting=80%"_s, u"Extracting=5%"_s, u"Extracting=Complete"_s})
            QVERIFY2(texts.contains(text), qPrintable(texts.join(u'\n')));
        QVERIFY(bench.world.workspace.asked().isEmpty()); // only sending hands over
    }

    void thePollingMonitorHandsASentSubtitleOver()
    {
        EditBench bench;
        bench.world.preferences.overrideForThisRun(u"lintwickPath"_s, u"/opt/Lintwick"_s);
        bench.unstarted(sending, {})->monitorStartJob();
        QVERIFY(bench.waitForEnd());
        QStringList asked;
        for (const QString &request : bench.world.workspace.asked())
            asked << bench.shown(request);
        QCOMPARE(asked, QStringList({u"launch /opt/Lintwick"_s, u"open /v/a.srt with /opt/Lintwick"_s,
                                     u"open /v/a.mkv with /opt/Lintwick"_s}));
        QVERIFY(bench.world.alerts.shown().isEmpty());
    }

    void thePollingMonitorWarnsWhenTheSubtitleApplicationIsMissing()
    {
        EditBench bench;
        bench.world.preferences.overrideForThisRun(u"lintwickPath"_s, u""_s);
        bench.unstarted(sending, {})->monitorStartJob();
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.world.alerts.messages(), QStringList{u"Lintwick Could Not Be Launched"_s});
    }

    void theCountingMonitorNumbersTheStepsName()
    {
        EditBench bench;
        const auto job = bench.unstarted(sending, {u"80%"_s, u"5%"_s});
        job->monitorStartJobWithMultipleSteps();
        QVERIFY(bench.waitForEnd());
        const QStringList texts = bench.progressTexts();
        for (const QString &text :
             {u"Extracting Step #1=80%"_s, u"Extracting Step #2=5%"_s, u"Extracting Step #2=Complete"_s})
            QVERIFY2(texts.contains(text), qPrintable(texts.join(u'\n')));
        QCOMPARE(job->progressStepCounter(), 2);
        QVERIFY(bench.world.workspace.asked().isEmpty());
    }

    void aCancelledJobIsNotDoneByItsOtherMonitorsEither()
    {
        EditBench bench;
        const QStringList endless(1000, u"5%"_s);
        const auto job = bench.unstarted(sending, endless);
        job->monitorStartJob();
        job->monitorStartJobWithMultipleSteps();
        QVERIFY(bench.waitForText(u"Extracting=5%"_s));
        job->stopJob();
        QVERIFY(waitFor([&] { return job->monitorQueue()->activeThreadCount() == 0; }));
        QCoreApplication::processEvents();
        QCOMPARE(bench.record.count(u"jobDone"_s), 0);
        QVERIFY(bench.world.workspace.asked().isEmpty());
    }
};

QTEST_GUILESS_MAIN(KXEditMkvJobTest)
#include "KXEditMkvJobTest.moc"
