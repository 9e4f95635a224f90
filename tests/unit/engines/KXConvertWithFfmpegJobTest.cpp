#include "support/ConversionBench.h"
#include "support/HandMade.h"
#include "support/Waiting.h"
#include "tools/step/Rehearsal.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using step::Verdict;

namespace {

const QString timestampLine = u"err [matroska @ 0x1] Can't write packet with unknown timestamp"_s;
const QStringList pair{u"-fflags"_s, u"genpts"_s};

jobs::ProgressList itemOf(const QString &progress)
{
    return {{u"Video Conversion"_s, progress}};
}

QVariantMap infoOf(KXConverter *converter)
{
    return {{u"stepName"_s, u"Video Conversion"_s},
            {u"theConverter"_s, QVariant::fromValue<QObject *>(converter)}};
}

} // namespace

class KXConvertWithFfmpegJobTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLookThatHangsHoldsNothingUp()
    {
        ConversionBench bench({u"err frame=1 time=00:00:30.00 bitrate"_s, u"hang"_s});
        const QString pids = bench.path(u"pids"_s);
        bench.world.installTool(u"ffmpeg/ffprobe"_s, {u"ignore TERM"_s, u"pid "_s + pids, u"hang"_s});
        const auto job = bench.make(u"General"_s, {videoTrack()});
        job->startJob();
        QVERIFY(waitFor([&] { return !bench.world.scratch.read(u"pids"_s).isEmpty(); }));
        const qint64 look = bench.world.scratch.read(u"pids"_s).trimmed().toLongLong();
        QVERIFY(support::runs(look)); // and we do
        QElapsedTimer clock;
        clock.start();
        job->stopJob();
        QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(!support::runs(look));
    }

    void startsItsOneStep()
    {
        ConversionBench bench;
        const auto job = bench.make(u"General"_s, {videoTrack()});
        job->startJob();
        QCOMPARE(job->theTracks(), job->jobSelection()->trackList());
        QVERIFY(!job->subWasBurned());
        QCOMPARE(job->stepConverterList().size(), 1);
        const auto converter = job->stepConverterList().first();
        QCOMPARE(converter->stepName(), u"Video Conversion"_s);
        QCOMPARE(converter->converterName(), u"ffmpegConverter"_s);
        QCOMPARE(job->progressList(), itemOf(u"0%"_s));
        QCOMPARE(job->stepTaskList(), QList<jobs::StepTask>{converter->converterTask()});
        QCOMPARE(job->ffmpegOutputURL(), bench.url(u"a.m4v"_s));
        QCOMPARE(job->logFilesToDeleteList(), QList<QUrl>{bench.url(u"a.mkv.log"_s)});
        QVERIFY(job->tempFilesToDeleteList().isEmpty());
        QCOMPARE(bench.progressTexts(), QStringList{u"Video Conversion=0%"_s});
        QVERIFY(bench.waitForEnd());
        QCOMPARE(bench.progressTexts(), QStringList({u"Video Conversion=0%"_s, u"Video Conversion=100%"_s,
                                                     u"Video Conversion=Complete"_s}));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{bench.url(u"a.m4v"_s)});
        QVERIFY(!QFile::exists(bench.path(u"a.mkv.log"_s)));
    }

    void goesOnToPassTwo()
    {
        ConversionBench bench;
        const auto job = bench.make(u"General"_s, {videoTrack()}, u"2"_s);
        QVERIFY(bench.run(job));
        QCOMPARE(bench.progressTexts(),
                 QStringList({u"Video Conversion=0%"_s, u"Video Conversion=Pass #1 100%"_s,
                              u"Video Conversion=Pass 1 Complete"_s, u"Video Conversion=Pass #2 100%"_s,
                              u"Video Conversion=Complete"_s}));
        QCOMPARE(bench.calls().size(), 2);
        QCOMPARE(bench.calls().at(0).last(), u"/dev/null"_s);
        QCOMPARE(bench.calls().at(1).last(), bench.path(u"a.m4v"_s));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void passTwoIsARunningTaskOfTheJob()
    {
        ConversionBench bench({u"err frame=9 time=00:02:00.00 bitrate"_s, u"when /dev/null"_s, u"exit 0"_s,
                               u"end"_s, u"hang"_s});
        const auto job = bench.make(u"General"_s, {videoTrack()}, u"2"_s);
        job->startJob();
        const auto first = job->stepConverterList().first()->converterTask();
        QVERIFY(waitFor([&] { return bench.calls().size() == 2; }));
        const auto second = job->stepConverterList().first()->converterTask();
        QVERIFY(first != second);
        QCOMPARE(job->stepTaskList(), QList<jobs::StepTask>{second}); // an ended step's task has left
    }

    /// It would run on statistics that are not there, or on somebody's old ones.
    void aFailedPassOneIsTheEnd_data()
    {
        QTest::addColumn<QString>("ending");
        QTest::newRow("exit status") << u"exit 1"_s;
        QTest::newRow("killed") << u"die KILL"_s;
    }

    void aFailedPassOneIsTheEnd()
    {
        QFETCH(QString, ending);
        ConversionBench bench({u"err frame=9 time=00:02:00.00 bitrate"_s, ending});
        const auto job = bench.make(u"General"_s, {videoTrack()}, u"2"_s);
        QVERIFY(bench.run(job));
        QCOMPARE(bench.calls().size(), 1);
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY(job->outputs().isEmpty());
        QCOMPARE(bench.record.count(u"jobDone"_s), 1);
    }

    /// The step's text stays as it was, and the job goes on.
    void aTimestampErrorStartsARetry()
    {
        ConversionBench bench({u"when genpts"_s, u"hang"_s, u"end"_s,
                               u"err frame=9 time=00:00:30.00 bitrate"_s, timestampLine, u"exit 1"_s});
        const auto job = bench.make(u"MKV"_s, {videoTrack(u"passthru"_s)});
        job->startJob();
        QVERIFY(waitFor([&] { return bench.calls().size() == 2; }));
        QCOMPARE(bench.calls().at(1), pair + bench.calls().at(0));
        QCOMPARE(job->progressList(), itemOf(u"25%"_s));
        QCOMPARE(bench.record.count(u"jobDone"_s), 0);
        QCOMPARE(job->stepTaskList(),
                 QList<jobs::StepTask>{job->stepConverterList().first()->converterTask()});
    }

    void aRetryThatHelpsEndsTheJobWell()
    {
        ConversionBench bench(QStringList{u"when genpts"_s} + ConversionBench::wellDone() +
                              QStringList({u"exit 0"_s, u"end"_s, timestampLine, u"exit 1"_s}));
        const auto job = bench.make(u"MKV"_s, {videoTrack(u"passthru"_s)});
        QVERIFY(bench.run(job));
        QCOMPARE(bench.calls().size(), 2);
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void afterFiveRetriesItGivesUp()
    {
        ConversionBench bench({u"err frame=9 time=00:02:00.00 bitrate"_s, timestampLine, u"exit 1"_s});
        const auto job = bench.make(u"MKV"_s, {videoTrack(u"passthru"_s)});
        QVERIFY(bench.run(job));
        QCOMPARE(bench.calls().size(), 6);
        QCOMPARE(bench.calls().last(), pair + pair + pair + pair + pair + bench.calls().first());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY(job->outcome().sentence.contains(u"packets without timestamps"_s));
        QCOMPARE(bench.record.count(u"jobDone"_s), 1);
    }

    void aRetryOfPassTwoRunsBothPassesAgain()
    {
        ConversionBench bench(
            QStringList{u"when genpts"_s} + ConversionBench::wellDone() +
            QStringList({u"exit 0"_s, u"end"_s, u"err frame=9 time=00:02:00.00 bitrate"_s,
                         u"when /dev/null"_s, u"exit 0"_s, u"end"_s, timestampLine, u"exit 1"_s}));
        const auto job = bench.make(u"MKV"_s, {videoTrack()}, u"2"_s);
        QVERIFY(bench.run(job));
        const auto calls = bench.calls();
        QCOMPARE(calls.size(), 4);
        QCOMPARE(calls.at(2), pair + calls.at(0));
        QCOMPARE(calls.at(3), pair + calls.at(1));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    /// A picture that is copied in two passes meets its missing timestamps in pass 1 already.
    void aRetryOfPassOneGoesOnToPassTwo()
    {
        ConversionBench bench(QStringList{u"when genpts"_s} + ConversionBench::wellDone() +
                              QStringList({u"exit 0"_s, u"end"_s, timestampLine, u"exit 1"_s}));
        const auto job = bench.make(u"MKV"_s, {videoTrack(u"passthru"_s)}, u"2"_s);
        QVERIFY(bench.run(job));
        const auto calls = bench.calls();
        QCOMPARE(calls.size(), 3);
        QCOMPARE(calls.at(1), pair + calls.at(0));
        QCOMPARE(calls.at(2).mid(0, 2), pair);
        QCOMPARE(calls.at(2).last(), bench.path(u"a.mkv.mkv"_s));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void aPassOneThatNeverHelpsIsGivenUp()
    {
        ConversionBench bench({timestampLine, u"exit 1"_s});
        const auto job = bench.make(u"MKV"_s, {videoTrack(u"passthru"_s)}, u"2"_s);
        QVERIFY(bench.run(job));
        QCOMPARE(bench.calls().size(), 6);
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QCOMPARE(bench.record.count(u"jobDone"_s), 1);
    }

    void theLastCompletionEndsItOnce()
    {
        ConversionBench bench({u"hang"_s});
        const auto job = bench.make(u"General"_s, {videoTrack()});
        job->startJob();
        auto *converter = job->stepConverterList().first().get();
        bench.world.notifications.post(u"taskCompletion"_s, u"Complete"_s, infoOf(converter));
        bench.world.notifications.post(u"taskCompletion"_s, u"Complete"_s, infoOf(converter));
        QVERIFY(bench.waitForEnd());
        QVERIFY(!waitFor([&] { return bench.record.count(u"jobDone"_s) > 1; }, 100));
    }

    void anItemThatIsNotCompleteKeepsItRunning()
    {
        ConversionBench bench({u"hang"_s});
        const auto job = bench.make(u"General"_s, {videoTrack()});
        job->startJob();
        job->setProgressList(job->progressList() << jobs::ProgressItem{u"Another"_s, u"0%"_s});
        bench.world.notifications.post(u"taskCompletion"_s, u"Complete"_s,
                                       infoOf(job->stepConverterList().first().get()));
        QCOMPARE(job->progressList().first().progress, u"Complete"_s);
        QVERIFY(!waitFor([&] { return bench.record.count(u"jobDone"_s) > 0; }, 200));
    }

    void announcementsOfOthersDontCount()
    {
        ConversionBench bench({u"hang"_s});
        const auto job = bench.make(u"General"_s, {videoTrack()});
        job->startJob();
        step::OutputGuard guard(bench.world.outputs, step::WhenTaken::NextFreeName);
        KXFfmpegConverter other(bench.world.converterContext(guard));
        bench.world.notifications.post(u"monitorConversionUpdate"_s, u"50%"_s, infoOf(&other));
        bench.world.notifications.post(u"taskCompletion"_s, u"Complete"_s, infoOf(&other));
        bench.world.notifications.post(u"taskCompletion"_s, u"Complete"_s);
        QCOMPARE(job->progressList(), itemOf(u"0%"_s));
        QVERIFY(!waitFor([&] { return bench.record.count(u"jobDone"_s) > 0; }, 100));
    }

    void progressTextsAreToldApart()
    {
        ConversionBench bench({u"hang"_s});
        const auto job = bench.make(u"General"_s, {videoTrack()});
        job->startJob();
        const auto info = infoOf(job->stepConverterList().first().get());
        bench.world.notifications.post(u"monitorConversionUpdate"_s, u"Pass #1 45%"_s, info);
        QCOMPARE(job->progressList(), itemOf(u"Pass #1 45%"_s));
        bench.world.notifications.post(u"monitorConversionUpdate"_s, u"something else"_s, info);
        QCOMPARE(job->progressList(), itemOf(u"Pass #1 45%"_s));
        bench.world.notifications.post(u"taskCompletion"_s, u"something else"_s, info);
        QCOMPARE(job->progressList(), itemOf(u"Pass #1 45%"_s));
    }

    void phasesFlash_data()
    {
        QTest::addColumn<QString>("phase");
        QTest::newRow("fonts") << u"Initializing Fontconfig"_s;
        QTest::newRow("index") << u"moving moov atom"_s;
    }

    void phasesFlash()
    {
        QFETCH(QString, phase);
        ConversionBench bench({u"hang"_s});
        const auto job = bench.make(u"General"_s, {videoTrack()});
        job->startJob();
        const auto info = infoOf(job->stepConverterList().first().get());
        bench.world.notifications.post(u"monitorConversionUpdate"_s, phase, info);
        QCOMPARE(job->progressList(), itemOf(u"0%"_s)); // the first blink comes with the timer
        QVERIFY(waitFor([&] { return job->progressList() == itemOf(phase); }));
        QVERIFY(waitFor([&] { return job->progressList() == itemOf(u""_s); }));
        bench.world.notifications.post(u"monitorConversionUpdate"_s, u"46%"_s, info);
        QVERIFY(!waitFor([&] { return job->progressList() != itemOf(u"46%"_s); }, 1200));
    }

    void aToolThatCantBeStartedEndsTheJob()
    {
        ConversionBench bench;
        QVERIFY(QFile::remove(bench.world.preferences.toolsLocation().toLocalFile() + u"/ffmpeg/ffmpeg"_s));
        const auto job = bench.make(u"General"_s, {videoTrack()});
        QVERIFY(bench.run(job));
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY(job->outcome().sentence.contains(u"not started"_s));
    }

    /// Only what would be started is noted, both passes of it.
    void aRehearsalStartsNothing()
    {
        ConversionBench bench;
        step::Rehearsal rehearsal;
        const auto job = std::make_shared<KXConvertWithFfmpegJob>(
            bench.world.jobContext(step::WhenTaken::NextFreeName, rehearsal));
        job->initJobWithSelectionAndPreferences(bench.selection(u"General"_s, {videoTrack()}, u"2"_s),
                                                bench.world.preferences);
        job->startJob();
        QCOMPARE(rehearsal.entries().size(), 2);
        QCOMPARE(rehearsal.entries().at(0).launch.pass, 1);
        QCOMPARE(rehearsal.entries().at(1).launch.pass, 2);
        QCOMPARE(rehearsal.entries().at(1).launch.stepName, u"Video Conversion"_s);
        QVERIFY(bench.calls().isEmpty());
        job->stopJob();
    }
};

QTEST_GUILESS_MAIN(KXConvertWithFfmpegJobTest)
#include "KXConvertWithFfmpegJobTest.moc"
