#include "engines/ffmpeg/KXExtractTracksJob.h"
#include "engines/EngineJobs.h"
#include "jobs/JobFactory.h"
#include "support/FakeTool.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"
#include "support/selection/HandMade.h"

#include <QFile>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

namespace {

const QString wellDone = u"err frame=9 Lsize=9kB time=00:02:00.00 bitrate"_s;

class ExtractionFixture final
{
public:
    explicit ExtractionFixture(const QStringList &script = {wellDone, u"write 10 last"_s})
        : source(base.scratch.url(u"a.mkv"_s))
        , record(base.notifications, {u"progressUpdate"_s, u"jobDone"_s, u"conversionStarted"_s})
    {
        base.setKeepLogs(false);
        base.scratch.write(u"a.mkv"_s, "film");
        base.installTool(u"ffmpeg/ffmpeg"_s,
                         QStringList{u"record "_s + base.scratch.path(u"runs"_s)} + script);
        base.installTool(u"ffmpeg/ffprobe"_s, {u"out   Duration: 00:02:00.00, start: 0.0"_s});
    }
    ~ExtractionFixture()
    {
        if (job && !job->hasEnded())
            job->stopJob();
    }
    Q_DISABLE_COPY_MOVE(ExtractionFixture)

    void start(const TrackList &tracks)
    {
        for (const TrackPointer &track : tracks)
            track->setTrackFileURL(source);
        const auto selection = handMadeSelection(u"General"_s, tracks);
        selection->setVideoTrackFileURL(source);
        job = std::make_shared<KXExtractTracksJob>(base.jobContext());
        job->initJobWithSelectionAndPreferences(selection, base.preferences);
        job->startJob();
    }
    bool waitForEnd() const
    {
        return waitFor([&] { return record.count(u"jobDone"_s) > 0; });
    }
    qsizetype runs() const { return FakeTool::recordedRuns(base.scratch.path(u"runs"_s)).size(); }
    void post(const QString &name, const QString &text, qsizetype step)
    {
        auto *converter = job->stepConverterList().at(step).get();
        base.notifications.post(name, text,
                                {{u"stepName"_s, converter->stepName()},
                                 {u"theConverter"_s, QVariant::fromValue<QObject *>(converter)}});
    }

