#include "engines/KXExtractTracksJob.h"
#include "engines/EngineJobs.h"
#include "jobs/JobFactory.h"
#include "support/FakeTool.h"
#include "support/HandMade.h"
#include "support/JobWorld.h"
#include "support/Waiting.h"

#include <QFile>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace support;
using step::Verdict;

namespace {

const QString wellDone = u"err frame=9 Lsize=9kB time=00:02:00.00 bitrate"_s;

class ExtractionBench final
{
public:
    explicit ExtractionBench(const QStringList &script = {wellDone, u"write 10 last"_s})
        : source(world.scratch.url(u"a.mkv"_s))
        , record(world.notifications, {u"progressUpdate"_s, u"jobDone"_s, u"conversionStarted"_s})
    {
        world.setKeepLogs(false);
        world.scratch.write(u"a.mkv"_s, "film");
        world.installTool(u"ffmpeg/ffmpeg"_s,
                          QStringList{u"record "_s + world.scratch.path(u"runs"_s)} + script);
        world.installTool(u"ffmpeg/ffprobe"_s, {u"out   Duration: 00:02:00.00, start: 0.0"_s});
    }
    ~ExtractionBench()
    {
        if (job && !job->hasEnded())
            job->stopJob();
    }
    Q_DISABLE_COPY_MOVE(ExtractionBench)

    void start(const TrackList &tracks)
    {
        for (const TrackPointer &track : tracks)
            track->setTrackFileURL(source);
        const auto selection = handMadeSelection(u"General"_s, tracks);
        selection->setVideoTrackFileURL(source);
        job = std::make_shared<KXExtractTracksJob>(world.jobContext());
        job->initJobWithSelectionAndPreferences(selection, world.preferences);
        job->startJob();
    }
    bool waitForEnd() const
    {
        return waitFor([&] { return record.count(u"jobDone"_s) > 0; });
    }
    qsizetype runs() const { return FakeTool::recordedRuns(world.scratch.path(u"runs"_s)).size(); }
    void post(const QString &name, const QString &text, qsizetype step)
    {
        auto *converter = job->stepConverterList().at(step).get();
        world.notifications.post(name, text,
                                 {{u"stepName"_s, converter->stepName()},
                                  {u"theConverter"_s, QVariant::fromValue<QObject *>(converter)}});
    }

    JobWorld world{JobWorld::Tools::Fake};
    QUrl source;
    NotificationRecord record;
    std::shared_ptr<KXExtractTracksJob> job;
};

TrackPointer sound()
{
    return audioTrack(u"1"_s, u"ac3"_s, u"6"_s, {});
}

} // namespace

class KXExtractTracksJobTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyTrackIsAStepAndAsManyRunAsMay_data()
    {
        QTest::addColumn<int>("atOnce");
        QTest::newRow("one") << 1;
        QTest::newRow("two") << 2;
        QTest::newRow("all") << 4;
    }

    void everyTrackIsAStepAndAsManyRunAsMay()
    {
        QFETCH(int, atOnce);
        ExtractionBench bench({u"hang"_s});
        bench.world.toolsAtOnce = atOnce;
        const auto other = subtitleTrack(u"3"_s, u"srt"_s);
        other->setTrackType(u"External Subtitle"_s);
        bench.start({videoTrack(), sound(), subtitleTrack(u"2"_s, u"srt"_s), other});
        QCOMPARE(bench.job->progressList(), jobs::ProgressList({{u"Extracting Video Track"_s, u"0%"_s},
                                                                {u"Extracting Audio Track"_s, u"0%"_s},
                                                                {u"Extracting Subtitle Track"_s, u"0%"_s},
                                                                {u"Extracting"_s, u"0%"_s}}));
        QCOMPARE(bench.job->stepConverterList().size(), 4);
        QVERIFY(waitFor([&] { return bench.job->stepTaskList().size() == atOnce; }));
        QVERIFY(bench.job->tempFilesToDeleteList().isEmpty());
        QCOMPARE(bench.job->logFilesToDeleteList().size(), 4);
        QCOMPARE(bench.record.count(u"progressUpdate"_s), 1);
        QVERIFY(waitFor([&] { return bench.runs() == atOnce; }));
        QVERIFY(!waitFor([&] { return bench.runs() > atOnce; }, 300));
        QVERIFY(!bench.job->hasEnded());
        bench.job->stopJob();
        QVERIFY(!waitFor([&] { return bench.runs() > atOnce; }, 300)); // nor does a stop start any
    }

    void theNextStartsWhenOneEnds()
    {
        ExtractionBench bench;
        bench.world.toolsAtOnce = 1;
        bench.start({videoTrack(), sound(), subtitleTrack(u"2"_s, u"srt"_s)});
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.runs(), 3);
        QCOMPARE(bench.job->outcome().verdict, Verdict::Ok);
        QCOMPARE(bench.job->outputs().size(), 3);
    }

    void nothingStartsWhileTheJobIsPaused()
    {
        ExtractionBench bench({u"sleep 300"_s, wellDone, u"write 10 last"_s});
        bench.world.toolsAtOnce = 1;
        bench.start({videoTrack(), sound()});
        QVERIFY(waitFor([&] { return bench.runs() == 1; }));
        bench.job->pauseJob();
        bench.post(u"taskCompletion"_s, u"Complete"_s, 0); // as if it had ended before
        QVERIFY(!waitFor([&] { return bench.runs() > 1; }, 500));
        bench.job->resumeJob();
        QVERIFY(waitFor([&] { return bench.runs() == 2; }));
    }

    void aJobThatIsPausedAtItsBeginningWaits()
    {
        ExtractionBench bench;
        bench.start({videoTrack(), sound()});
        bench.job->pauseJob();
        QVERIFY(!waitFor([&] { return bench.runs() > 0 || bench.job->hasEnded(); }, 700));
        bench.job->resumeJob();
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.job->outcome().verdict, Verdict::Ok);
    }

    void theSourceIsAskedOnceForItsLength()
    {
        ExtractionBench bench;
        bench.world.installTool(u"ffmpeg/ffprobe"_s, {u"record "_s + bench.world.scratch.path(u"looks"_s),
                                                      u"out   Duration: 00:02:00.00, start: 0.0"_s});
        bench.start({videoTrack(), sound(), subtitleTrack(u"2"_s, u"srt"_s)});
        QVERIFY(bench.waitForEnd());
        QCOMPARE(FakeTool::recordedRuns(bench.world.scratch.path(u"looks"_s)).size(), 1);
    }

    void aSourceThatIsAPipeByNowIsNotAsked()
    {
        ExtractionBench bench;
        QVERIFY(QFile::remove(bench.source.toLocalFile()));
        QCOMPARE(::mkfifo(bench.source.toLocalFile().toUtf8().constData(), 0600), 0);
        bench.start({videoTrack()});
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.job->stepConverterList().constFirst()->durationInSeconds(), u"10800"_s);
    }

    void aStopEndsALookThatHangs()
    {
        ExtractionBench bench;
        const QString pids = bench.world.scratch.path(u"pids"_s);
        bench.world.installTool(u"ffmpeg/ffprobe"_s, {u"ignore TERM"_s, u"pid "_s + pids, u"hang"_s});
        bench.start({videoTrack()});
        QVERIFY(waitFor([&] { return !bench.world.scratch.read(u"pids"_s).isEmpty(); }));
        bench.job->stopJob();
        QVERIFY(!support::runs(bench.world.scratch.read(u"pids"_s).trimmed().toLongLong()));
        QCOMPARE(bench.runs(), 0);
    }

    void eachTrackIsWritten()
    {
        ExtractionBench bench;
        bench.start({videoTrack(), sound()});
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.job->outcome().verdict, Verdict::Ok);
        QCOMPARE(bench.job->outputs(), QList<QUrl>({bench.world.scratch.url(u"a.mkv.stream0.h264"_s),
                                                    bench.world.scratch.url(u"a.mkv.stream1.ac3"_s)}));
        QCOMPARE(bench.world.scratch.names().filter(u"stream"_s),
                 QStringList({u"a.mkv.stream0.h264"_s, u"a.mkv.stream1.ac3"_s}));
    }

    void theSaveFolderIsThePreferences()
    {
        ExtractionBench bench;
        bench.world.scratch.write(u"s/x"_s, {});
        bench.world.setSaveFolder(bench.world.scratch.path(u"s"_s));
        bench.start({sound()});
        QVERIFY(bench.waitForEnd());
        QVERIFY(QFile::exists(bench.world.scratch.path(u"s/a.mkv.stream1.ac3"_s)));
    }

    void percentAndCompletion()
    {
        ExtractionBench bench({u"hang"_s});
        bench.start({videoTrack(), sound()});
        bench.post(u"monitorExtractionUpdate"_s, u"45%"_s, 1);
        bench.post(u"monitorExtractionUpdate"_s, u"no percent"_s, 0);
        QCOMPARE(bench.job->progressList().at(0).progress, u"0%"_s);
        QCOMPARE(bench.job->progressList().at(1).progress, u"45%"_s);
        bench.post(u"taskCompletion"_s, u"Complete"_s, 1);
        QCOMPARE(bench.job->progressList().at(1).progress, u"Complete"_s);
        QVERIFY(!waitFor([&] { return bench.record.count(u"jobDone"_s) > 0; }, 100));
        bench.post(u"taskCompletion"_s, u"Complete"_s, 0);
        QVERIFY(bench.waitForEnd());
    }

    void announcementsOfAnotherConversionDontCount()
    {
        ExtractionBench bench({u"hang"_s});
        bench.start({sound()});
        bench.post(u"monitorConversionUpdate"_s, u"45%"_s, 0);
        QCOMPARE(bench.job->progressList().first().progress, u"0%"_s);
    }

    /// The others are written all the same.
    void aTrackThatCantBeWrittenIsNamed()
    {
        ExtractionBench bench({u"when 0:2"_s, u"err Unable to find a suitable output format"_s, u"exit 1"_s,
                               u"end"_s, wellDone, u"write 10 last"_s});
        const auto subtitle = subtitleTrack(u"2"_s, u"teletext"_s);
        subtitle->setTrackExtension(u"xxx"_s);
        subtitle->setTrackInfo(u"Subtitle: (teletext)"_s);
        bench.start({sound(), subtitle});
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.job->outcome().verdict, Verdict::Failed);
        QVERIFY2(
            bench.job->outcome().sentence.startsWith(u"Track 2, Subtitle: (teletext), was not written. "_s),
            qPrintable(bench.job->outcome().sentence));
        QCOMPARE(bench.job->outputs(), QList<QUrl>{bench.world.scratch.url(u"a.mkv.stream1.ac3"_s)});
        QVERIFY(
            QFile::exists(bench.world.scratch.path(u"a.mkv.stream2.xxx.log"_s))); // a failed step's log stays
    }

    void withoutTracksItEnds()
    {
        ExtractionBench bench;
        bench.start({});
        QVERIFY(bench.waitForEnd());
        QVERIFY(bench.job->progressList().isEmpty());
    }

    void theQueueKnowsTheJobs()
    {
        jobs::JobFactory factory;
        engines::registerJobs(factory);
        for (const QString &name :
             {u"KXConvertWithFfmpegJob"_s, u"KXConvertToMkvJob"_s, u"KXEditMkvJob"_s, u"KXExtractTracksJob"_s,
              u"KXSplitVideosJob"_s, u"KXJoinVideosJob"_s, u"KXRemuxVideoJob"_s, u"KXSendToLintwickJob"_s})
            QVERIFY2(factory.knows(name), qPrintable(name));
        QVERIFY(!factory.knows(u"KXJob"_s));
    }
};

QTEST_GUILESS_MAIN(KXExtractTracksJobTest)
#include "KXExtractTracksJobTest.moc"
