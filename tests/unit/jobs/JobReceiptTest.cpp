#include "jobs/JobReceipt.h"

#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"
#include "support/media/Fates.h"

#include <QTest>

using namespace Qt::StringLiterals;
using media::Became;
using media::MeantOutput;
using media::TrackFate;
using steps::Verdict;
using support::told;

namespace {

const QUrl film = QUrl::fromLocalFile(u"/v/film.mkv"_s);

TrackFate fateOf(int index, Became became, const QUrl &output = {})
{
    TrackFate fate;
    fate.source = film;
    fate.index = index;
    fate.kind = u"audio"_s;
    fate.became = became;
    fate.output = output;
    fate.outputIndex = output.isEmpty() ? -1 : 0;
    fate.to = became == Became::Reencoded ? u"aac"_s : QString();
    return fate;
}

/// A step that is meant to copy its one track, and leaves another one out.
MeantOutput meantOf(const QUrl &output, int index, int leftOut)
{
    MeantOutput meant;
    meant.output = output;
    meant.sources = {film};
    meant.tracks = {fateOf(index, Became::Reencoded, output), fateOf(leftOut, Became::LeftOut)};
    return meant;
}

struct Job
{
    Job()
        : job(support::makeTestJob(fixture.jobContext()))
    {
        fixture.setKeepLogs(true);
        fixture.scratch.write(u"film.mkv"_s, "film");
        job->initJobWithSelectionAndPreferences(fixture.selectionFor(fixture.scratch.path(u"film.mkv"_s)),
                                                fixture.preferences);
    }
    support::TestConverterPointer step(const QString &name, int index, int leftOut, int status = 0)
    {
        const QUrl output = fixture.scratch.url(name);
        const QUrl tool = fixture.installTool(u"tool%1"_s.arg(status),
                                              {u"out words"_s, u"write 5 last"_s, u"exit %1"_s.arg(status)});
        const auto converter = job->runStep(name, output, tool);
        converter->meant = {meantOf(output, index, leftOut)};
        return converter;
    }
    bool ends()
    {
        return support::waitFor([this] { return job->hasEnded(); });
    }
    QString logOf(const QString &name) const
    {
        return QString::fromUtf8(fixture.scratch.read(name + u".log"_s));
    }
    QStringList receipt() const { return told(job->receipt().tracks); }

    support::JobFixture fixture{support::JobFixture::Tools::Fake};
    support::TestJobPointer job;
};

} // namespace

class JobReceiptTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itIsMadeOfAllSteps()
    {
        Job job;
        job.step(u"one.aac"_s, 1, 2);
        job.step(u"two.aac"_s, 2, 3);
        QVERIFY(job.ends());
        QCOMPARE(job.receipt(), QStringList({u"film.mkv:1 audio > aac #0"_s, u"film.mkv:2 audio > aac #0"_s,
                                             u"film.mkv:3 audio left: "_s}));
        QCOMPARE(job.job->receipt().tracks.at(1).output, job.fixture.scratch.url(u"two.aac"_s));
    }

    void theLogOfAStepTellsOfItsOwnOutputsAndOfWhatIsInNone()
    {
        Job job;
        job.step(u"one.aac"_s, 1, 2);
        job.step(u"two.aac"_s, 2, 3);
        QVERIFY(job.ends());
        QVERIFY2(job.logOf(u"one.aac"_s)
                     .endsWith(u"\nTracks:\n"
                               "audio 1 of film.mkv: re-encoded to aac into one.aac\n"
                               "audio 3 of film.mkv: left out\n"
                               "Tessaray: ok\n"_s),
                 qPrintable(job.logOf(u"one.aac"_s)));
        QVERIFY(job.logOf(u"two.aac"_s).contains(u"into two.aac\n"_s));
        QVERIFY(!job.logOf(u"two.aac"_s).contains(u"one.aac\n"_s));
    }

    void whatAStepWritesForTheJobAloneIsNoPartOfIt()
    {
        Job job;
        job.step(u"one.aac"_s, 1, 2)->setIsTemporaryOutput(true);
        job.step(u"two.aac"_s, 2, 3);
        QVERIFY(job.ends());
        QCOMPARE(job.receipt(), QStringList({u"film.mkv:2 audio > aac #0"_s, u"film.mkv:3 audio left: "_s}));
        QVERIFY(!job.logOf(u"one.aac"_s).contains(u"Tracks:"_s));
    }

    void aFailedStepHasWrittenNothing()
    {
        Job job;
        job.step(u"one.aac"_s, 1, 2, 1);
        job.step(u"two.aac"_s, 2, 3);
        QVERIFY(job.ends());
        QVERIFY(job.job->outcome().verdict == Verdict::Failed);
        QCOMPARE(job.receipt(), QStringList({u"film.mkv:1 audio left: The output was not written."_s,
                                             u"film.mkv:2 audio > aac #0"_s, u"film.mkv:3 audio left: "_s}));
        QCOMPARE(job.job->receipt().tracks.constFirst().output, QUrl());
    }

    void whatWasMeasuredTakesThePlaceOfWhatWasMeant()
    {
        Job job;
        jobs::JobReceipt receipt;
        const auto step = job.step(u"one.aac"_s, 1, 3);
        receipt.add(*step, Verdict::Ok);
        receipt.add(*job.step(u"two.aac"_s, 2, 3), Verdict::Ok);
        MeantOutput measured = step->meant.constFirst();
        measured.tracks.first().outputSeconds = 8;
        measured.tracks.first().proof = media::Proof::Lengths;
        receipt.replace(measured);
        const auto tracks = receipt.receipt().tracks;
        QCOMPARE(tracks.size(), 3);
        QCOMPARE(tracks.at(0).outputSeconds, std::optional(8.0));
        QVERIFY(tracks.at(0).proof == media::Proof::Lengths);
        QVERIFY(tracks.at(1).proof == media::Proof::NotProven);
    }

    void anOutputMayGetAnotherName()
    {
        Job job;
        const QUrl meant = job.fixture.scratch.url(u"one.aac"_s);
        const QUrl got = job.fixture.scratch.url(u"one (2).aac"_s);
        jobs::JobReceipt receipt;
        const auto step = job.step(u"one.aac"_s, 1, 2);
        receipt.add(*step, Verdict::Ok);
        receipt.rename(meant, got);
        QCOMPARE(receipt.receipt().tracks.constFirst().output, got);
        QCOMPARE(receipt.linesFor(step->logFileURL(), receipt.receipt()).size(), 2);
    }

    void whatGotNoNameIsLeftOut()
    {
        Job job;
        jobs::JobReceipt receipt;
        receipt.add(*job.step(u"one.aac"_s, 1, 3), Verdict::Ok);
        receipt.add(*job.step(u"two.aac"_s, 2, 3), Verdict::Ok);
        receipt.keepOnly({job.fixture.scratch.url(u"two.aac"_s)});
        QCOMPARE(told(receipt.receipt().tracks),
                 QStringList({u"film.mkv:1 audio left: The output was not written."_s,
                              u"film.mkv:2 audio > aac #0"_s, u"film.mkv:3 audio left: "_s}));
    }

    void aStoppedJobHasNone()
    {
        Job job;
        job.step(u"one.aac"_s, 1, 2);
        job.job->stopJob();
        QVERIFY(job.job->receipt().isEmpty());
    }

    void whatASourceHoldsIsToldToo()
    {
        Job job;
        job.step(u"one.aac"_s, 1, 2);
        job.job->takeStreamsOf(film, {{0, u"video"_s, u"h264"_s}, {1, u"audio"_s, u"ac3"_s}});
        QVERIFY(job.ends());
        QCOMPARE(job.receipt(),
                 QStringList({u"film.mkv:0 video h264 left: It was not chosen."_s,
                              u"film.mkv:1 audio ac3 > aac #0"_s, u"film.mkv:2 audio left: "_s}));
    }

    void warningsAndNotesAreToldWithoutBeingAsked()
    {
        for (const auto &[how, verdict] : {std::pair(media::Told::AsAWarning, Verdict::Warnings),
                                           std::pair(media::Told::AsANote, Verdict::Ok)}) {
            Job job;
            const auto converter = job.step(u"one.aac"_s, 1, 2);
            converter->meant.first().tracks.last().told = how;
            converter->meant.first().tracks.last().reason = u"So it is."_s;
            QVERIFY(job.ends());
            QVERIFY(job.job->outcome().verdict == verdict);
            QCOMPARE(job.job->outcome().sentence, u"The audio 2 of film.mkv was left out. So it is."_s);
        }
    }
};

TESSARAY_TEST(JobReceiptTest)
#include "JobReceiptTest.moc"
