#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/engines/ConversionFixture.h"
#include "support/selection/HandMade.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

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
        ConversionFixture fixture({u"err frame=1 time=00:00:30.00 bitrate"_s, u"hang"_s});
        const QString pids = fixture.path(u"pids"_s);
        fixture.base.installTool(u"ffmpeg/ffprobe"_s, {u"ignore TERM"_s, u"pid "_s + pids, u"hang"_s});
        const auto job = fixture.make(u"General"_s, {videoTrack()});
        job->startJob();
        QVERIFY(waitFor([&] { return !fixture.base.scratch.read(u"pids"_s).isEmpty(); }));
        const qint64 look = fixture.base.scratch.read(u"pids"_s).trimmed().toLongLong();
        QVERIFY(support::runs(look)); // and we do
        job->stopJob();               // comes back at once
        QVERIFY(!support::runs(look));
    }

    void startsItsOneStep()
    {
        ConversionFixture fixture;
        const auto job = fixture.make(u"General"_s, {videoTrack()});
        job->startJob();
        QCOMPARE(job->theTracks(), job->jobSelection()->trackList());
        QVERIFY(!job->subWasBurned());
        QCOMPARE(job->stepConverterList().size(), 1);
        const auto converter = job->stepConverterList().first();
        QCOMPARE(converter->stepName(), u"Video Conversion"_s);
        QCOMPARE(converter->converterName(), u"ffmpegConverter"_s);
        QCOMPARE(job->progressList(), itemOf(u"0%"_s));
        QCOMPARE(job->stepTaskList(), QList<jobs::StepTask>{converter->converterTask()});
        QCOMPARE(job->ffmpegOutputURL(), fixture.url(u"a.m4v"_s));
        QCOMPARE(job->logFilesToDeleteList(), QList<QUrl>{fixture.url(u"a.mkv.log"_s)});
        QVERIFY(job->tempFilesToDeleteList().isEmpty());
        QCOMPARE(fixture.progressTexts(), QStringList{u"Video Conversion=0%"_s});
        QVERIFY(fixture.waitForEnd());
        QCOMPARE(fixture.progressTexts(), QStringList({u"Video Conversion=0%"_s, u"Video Conversion=100%"_s,
                                                       u"Video Conversion=Complete"_s}));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
        QCOMPARE(job->outputs(), QList<QUrl>{fixture.url(u"a.m4v"_s)});
        QVERIFY(!QFile::exists(fixture.path(u"a.mkv.log"_s)));
    }

    void goesOnToPassTwo()
    {
        ConversionFixture fixture;
        const auto job = fixture.make(u"General"_s, {videoTrack()}, u"2"_s);
        QVERIFY(fixture.run(job));
        QCOMPARE(fixture.progressTexts(),
                 QStringList({u"Video Conversion=0%"_s, u"Video Conversion=Pass #1 100%"_s,
                              u"Video Conversion=Pass 1 Complete"_s, u"Video Conversion=Pass #2 100%"_s,
                              u"Video Conversion=Complete"_s}));
        QCOMPARE(fixture.calls().size(), 2);
        QCOMPARE(fixture.calls().at(0).last(), u"/dev/null"_s);
        QCOMPARE(fixture.calls().at(1).last(), fixture.path(u"a.m4v"_s));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void passTwoIsARunningTaskOfTheJob()
    {
        ConversionFixture fixture({u"err frame=9 time=00:02:00.00 bitrate"_s, u"when /dev/null"_s,
                                   u"exit 0"_s, u"end"_s, u"hang"_s});
        const auto job = fixture.make(u"General"_s, {videoTrack()}, u"2"_s);
        job->startJob();
        const auto first = job->stepConverterList().first()->converterTask();
        QVERIFY(waitFor([&] { return fixture.calls().size() == 2; }));
        const auto second = job->stepConverterList().first()->converterTask();
        QVERIFY(first != second);
        QCOMPARE(job->stepTaskList(), QList<jobs::StepTask>{second}); // an ended step's task has left
    }

    /// It would run on statistics that are not there, or on those of another run.
    void aFailedPassOneIsTheEnd_data()
    {
        QTest::addColumn<QString>("ending");
        QTest::newRow("exit status") << u"exit 1"_s;
        QTest::newRow("killed") << u"die KILL"_s;
    }

    void aFailedPassOneIsTheEnd()
    {
        QFETCH(QString, ending);
        ConversionFixture fixture({u"err frame=9 time=00:02:00.00 bitrate"_s, ending});
        const auto job = fixture.make(u"General"_s, {videoTrack()}, u"2"_s);
        QVERIFY(fixture.run(job));
        QCOMPARE(fixture.calls().size(), 1);
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY(job->outputs().isEmpty());
        QCOMPARE(fixture.record.count(u"jobDone"_s), 1);
    }

    /// The step's text stays as it was, and the job goes on.
    void aTimestampErrorStartsARetry()
    {
        ConversionFixture fixture({u"when genpts"_s, u"hang"_s, u"end"_s,
                                   u"err frame=9 time=00:00:30.00 bitrate"_s, timestampLine, u"exit 1"_s});
        const auto job = fixture.make(u"MKV"_s, {videoTrack(u"passthru"_s)});
        job->startJob();
        QVERIFY(waitFor([&] { return fixture.calls().size() == 2; }));
        QCOMPARE(fixture.calls().at(1), pair + fixture.calls().at(0));
        QCOMPARE(job->progressList(), itemOf(u"25%"_s));
        QCOMPARE(fixture.record.count(u"jobDone"_s), 0);
        QCOMPARE(job->stepTaskList(),
                 QList<jobs::StepTask>{job->stepConverterList().first()->converterTask()});
    }

    void aRetryThatHelpsEndsTheJobWell()
    {
        ConversionFixture fixture(QStringList{u"when genpts"_s} + ConversionFixture::wellDone() +
                                  QStringList({u"exit 0"_s, u"end"_s, timestampLine, u"exit 1"_s}));
        const auto job = fixture.make(u"MKV"_s, {videoTrack(u"passthru"_s)});
        QVERIFY(fixture.run(job));
        QCOMPARE(fixture.calls().size(), 2);
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void afterFiveRetriesItGivesUp()
    {
        ConversionFixture fixture({u"err frame=9 time=00:02:00.00 bitrate"_s, timestampLine, u"exit 1"_s});
        const auto job = fixture.make(u"MKV"_s, {videoTrack(u"passthru"_s)});
        QVERIFY(fixture.run(job));
        QCOMPARE(fixture.calls().size(), 6);
        QCOMPARE(fixture.calls().last(), pair + pair + pair + pair + pair + fixture.calls().first());
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY(job->outcome().sentence.contains(u"packets without timestamps"_s));
        QCOMPARE(fixture.record.count(u"jobDone"_s), 1);
    }

    void aRetryOfPassTwoRunsBothPassesAgain()
    {
        ConversionFixture fixture(
            QStringList{u"when genpts"_s} + ConversionFixture::wellDone() +
            QStringList({u"exit 0"_s, u"end"_s, u"err frame=9 time=00:02:00.00 bitrate"_s,
                         u"when /dev/null"_s, u"exit 0"_s, u"end"_s, timestampLine, u"exit 1"_s}));
        const auto job = fixture.make(u"MKV"_s, {videoTrack()}, u"2"_s);
        QVERIFY(fixture.run(job));
        const auto calls = fixture.calls();
        QCOMPARE(calls.size(), 4);
        QCOMPARE(calls.at(2), pair + calls.at(0));
        QCOMPARE(calls.at(3), pair + calls.at(1));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    /// A picture that is copied in two passes meets its missing timestamps in pass 1 already.
    void aRetryOfPassOneGoesOnToPassTwo()
    {
        ConversionFixture fixture(QStringList{u"when genpts"_s} + ConversionFixture::wellDone() +
                                  QStringList({u"exit 0"_s, u"end"_s, timestampLine, u"exit 1"_s}));
        const auto job = fixture.make(u"MKV"_s, {videoTrack(u"passthru"_s)}, u"2"_s);
        QVERIFY(fixture.run(job));
        const auto calls = fixture.calls();
        QCOMPARE(calls.size(), 3);
        QCOMPARE(calls.at(1), pair + calls.at(0));
        QCOMPARE(calls.at(2).mid(0, 2), pair);
        QCOMPARE(calls.at(2).last(), fixture.path(u"a (2).mkv"_s));
        QCOMPARE(job->outcome().verdict, Verdict::Ok);
    }

    void aPassOneThatNeverHelpsIsGivenUp()
    {
        ConversionFixture fixture({timestampLine, u"exit 1"_s});
        const auto job = fixture.make(u"MKV"_s, {videoTrack(u"passthru"_s)}, u"2"_s);
        QVERIFY(fixture.run(job));
        QCOMPARE(fixture.calls().size(), 6);
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QCOMPARE(fixture.record.count(u"jobDone"_s), 1);
    }

    void theLastCompletionEndsItOnce()
    {
        ConversionFixture fixture({u"hang"_s});
        const auto job = fixture.make(u"General"_s, {videoTrack()});
        job->startJob();
        auto *converter = job->stepConverterList().first().get();
        fixture.base.notifications.post(u"taskCompletion"_s, u"Complete"_s, infoOf(converter));
        fixture.base.notifications.post(u"taskCompletion"_s, u"Complete"_s, infoOf(converter));
        QVERIFY(fixture.waitForEnd());
        QVERIFY(!waitFor([&] { return fixture.record.count(u"jobDone"_s) > 1; }, 100));
    }

    void anItemThatIsNotCompleteKeepsItRunning()
    {
        ConversionFixture fixture({u"hang"_s});
        const auto job = fixture.make(u"General"_s, {videoTrack()});
        job->startJob();
        job->setProgressList(job->progressList() << jobs::ProgressItem{u"Another"_s, u"0%"_s});
        fixture.base.notifications.post(u"taskCompletion"_s, u"Complete"_s,
                                        infoOf(job->stepConverterList().first().get()));
        QCOMPARE(job->progressList().first().progress, u"Complete"_s);
        QVERIFY(!waitFor([&] { return fixture.record.count(u"jobDone"_s) > 0; }, 200));
    }

    void announcementsOfOthersDontCount()
    {
        ConversionFixture fixture({u"hang"_s});
        const auto job = fixture.make(u"General"_s, {videoTrack()});
        job->startJob();
        steps::OutputGuard guard(fixture.base.outputs, steps::WhenTaken::NextFreeName);
        KXFfmpegConverter other(fixture.base.converterContext(guard));
        fixture.base.notifications.post(u"monitorConversionUpdate"_s, u"50%"_s, infoOf(&other));
        fixture.base.notifications.post(u"taskCompletion"_s, u"Complete"_s, infoOf(&other));
        fixture.base.notifications.post(u"taskCompletion"_s, u"Complete"_s);
        QCOMPARE(job->progressList(), itemOf(u"0%"_s));
        QVERIFY(!waitFor([&] { return fixture.record.count(u"jobDone"_s) > 0; }, 100));
    }

    void progressTextsAreToldApart()
    {
        ConversionFixture fixture({u"hang"_s});
        const auto job = fixture.make(u"General"_s, {videoTrack()});
        job->startJob();
        const auto info = infoOf(job->stepConverterList().first().get());
        fixture.base.notifications.post(u"monitorConversionUpdate"_s, u"Pass #1 45%"_s, info);
        QCOMPARE(job->progressList(), itemOf(u"Pass #1 45%"_s));
        fixture.base.notifications.post(u"monitorConversionUpdate"_s, u"something else"_s, info);
        QCOMPARE(job->progressList(), itemOf(u"Pass #1 45%"_s));
        fixture.base.notifications.post(u"taskCompletion"_s, u"something else"_s, info);
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
        ConversionFixture fixture({u"hang"_s});
        const auto job = fixture.make(u"General"_s, {videoTrack()});
        job->startJob();
        const auto info = infoOf(job->stepConverterList().first().get());
        fixture.base.notifications.post(u"monitorConversionUpdate"_s, phase, info);
        QCOMPARE(job->progressList(), itemOf(u"0%"_s)); // the first blink comes with the timer
        QVERIFY(waitFor([&] { return job->progressList() == itemOf(phase); }));
        QVERIFY(waitFor([&] { return job->progressList() == itemOf(u""_s); }));
        fixture.base.notifications.post(u"monitorConversionUpdate"_s, u"46%"_s, info);
        QVERIFY(!waitFor([&] { return job->progressList() != itemOf(u"46%"_s); }, 1200));
    }

    void aToolThatCantBeStartedEndsTheJob()
    {
        ConversionFixture fixture;
        QVERIFY(QFile::remove(fixture.base.preferences.toolsLocation().toLocalFile() + u"/ffmpeg/ffmpeg"_s));
        const auto job = fixture.make(u"General"_s, {videoTrack()});
        QVERIFY(fixture.run(job));
        QCOMPARE(job->outcome().verdict, Verdict::Failed);
        QVERIFY(job->outcome().sentence.contains(u"not started"_s));
    }
};

TESSARAY_TEST(KXConvertWithFfmpegJobTest)
#include "KXConvertWithFfmpegJobTest.moc"