    JobFixture base{JobFixture::Tools::Fake};
    QUrl source;
    NotificationRecord record;
    std::shared_ptr<KXExtractTracksJob> job;
};

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
        ExtractionFixture fixture({u"hang"_s});
        fixture.base.toolsAtOnce = atOnce;
        const auto other = subtitleTrack(u"3"_s, u"srt"_s);
        other->setTrackType(u"External Subtitle"_s);
        fixture.start({videoTrack(), surroundSound(), subtitleTrack(u"2"_s, u"srt"_s), other});
        QCOMPARE(fixture.job->progressList(), jobs::ProgressList({{u"Extracting Video Track"_s, u"0%"_s},
                                                                  {u"Extracting Audio Track"_s, u"0%"_s},
                                                                  {u"Extracting Subtitle Track"_s, u"0%"_s},
                                                                  {u"Extracting"_s, u"0%"_s}}));
        QCOMPARE(fixture.job->stepConverterList().size(), 4);
        QVERIFY(waitFor([&] { return fixture.job->stepTaskList().size() == atOnce; }));
        QVERIFY(fixture.job->tempFilesToDeleteList().isEmpty());
        QCOMPARE(fixture.job->logFilesToDeleteList().size(), 4);
        QCOMPARE(fixture.record.count(u"progressUpdate"_s), 1);
        QVERIFY(waitFor([&] { return fixture.runs() == atOnce; }));
        QVERIFY(!waitFor([&] { return fixture.runs() > atOnce; }, 300));
        QVERIFY(!fixture.job->hasEnded());
        fixture.job->stopJob();
        QVERIFY(!waitFor([&] { return fixture.runs() > atOnce; }, 300)); // nor does a stop start any
    }

    void theNextStartsWhenOneEnds()
    {
        ExtractionFixture fixture;
        fixture.base.toolsAtOnce = 1;
        fixture.start({videoTrack(), surroundSound(), subtitleTrack(u"2"_s, u"srt"_s)});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.runs(), 3);
        QCOMPARE(fixture.job->outcome().verdict, Verdict::Ok);
        QCOMPARE(fixture.job->outputs().size(), 3);
    }

    void nothingStartsWhileTheJobIsPaused()
    {
        ExtractionFixture fixture({u"hang"_s});
        fixture.base.toolsAtOnce = 1;
        fixture.start({videoTrack(), surroundSound()});
        QVERIFY(waitFor([&] { return fixture.runs() == 1; }));
        fixture.job->pauseJob();
        fixture.post(u"taskCompletion"_s, u"Complete"_s, 0); // as if it had ended before
        QVERIFY(!waitFor([&] { return fixture.runs() > 1; }, 500));
        fixture.job->resumeJob();
        QVERIFY(waitFor([&] { return fixture.runs() == 2; }));
    }

    void aJobThatIsPausedAtItsBeginningWaits()
    {
        ExtractionFixture fixture;
        fixture.start({videoTrack(), surroundSound()});
        fixture.job->pauseJob();
        QVERIFY(!waitFor([&] { return fixture.runs() > 0 || fixture.job->hasEnded(); }, 700));
        fixture.job->resumeJob();
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.job->outcome().verdict, Verdict::Ok);
    }

    void theSourceIsAskedOnceForItsLength()
    {
        ExtractionFixture fixture;
        fixture.base.installTool(u"ffmpeg/ffprobe"_s, {u"record "_s + fixture.base.scratch.path(u"looks"_s),
                                                       u"out   Duration: 00:02:00.00, start: 0.0"_s});
        fixture.start({videoTrack(), surroundSound(), subtitleTrack(u"2"_s, u"srt"_s)});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(FakeTool::recordedRuns(fixture.base.scratch.path(u"looks"_s)).size(), 1);
    }

    void aSourceThatIsAPipeByNowIsNotAsked()
    {
        ExtractionFixture fixture;
        QVERIFY(QFile::remove(fixture.source.toLocalFile()));
        QCOMPARE(::mkfifo(fixture.source.toLocalFile().toUtf8().constData(), 0600), 0);
        fixture.start({videoTrack()});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.job->stepConverterList().constFirst()->durationInSeconds(), u"10800"_s);
    }

    void aStopEndsALookThatHangs()
    {
        ExtractionFixture fixture;
        const QString pids = fixture.base.scratch.path(u"pids"_s);
        fixture.base.installTool(u"ffmpeg/ffprobe"_s, {u"ignore TERM"_s, u"pid "_s + pids, u"hang"_s});
        fixture.start({videoTrack()});
        QVERIFY(waitFor([&] { return !fixture.base.scratch.read(u"pids"_s).isEmpty(); }));
        fixture.job->stopJob();
        QVERIFY(!support::runs(fixture.base.scratch.read(u"pids"_s).trimmed().toLongLong()));
        QCOMPARE(fixture.runs(), 0);
    }

    void eachTrackIsWritten()
    {
        ExtractionFixture fixture;
        fixture.start({videoTrack(), surroundSound()});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.job->outcome().verdict, Verdict::Ok);
        QCOMPARE(fixture.job->outputs(), QList<QUrl>({fixture.base.scratch.url(u"a.mkv.stream0.h264"_s),
                                                      fixture.base.scratch.url(u"a.mkv.stream1.ac3"_s)}));
        QCOMPARE(fixture.base.scratch.names().filter(u"stream"_s),
                 QStringList({u"a.mkv.stream0.h264"_s, u"a.mkv.stream1.ac3"_s}));
    }

    void theSaveFolderIsThePreferences()
    {
        ExtractionFixture fixture;
        fixture.base.scratch.write(u"s/x"_s, {});
        fixture.base.setSaveFolder(fixture.base.scratch.path(u"s"_s));
        fixture.start({surroundSound()});
        QVERIFY(fixture.waitForEnd());
        QVERIFY(QFile::exists(fixture.base.scratch.path(u"s/a.mkv.stream1.ac3"_s)));
    }

    void percentAndCompletion()
    {
        ExtractionFixture fixture({u"hang"_s});
        fixture.start({videoTrack(), surroundSound()});
        fixture.post(u"monitorExtractionUpdate"_s, u"45%"_s, 1);
        fixture.post(u"monitorExtractionUpdate"_s, u"no percent"_s, 0);
        QCOMPARE(fixture.job->progressList().at(0).progress, u"0%"_s);
        QCOMPARE(fixture.job->progressList().at(1).progress, u"45%"_s);
        fixture.post(u"taskCompletion"_s, u"Complete"_s, 1);
        QCOMPARE(fixture.job->progressList().at(1).progress, u"Complete"_s);
        QVERIFY(!waitFor([&] { return fixture.record.count(u"jobDone"_s) > 0; }, 100));
        fixture.post(u"taskCompletion"_s, u"Complete"_s, 0);
        QVERIFY(fixture.waitForEnd());
    }

    void announcementsOfAnotherConversionDontCount()
    {
        ExtractionFixture fixture({u"hang"_s});
        fixture.start({surroundSound()});
        fixture.post(u"monitorConversionUpdate"_s, u"45%"_s, 0);
        QCOMPARE(fixture.job->progressList().first().progress, u"0%"_s);
    }

    /// The others are written all the same.
    void aTrackThatCantBeWrittenIsNamed()
    {
        ExtractionFixture fixture({u"when 0:2"_s, u"err Unable to find a suitable output format"_s,
                                   u"exit 1"_s, u"end"_s, wellDone, u"write 10 last"_s});
        const auto subtitle = subtitleTrack(u"2"_s, u"teletext"_s);
        subtitle->setTrackExtension(u"xxx"_s);
        subtitle->setTrackInfo(u"Subtitle: (teletext)"_s);
        fixture.start({surroundSound(), subtitle});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.job->outcome().verdict, Verdict::Failed);
        QVERIFY2(
            fixture.job->outcome().sentence.startsWith(u"Track 2, Subtitle: (teletext), was not written. "_s),
            qPrintable(fixture.job->outcome().sentence));
        QCOMPARE(fixture.job->outputs(), QList<QUrl>{fixture.base.scratch.url(u"a.mkv.stream1.ac3"_s)});
        QVERIFY(QFile::exists(
            fixture.base.scratch.path(u"a.mkv.stream2.xxx.log"_s))); // a failed step's log stays
    }

    void withoutTracksItEnds()
    {
        ExtractionFixture fixture;
        fixture.start({});
        QVERIFY(fixture.waitForEnd());
        QVERIFY(fixture.job->progressList().isEmpty());
    }

    void everyKindOfJobHasItsClass()
    {
        jobs::JobFactory factory;
        engines::registerJobs(factory);
        support::JobFixture fixture(support::JobFixture::Tools::Fake);
        const QList<std::pair<jobs::JobKind, const char *>> classes{
            {jobs::JobKind::Conversion, "KXConvertWithFfmpegJob"},
            {jobs::JobKind::Muxing, "KXConvertToMkvJob"},
            {jobs::JobKind::MkvEditing, "KXEditMkvJob"},
            {jobs::JobKind::TrackExtraction, "KXExtractTracksJob"},
            {jobs::JobKind::Joining, "KXJoinVideosJob"},
            {jobs::JobKind::Splitting, "KXSplitVideosJob"},
            {jobs::JobKind::Remux, "KXRemuxVideoJob"},
            {jobs::JobKind::SubtitleSending, "KXSendToLintwickJob"},
        };
        for (const auto &[kind, name] : classes)
            QCOMPARE(factory.make(kind, fixture.jobContext())->metaObject()->className(), name);
    }
};

TESSARAY_TEST(KXExtractTracksJobTest)
#include "KXExtractTracksJobTest.moc"
