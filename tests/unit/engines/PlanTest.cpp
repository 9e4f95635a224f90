// What a job says it would run is what it runs, and saying it does nothing else.
#include "engines/ffmpeg/KXConvertWithFfmpegJob.h"
#include "engines/ffmpeg/KXExtractTracksJob.h"
#include "engines/join/KXJoinVideosJob.h"
#include "engines/mkvtoolnix/KXConvertToMkvJob.h"
#include "engines/mkvtoolnix/KXEditMkvJob.h"
#include "engines/mkvtoolnix/KXRemuxVideoJob.h"
#include "engines/mkvtoolnix/KXSendToLintwickJob.h"
#include "engines/mkvtoolnix/KXSplitVideosJob.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/MkvFixture.h"
#include "support/selection/HandMade.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// What all the operations can work on.
TrackList tracks(const QString &videoCodec, const QString &subtitleCodec)
{
    const TrackPointer sound = audioTrack(u"1"_s, u"ac3"_s, u"6"_s, audioSettings(u"passthru"_s, u"6"_s));
    sound->setUserCodec(u"passthru"_s);
    return {videoTrack(videoCodec), sound, subtitleTrack(u"2"_s, u"srt"_s, subtitleCodec)};
}

/// "STEP, pass N: TOOL|ITEM|... => ITEM|...", or with the line. The job's own folder has no name.
QString textOf(const steps::Launch &launch)
{
    static const QRegularExpression ownFolder(u"/[^|'\" ]*/tessaray-[^/|'\" ]*/job[0-9]+/"_s);
    QString text = u"%1, pass %2: %3|%4 => %5"_s.arg(
        launch.stepName, QString::number(launch.pass), launch.tool.fileName(),
        tools::textsOf(launch.meant).join(u'|'), tools::textsOf(launch.launched).join(u'|'));
    if (launch.line)
        text += u" as "_s + launch.line->launched;
    return text.replace(ownFolder, u"OWN/"_s);
}

QStringList textsOf(const QList<steps::Launch> &launches)
{
    QStringList texts;
    for (const steps::Launch &launch : launches)
        texts.append(textOf(launch));
    return texts;
}

/// A run keeps its statistics in a private folder, a plan beside the output.
QStringList withoutStatistics(QStringList texts)
{
    static const QRegularExpression statistics(u"-passlogfile\\|[^|]*"_s);
    return texts.replaceInStrings(statistics, u"-passlogfile"_s);
}

} // namespace

class PlanTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isWhatRuns_data()
    {
        QTest::addColumn<JobMaker>("maker");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("videoCodec");
        QTest::addColumn<QString>("subtitleCodec");
        QTest::addColumn<QString>("passes");
        QTest::addColumn<QStringList>("steps");
        const auto row = [](const char *name, JobMaker maker, const QString &type, const QStringList &steps,
                            const QString &video = u"passthru"_s, const QString &subtitle = u"mux"_s,
                            const QString &passes = u"1"_s) {
            QTest::newRow(name) << maker << type << video << subtitle << passes << steps;
        };
        const QString conversion = u"MKV Conversion"_s;
        row("conversion", makeJob<KXConvertWithFfmpegJob>, conversion,
            {u"Video Conversion, pass 0: ffmpeg"_s});
        row("two passes", makeJob<KXConvertWithFfmpegJob>, conversion,
            {u"Video Conversion, pass 1: ffmpeg"_s, u"Video Conversion, pass 2: ffmpeg"_s}, u"h264"_s,
            u"mux"_s, u"2"_s);
        row("burning", makeJob<KXConvertWithFfmpegJob>, conversion,
            {u"Extracting Subtitle, pass 0: ffmpeg"_s, u"Video Conversion, pass 0: ffmpeg"_s}, u"h264"_s,
            u"burn"_s);
        row("extracting on the way", makeJob<KXConvertWithFfmpegJob>, conversion,
            {u"Extracting Subtitle, pass 0: ffmpeg"_s, u"Video Conversion, pass 0: ffmpeg"_s}, u"h264"_s,
            u"extract"_s);
        row("muxing", makeJob<KXConvertToMkvJob>, conversion, {u"Muxing Tracks, pass 0: mkvmerge"_s});
        row("muxing a conversion", makeJob<KXConvertToMkvJob>, conversion,
            {u"Converting Video, pass 0: ffmpeg"_s, u"Muxing Tracks, pass 0: mkvmerge"_s}, u"h264"_s);
        row("removal", makeJob<KXEditMkvJob>, u"MKV Track Removal"_s,
            {u"Removing Tracks, pass 0: mkvmerge"_s});
        row("remux by the editor", makeJob<KXEditMkvJob>, u"MKV Remux"_s,
            {u"Re-Muxing MKV, pass 0: mkvmerge"_s});
        row("split by the editor", makeJob<KXEditMkvJob>, u"MKV Splitting"_s,
            {u"Splitting Videos, pass 0: mkvmerge"_s});
        row("join by the editor", makeJob<KXEditMkvJob>, u"MKV Joining"_s,
            {u"Joining Videos, pass 0: mkvmerge"_s});
        const QStringList extraction{u"Extracting Video Track, pass 0: ffmpeg"_s,
                                     u"Extracting Audio Track, pass 0: ffmpeg"_s,
                                     u"Extracting Subtitle Track, pass 0: ffmpeg"_s};
        row("extraction by the editor", makeJob<KXEditMkvJob>, u"MKV Track Extraction"_s, extraction);
        row("extraction", makeJob<KXExtractTracksJob>, u"MKV Track Extraction"_s, extraction);
        row("join", makeJob<KXJoinVideosJob>, u"MKV Joining"_s, {u"Joining Videos, pass 0: mkvmerge"_s});
        row("remux", makeJob<KXRemuxVideoJob>, u"MKV Remux"_s, {u"Re-Muxing MKV, pass 0: mkvmerge"_s});
        row("split", makeJob<KXSplitVideosJob>, u"MKV Splitting"_s,
            {u"Splitting Videos, pass 0: mkvmerge"_s});
        row("sending", makeJob<KXSendToLintwickJob>, u"Send To Lintwick"_s,
            {u"Extracting Subtitle Track, pass 0: ffmpeg"_s});
    }

    void isWhatRuns()
    {
        QFETCH(JobMaker, maker);
        QFETCH(QStringList, steps);
        MkvFixture fixture;
        const auto made = [&](steps::OutputRegistry &outputs) {
            jobs::JobContext context =
                fixture.base.jobContext(steps::WhenTaken::NextFreeName, fixture.launches);
            const auto job =
                maker({context.preferences, context.notifications, context.alerts, context.volumes,
                       context.workspace, context.launcher, outputs, context.scratch, context.whenTaken,
                       context.toolsAtOnce, context.intervals, context.checking});
            job->initJobWithSelectionAndPreferences(selectionFor(fixture), fixture.base.preferences);
            return job;
        };
        const QStringList before = fixture.base.scratch.names();
        steps::OutputRegistry ofPlans;
        const auto planned = made(ofPlans);
        const QStringList plan = textsOf(planned->plan());
        QVERIFY2(planned->startProblem().isNull(), qPrintable(planned->startProblem()));
        QCOMPARE(plan.size(), steps.size());
        for (qsizetype i = 0; i < steps.size(); ++i)
            QVERIFY2(plan.at(i).startsWith(steps.at(i) + u'|'), qPrintable(plan.at(i)));
        QVERIFY(fixture.launches.all().isEmpty());
        QVERIFY(fixture.record.all().isEmpty());
        QCOMPARE(fixture.base.scratch.names(), before);
        fixture.job = made(fixture.base.outputs);
        fixture.job->startJob();
        QVERIFY(waitFor([&] { return fixture.job->hasEnded(); }));
        QCOMPARE(withoutStatistics(textsOf(fixture.launches.all())), withoutStatistics(plan));
    }

    /// No line of a plan names a private folder, which is gone when somebody pastes it.
    void namesNoPrivateFolder()
    {
        MkvFixture fixture;
        steps::OutputRegistry ofPlans;
        jobs::JobContext context = fixture.base.jobContext(steps::WhenTaken::NextFreeName, fixture.launches);
        const auto selection = fixture.selection(u"MKV Conversion"_s, {videoTrack()}, u"2"_s);
        const auto job = std::make_shared<KXConvertWithFfmpegJob>(context);
        job->initJobWithSelectionAndPreferences(selection, fixture.base.preferences);
        const QStringList plan = textsOf(job->plan());
        QCOMPARE(plan.size(), 2);
        for (const QString &line : plan) {
            const QString statistics = line.section(u"-passlogfile|"_s, 1).section(u'|', 0, 0);
            QCOMPARE(statistics,
                     job->stepConverterList().constFirst()->outputFileURL().toLocalFile() + u".passlog"_s);
        }
    }

    void ofARefusedJobIsEmptyAndSaysWhy()
    {
        MkvFixture fixture;
        const auto selection = fixture.selection(u"MKV Remux"_s, tracks(u"passthru"_s, u"mux"_s));
        fixture.base.scratch.write(u"a.mkv.remux.mkv"_s, "theirs");
        KXRemuxVideoJob job(fixture.base.jobContext(steps::WhenTaken::Refuse));
        job.initJobWithSelectionAndPreferences(selection, fixture.base.preferences);
        QVERIFY(job.plan().isEmpty());
        QVERIFY2(job.startProblem().contains(u"a.mkv.remux.mkv"_s), qPrintable(job.startProblem()));
    }

private:
    static SelectionPointer selectionFor(const MkvFixture &fixture)
    {
        QFETCH(QString, type);
        QFETCH(QString, videoCodec);
        QFETCH(QString, subtitleCodec);
        QFETCH(QString, passes);
        const TrackList list = tracks(videoCodec, subtitleCodec);
        const auto selection = fixture.selection(type, list, passes);
        selection->setKeepTracksList(list);
        selection->setSubCount(u"1"_s);
        selection->setEditFilesURLsList({fixture.source, fixture.source});
        selection->setSplitType(u"duration"_s);
        selection->setSplitDurationSeconds(u"2"_s);
        return selection;
    }
};

TESSARAY_TEST(PlanTest)
#include "PlanTest.moc"
