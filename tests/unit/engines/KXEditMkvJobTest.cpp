#include "engines/mkvtoolnix/KXEditMkvJob.h"
#include "engines/ffmpeg/KXTrackDumper.h"
#include "engines/mkvtoolnix/KXMkvEditor.h"
#include "engines/mkvtoolnix/KXMkvMuxer.h"
#include "engines/mkvtoolnix/KXMkvReMuxer.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/MkvFixture.h"
#include "support/selection/HandMade.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

namespace {

const QString extraction = u"MKV Track Extraction"_s;
const QString sending = u"Send To Lintwick"_s;

/// Answers its polls from a script, then "Complete".
class AnsweringEdit final : public KXConverter
{
public:
    AnsweringEdit(const steps::ConverterContext &context, const QString &name, const QStringList &answers)
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
    steps::Outcome outcome() const override { return steps::Outcome::ok(); }

private:
    QStringList m_answers;
};

class EditFixture final : public MkvFixture
{
public:
    using MkvFixture::MkvFixture;

    /// A film of three tracks, and all that any of the types reads.
    SelectionPointer chosen(const QString &jobType) const
    {
        const auto made =
            selection(jobType, {videoTrack(u"passthru"_s), audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {}),
                                subtitleTrack(u"2"_s, u"srt"_s)});
        made->setKeepTracksList(made->trackList().mid(0, 1));
        base.scratch.write(u"b.mkv"_s, "film");
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
    /// A job that is not started, with converters that answer from scripts.
    std::shared_ptr<KXEditMkvJob> unstarted(const QString &jobType, const QStringList &answers)
    {
        const auto made = std::make_shared<KXEditMkvJob>(base.jobContext());
        job = made;
        made->initJobWithSelectionAndPreferences(chosen(jobType), base.preferences);
        made->setStepConverterList({std::make_shared<AnsweringEdit>(context(), u"Extracting"_s, answers)});
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
        base.notifications.post(name, text,
                                {{u"stepName"_s, converter->stepName()},
                                 {u"theConverter"_s, QVariant::fromValue<QObject *>(converter)}});
    }
    bool waitForText(const QString &text) const
    {
        return waitFor([&] { return progressTexts().contains(text); });
    }
};

} // namespace

class KXEditMkvJobTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewJobHasNothing()
    {
        EditFixture fixture;
        const KXEditMkvJob job(fixture.base.jobContext());
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
        QTest::newRow("joining") << mkvJoining << QStringList{u"Joining Videos=0%"_s}
                                 << QStringList{u"/v/a.mkv.joined.log"_s};
        QTest::newRow("removal") << mkvRemoval << QStringList{u"Removing Tracks=0%"_s}
                                 << QStringList{u"/v/a.mkv.removed.log"_s};
        QTest::newRow("splitting") << mkvSplitting << QStringList{u"Splitting Videos=0%"_s}
                                   << QStringList{u"/v/a.mkv.split.log"_s};
        QTest::newRow("remuxing") << mkvRemux << QStringList{u"Re-Muxing MKV=0%"_s}
                                  << QStringList{u"/v/a.mkv.remuxing.log"_s};
    }

    void eachJobTypeHasItsStepsAndTheyBeginWithZero()
    {
        QFETCH(QString, jobType);
        QFETCH(QStringList, steps);
        EditFixture fixture({u"hang"_s});
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = fixture.begin(jobType);
        QCOMPARE(fixture.shownProgress(), steps);
        QCOMPARE(fixture.progressTexts(), QStringList{steps.join(u',')});
        QCOMPARE(job->theTracks().size(), 3);
        QCOMPARE(job->stepConverterList().size(), steps.size());
        QVERIFY(waitFor([&] { return job->stepTaskList().size() == steps.size(); }));
        QCOMPARE(job->progressStepCounter(), 1);
        QCOMPARE(job->muxStepCounter(), 1);
        QCOMPARE(job->oldStepProgress(), 0);
        QStringList logs;
        for (const QUrl &log : job->logFilesToDeleteList())
            logs << fixture.shown(log.toLocalFile());
        QTEST(logs, "logs");
        for (const auto &converter : job->stepConverterList())
            QVERIFY(!converter->isTemporaryOutput());
        QVERIFY(job->tempFilesToDeleteList().isEmpty());
    }

    void aTrackOfAnotherTypeIsJustExtracted()
    {
        EditFixture fixture;
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto made = fixture.chosen(extraction);
        made->trackList().constLast()->setTrackType(u"Attachment"_s);
        fixture.start<KXEditMkvJob>(made);
        QCOMPARE(fixture.shownProgress().constLast(), u"Extracting=0%"_s);
    }

    void extractionJoiningAndSendingRunAsProcessObjectsTheRestInTheBackground_data()
    {
        QTest::addColumn<QString>("jobType");
        QTest::addColumn<bool>("asProcess");
        QTest::newRow("extraction") << extraction << true;
        QTest::newRow("sending") << sending << true;
        QTest::newRow("joining") << mkvJoining << true;
        QTest::newRow("removal") << mkvRemoval << false;
        QTest::newRow("splitting") << mkvSplitting << false;
        QTest::newRow("remuxing") << mkvRemux << false;
    }

    void extractionJoiningAndSendingRunAsProcessObjectsTheRestInTheBackground()
    {
        QFETCH(QString, jobType);
        QFETCH(bool, asProcess);
        EditFixture fixture({u"hang"_s});
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = fixture.begin(jobType);
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
        QTest::newRow("joining") << mkvJoining << u"-o|/v/a.mkv.joined.mkv|/v/a.mkv|+|/v/b.mkv"_s
                                 << u"a.mkv.joined.mkv"_s;
        QTest::newRow("removal") << mkvRemoval
                                 << u"-o|/v/a.removed.mkv|--language|0:eng|--track-name|0:Video0|"
                                    "--default-track|0:0|--forced-track|0:0|--compression|0:none|"
                                    "-d|0|-A|-S|/v/a.mkv"_s
                                 << u"a.removed.mkv"_s;
        QTest::newRow("splitting") << mkvSplitting
                                   << u"-o|/v/a.mkv.split.mkv|--split|parts:00:10:00-00:20:00|--compression|"
                                      "-1:none|/v/a.mkv"_s
                                   << u"a.mkv.split.mkv"_s;
        QTest::newRow("remuxing") << mkvRemux << u"-o|/v/a.mkv.remux.mkv|--compression|-1:none|/v/a.mkv"_s
                                  << u"a.mkv.remux.mkv"_s;
    }

    void whatEachJobTypeWrites()
    {
        QFETCH(QString, launched);
        QFETCH(QString, output);
        QFETCH(QString, jobType);
        EditFixture fixture;
        const auto job = fixture.begin(jobType);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.calls(), QList<QStringList>{launched.split(u'|')});
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{fixture.url(output)});
        QVERIFY(fixture.base.scratch.names().filter(u".log"_s).isEmpty()); // they went with the job
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
        EditFixture fixture;
        fixture.base.preferences.overrideForThisRun(u"lintwickPath"_s, u"/opt/Lintwick"_s);
        const auto job = fixture.begin(jobType);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outputs(),
                 QList<QUrl>({fixture.url(u"a.mkv.stream0.h264"_s), fixture.url(u"a.mkv.stream1.ac3"_s),
                              fixture.url(u"a.mkv.stream2.srt"_s)}));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QVERIFY(fixture.base.workspace.asked().isEmpty());
        QVERIFY(fixture.base.alerts.shown().isEmpty());
        QVERIFY(fixture.calls().isEmpty());
    }

    void anUnknownJobTypeStartsNothingAndEndsAsFailed()
    {
        for (const QString &type : {u"MKV Conversion"_s, u"mkv remux"_s, u""_s}) {
            EditFixture fixture;
            const auto job = fixture.begin(type);
            QVERIFY(job->stepConverterList().isEmpty());
            QVERIFY(job->stepTaskList().isEmpty());
            QVERIFY(job->progressList().isEmpty());
            QVERIFY(fixture.waitForEnd());
            QCOMPARE(job->outcome().verdict, Verdict::Failed);
            QCOMPARE(job->outcome().sentence, u"There is no job of the type \"%1\"."_s.arg(type));
            QVERIFY(fixture.calls().isEmpty());
        }
    }

    void anUnknownSplitTypeEndsAsFailed()
    {
        EditFixture fixture;
        const auto made = fixture.chosen(mkvSplitting);
        made->setSplitType(u"chapters"_s);
        const auto job = fixture.start<KXEditMkvJob>(made);
        QVERIFY(job->stepTaskList().isEmpty());
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QCOMPARE(job->outcome().sentence,
                 u"There is no way to split by \"chapters\", so nothing was started."_s);
        QVERIFY(fixture.calls().isEmpty());
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
        EditFixture fixture({u"hang"_s});
        const auto job = fixture.begin(mkvJoining);
        fixture.announce(name, u"45%"_s);
        QCOMPARE(fixture.shownProgress(), QStringList{u"Joining Videos=45%"_s});
        fixture.announce(name, u"no percentage"_s);
        fixture.announce(u"monitorConversionUpdate"_s, u"46%"_s); // not observed
        const AnsweringEdit other(fixture.context(), u"Joining Videos"_s, {});
        fixture.base.notifications.post(
            name, u"47%"_s,
            {{u"stepName"_s, other.stepName()},
             {u"theConverter"_s, QVariant::fromValue<QObject *>(const_cast<AnsweringEdit *>(&other))}});
        QCOMPARE(fixture.shownProgress(), QStringList{u"Joining Videos=45%"_s});
    }

    void theJobEndsWhenEveryStepIsComplete()
    {
        EditFixture fixture;
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = fixture.begin(extraction);
        fixture.announce(u"taskCompletion"_s, u"Complete"_s, 2);
        fixture.announce(u"taskCompletion"_s, u"Complete"_s, 0);
        fixture.announce(u"taskCompletion"_s, u"Pass 1 Complete"_s, 1);
        QCOMPARE(fixture.shownProgress(),
                 QStringList({u"Extracting Video Track=Complete"_s, u"Extracting Audio Track=0%"_s,
                              u"Extracting Subtitle Track=Complete"_s}));
        QVERIFY(!waitFor([&] { return job->hasEnded(); }, 200));
        fixture.announce(u"taskCompletion"_s, u"Complete"_s, 1);
        QVERIFY(fixture.waitForEnd());
    }

    /// mkvmerge tells its numbers on the stream that this join doesn't read, on purpose.
    void aJoinShowsNoNumberUntilItIsComplete()
    {
        EditFixture fixture;
        fixture.begin(mkvJoining);
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.progressTexts(),
                 QStringList({u"Joining Videos=0%"_s, u"Joining Videos=Complete"_s}));
    }

    // Polling.

    /// Whatever is done there, the step is called so from the first poll on, on purpose.
    void aRemuxStepShowsMuxingStep1_data()
    {
        QTest::addColumn<QString>("jobType");
        QTest::addColumn<QString>("label");
        QTest::newRow("remux") << mkvRemux << u"Re-Muxing MKV"_s;
        QTest::newRow("split") << mkvSplitting << u"Splitting Videos"_s;
        QTest::newRow("removal") << mkvRemoval << u"Removing Tracks"_s;
    }

    void aRemuxStepShowsMuxingStep1()
    {
        QFETCH(QString, jobType);
        QFETCH(QString, label);
        EditFixture fixture;
        fixture.setScript(u"mkvtoolnix/mkvmerge"_s,
                          QStringList{u"part out Progress: 45%\\r"_s, u"await "_s + fixture.path(u"go"_s)} +
                              MkvFixture::wellMuxed());
        const auto job = fixture.begin(jobType);
        QVERIFY(fixture.waitForText(u"Muxing Step #1=45%"_s));
        fixture.base.scratch.write(u"go"_s, {});
        QVERIFY(fixture.waitForEnd());
        const QStringList texts = fixture.progressTexts();
        QCOMPARE(texts.constFirst(), label + u"=0%"_s); // before the first poll
        QVERIFY(texts.contains(u"Muxing Step #1=Complete"_s));
        QCOMPARE(texts.filter(label).size(), texts.filter(label + u"=0%"_s).size());
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void aFallenPercentageIsTheNextMuxingStep()
    {
        EditFixture fixture;
        const auto job = fixture.unstarted(mkvRemux, {u"80%"_s, u"error"_s, u"5%"_s});
        job->monitorMuxStep();
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(job->muxStepCounter(), 2);
        for (const QString &text :
             {u"Muxing Step #1=80%"_s, u"Muxing Step #2=5%"_s, u"Muxing Step #2=Complete"_s})
            QVERIFY2(fixture.progressTexts().contains(text), qPrintable(text));
    }

    void aCancelledJobStopsItsPollAndIsNotDone()
    {
        EditFixture fixture({u"part out Progress: 45%\\r"_s, u"hang"_s});
        const auto job = fixture.begin(mkvSplitting);
        QVERIFY(fixture.waitForText(u"Muxing Step #1=45%"_s));
        job->stopJob();
        QVERIFY(waitFor([&] { return job->monitorQueue()->activeThreadCount() == 0; }));
        QCoreApplication::processEvents();
        QCOMPARE(fixture.record.count(u"jobDone"_s), 0);
        QCOMPARE(job->outcome().verdict, Verdict::Stopped);
        QVERIFY(!QFile::exists(fixture.path(u"a.mkv.split.log"_s)));
    }

    void aFailedToolIsCompleteAndSaysWhy()
    {
        EditFixture fixture({u"out Error: The file has no tracks."_s, u"exit 2"_s});
        const auto job = fixture.begin(mkvRemux);
        QVERIFY(fixture.waitForEnd());
        QVERIFY(fixture.progressTexts().contains(u"Muxing Step #1=Complete"_s));
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY2(job->outcome().sentence.contains(u"The file has no tracks"_s),
                 qPrintable(job->outcome().sentence));
        QVERIFY(QFile::exists(fixture.path(u"a.mkv.remuxing.log"_s)));
    }

    // The monitors that startJob() does not start.

    void startJobStartsNeitherOfTheTwoOtherMonitors()
    {
        EditFixture fixture;
        fixture.setScript(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        const auto job = fixture.begin(sending);
        // Polled, steps without a background run would be complete at once.
        QVERIFY(!waitFor([&] { return job->hasEnded(); }, 900));
        QCOMPARE(fixture.progressTexts().size(), 1);
        QCOMPARE(job->monitorQueue()->activeThreadCount(), 0);
    }

    void thePollingMonitorShowsTheStepsName()
    {
        EditFixture fixture;
        fixture.base.preferences.overrideForThisRun(u"lintwickPath"_s, u"/opt/Lintwick"_s);
        const auto job = fixture.unstarted(extraction, {u"80%"_s, u"5%"_s});
        job->monitorStartJob();
        QVERIFY(fixture.waitForEnd());
        const QStringList texts = fixture.progressTexts();
        for (const QString &text : {u"Extracting=80%"_s, u"Extracting=5%"_s, u"Extracting=Complete"_s})
            QVERIFY2(texts.contains(text), qPrintable(texts.join(u'\n')));
        QVERIFY(fixture.base.workspace.asked().isEmpty()); // only sending hands over
    }

    void thePollingMonitorHandsASentSubtitleOver()
    {
        EditFixture fixture;
        fixture.base.preferences.overrideForThisRun(u"lintwickPath"_s, u"/opt/Lintwick"_s);
        fixture.unstarted(sending, {})->monitorStartJob();
        QVERIFY(fixture.waitForEnd());
        QStringList asked;
        for (const QString &request : fixture.base.workspace.asked())
            asked << fixture.shown(request);
        QCOMPARE(asked, QStringList({u"launch /opt/Lintwick"_s, u"open /v/a.srt with /opt/Lintwick"_s,
                                     u"open /v/a.mkv with /opt/Lintwick"_s}));
        QVERIFY(fixture.base.alerts.shown().isEmpty());
    }

    void thePollingMonitorWarnsWhenTheSubtitleApplicationIsMissing()
    {
        EditFixture fixture;
        fixture.base.preferences.overrideForThisRun(u"lintwickPath"_s, u""_s);
        fixture.unstarted(sending, {})->monitorStartJob();
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.base.alerts.messages(), QStringList{u"Lintwick Could Not Be Launched"_s});
    }

    void theCountingMonitorNumbersTheStepsName()
    {
        EditFixture fixture;
        const auto job = fixture.unstarted(sending, {u"80%"_s, u"5%"_s});
        job->monitorStartJobWithMultipleSteps();
        QVERIFY(fixture.waitForEnd());
        const QStringList texts = fixture.progressTexts();
        for (const QString &text :
             {u"Extracting Step #1=80%"_s, u"Extracting Step #2=5%"_s, u"Extracting Step #2=Complete"_s})
            QVERIFY2(texts.contains(text), qPrintable(texts.join(u'\n')));
        QCOMPARE(job->progressStepCounter(), 2);
        QVERIFY(fixture.base.workspace.asked().isEmpty());
    }

    void aCancelledJobIsNotDoneByItsOtherMonitorsEither()
    {
        EditFixture fixture;
        const QStringList endless(1000, u"5%"_s);
        const auto job = fixture.unstarted(sending, endless);
        job->monitorStartJob();
        job->monitorStartJobWithMultipleSteps();
        QVERIFY(fixture.waitForText(u"Extracting=5%"_s));
        job->stopJob();
        QVERIFY(waitFor([&] { return job->monitorQueue()->activeThreadCount() == 0; }));
        QCoreApplication::processEvents();
        QCOMPARE(fixture.record.count(u"jobDone"_s), 0);
        QVERIFY(fixture.base.workspace.asked().isEmpty());
    }
};

TESSARAY_TEST(KXEditMkvJobTest)
#include "KXEditMkvJobTest.moc"
