// How a job follows its steps; pausing and stopping are in KXJobStopTest, the end in KXJobEndTest.
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"

#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;
using jobs::ProgressItem;
using jobs::ProgressList;
using support::JobFixture;
using support::NotificationRecord;
using support::TestConverterPointer;

namespace {

/// A job of some steps that all stand at "0%", and a record of what it announces.
struct JobOfSteps
{
    explicit JobOfSteps(const QStringList &labels)
    {
        job->initJobWithSelectionAndPreferences(fixture.selectionFor(u"/v/film.mkv"_s), fixture.preferences);
        ProgressList list;
        for (const QString &label : labels) {
            steps.append(job->addStep(label, fixture.scratch.url(label)));
            steps.last()->judged = steps::Outcome::ok();
            list.append({label, u"0%"_s});
        }
        job->setProgressList(list);
    }

    QString progressOf(qsizetype index) const { return job->progressList().at(index).progress; }
    bool isDone(int milliseconds = 300) const
    {
        return support::waitFor([this] { return record.count(u"jobDone"_s) > 0; }, milliseconds);
    }
    ProgressList lastPosted() const
    {
        return record.named(u"progressUpdate"_s).last().object.value<ProgressList>();
    }

    JobFixture fixture{JobFixture::Tools::Fake};
    support::TestJobPointer job = support::makeTestJob(fixture.jobContext());
    QList<TestConverterPointer> steps;
    NotificationRecord record{fixture.notifications, {u"progressUpdate"_s, u"jobDone"_s}};
};

} // namespace

class KXJobTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freshJob()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        const auto job = support::makeTestJob(fixture.jobContext());
        QVERIFY(!job->jobIsCancelled());
        QVERIFY(job->progressList().isEmpty());
        QVERIFY(job->tempFilesToDeleteList().isEmpty());
        QVERIFY(job->logFilesToDeleteList().isEmpty());
        QCOMPARE(&job->appPreferences(), &fixture.preferences);
        QVERIFY(job->monitorQueue() != nullptr);
        QCOMPARE(job->outcome().verdict, steps::Verdict::Unknown);
        QVERIFY(job->refusal().isNull());
        fixture.notifications.post(u"taskCompletion"_s, u"Complete"_s);
        QCOMPARE(job->heard, 1);
    }

    void fieldsGoByTheirWords()
    {
        for (const char *word :
             {"jobIsCancelled", "flashProgressCounter", "progressStepCounter", "progressStepCounterLabel",
              "oldProgress", "jobFileName", "jobType", "jobStatus", "jobSelection", "progressList",
              "oldProgressList", "stepConverterList", "stepTaskList", "tempFilesToDeleteList",
              "logFilesToDeleteList", "jobCurrentStepName"})
            QVERIFY2(KXJob::staticMetaObject.indexOfProperty(word) >= 0, word);
    }

    void initTakesWhatTheQueueShows()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        const auto job = support::makeTestJob(fixture.jobContext());
        const auto selection = fixture.selectionFor(u"/v/film.mkv"_s, u"MKV Joining"_s);
        job->initJobWithSelectionAndPreferences(selection, fixture.preferences);
        QCOMPARE(job->jobSelection(), selection);
        QCOMPARE(job->jobStatus(), u"Queued"_s);
        QCOMPARE(job->jobType(), u"MKV Joining"_s);
        QCOMPARE(job->jobFileName(), u"film.mkv"_s);
    }

    void initWithoutSelectionDoesNothing()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        const auto job = support::makeTestJob(fixture.jobContext());
        job->initJobWithSelectionAndPreferences(nullptr, fixture.preferences);
        QVERIFY(!job->jobSelection());
        QVERIFY(job->jobStatus().isNull());
    }

    void everyFileOfTheSelectionIsAnInput()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        const auto job = support::makeTestJob(fixture.jobContext());
        const auto path = [&](const QString &name) { return fixture.scratch.write(name, "x"); };
        const auto selection = fixture.selectionFor(path(u"film"_s));
        selection->setEditFilesURLsList({QUrl::fromLocalFile(path(u"edited"_s))});
        selection->setTrackList({JobFixture::track(u"Video"_s, path(u"video"_s))});
        selection->setAddedAudioTrackList({JobFixture::track(u"Audio"_s, path(u"added"_s))});
        selection->setKeepTracksList({JobFixture::track(u"Audio"_s, path(u"unticked"_s))});
        job->setJobSelection(selection);
        for (const auto &name : {u"film"_s, u"edited"_s, u"video"_s, u"added"_s, u"unticked"_s})
            QVERIFY2(job->guard().isInput(fixture.scratch.url(name)), qPrintable(name));
        QVERIFY(!job->guard().isInput(QUrl::fromLocalFile(path(u"other"_s))));
    }

    void percentageReplacesTheItemOfItsStep()
    {
        JobOfSteps steps({u"Extracting Video Track"_s, u"Extracting Audio Track"_s});
        steps.steps.at(1)->post(u"monitorTestUpdate"_s, u"45%"_s);
        const ProgressList expected{{u"Extracting Video Track"_s, u"0%"_s},
                                    {u"Extracting Audio Track"_s, u"45%"_s}};
        QCOMPARE(steps.job->progressList(), expected);
        QCOMPARE(steps.lastPosted(), expected);
        const KXNotification posted = steps.record.all().last();
        QCOMPARE(posted.userInfo.value(u"theJob"_s).value<QObject *>(), steps.job.get());
    }

    void labelOfTheAnnouncementIsShown()
    {
        JobOfSteps steps({u"one"_s});
        steps.steps.first()->setStepName(u"Pass"_s);
        steps.steps.first()->post(u"monitorTestUpdate"_s, u"Pass #1 45%"_s);
        QCOMPARE(steps.job->progressList().first(), (ProgressItem{u"Pass"_s, u"Pass #1 45%"_s}));
    }

    void textWithoutAPercentageIsIgnored()
    {
        JobOfSteps steps({u"one"_s});
        steps.steps.first()->post(u"monitorTestUpdate"_s, u"45"_s);
        QCOMPARE(steps.progressOf(0), u"0%"_s);
        QVERIFY(steps.record.all().isEmpty());
    }

    void announcementsOfOthersAreIgnored()
    {
        JobOfSteps steps({u"one"_s});
        JobOfSteps others({u"two"_s});
        const KXNotification foreign{
            u"taskCompletion"_s,
            u"Complete"_s,
            {{u"theConverter"_s, QVariant::fromValue<QObject *>(others.steps.first().get())}}};
        steps.fixture.notifications.post(foreign.name, foreign.object, foreign.userInfo);
        steps.fixture.notifications.post(u"taskCompletion"_s, u"Complete"_s);
        steps.steps.first()->post(u"monitorSplitUpdate"_s, u"45%"_s);
        QCOMPARE(steps.progressOf(0), u"0%"_s);
        QVERIFY(!steps.isDone());
    }

    void queuedJobDoesNotEndWithAnotherJobsSteps()
    {
        JobOfSteps queued({});
        const auto other = support::makeTestJob(queued.fixture.jobContext());
        const auto converter = other->addStep(u"one"_s, queued.fixture.scratch.url(u"one"_s));
        converter->post(u"taskCompletion"_s, u"Complete"_s);
        QVERIFY(support::waitFor([&] { return other->hasEnded(); }));
        QCOMPARE(queued.job->heard, 1);
        QVERIFY(!support::waitFor([&] { return queued.job->hasEnded(); }, 200));
    }

    void jobIsDoneExactlyOnceWhenEveryStepIsComplete()
    {
        JobOfSteps steps({u"one"_s, u"two"_s});
        steps.steps.at(0)->post(u"taskCompletion"_s, u"Complete"_s);
        steps.steps.at(1)->post(u"taskCompletion"_s, u"Complete"_s);
        steps.steps.at(1)->post(u"taskCompletion"_s, u"Complete"_s);
        QCOMPARE(steps.progressOf(0), u"Complete"_s);
        QCOMPARE(steps.progressOf(1), u"Complete"_s);
        QVERIFY(steps.isDone(support::patience));
        QVERIFY(!support::waitFor([&] { return steps.record.count(u"jobDone"_s) > 1; }, 200));
    }

    void jobWithAStepAtZeroIsNotDone()
    {
        JobOfSteps steps({u"one"_s, u"two"_s});
        steps.steps.at(0)->post(u"taskCompletion"_s, u"Complete"_s);
        QVERIFY(!steps.isDone());
    }

    void otherCompletionsDoNotCompleteAStep()
    {
        JobOfSteps steps({u"one"_s});
        steps.steps.first()->post(u"taskCompletion"_s, u"Pass 1 Complete"_s);
        steps.steps.first()->post(u"taskCompletion"_s, u"timestamp error"_s);
        QCOMPARE(steps.progressOf(0), u"0%"_s);
        QVERIFY(!steps.isDone());
    }

    void stepWithNothingToDoIsPassedOver()
    {
        JobOfSteps steps({u"one"_s});
        steps.job->setStepConverterList({nullptr, steps.steps.first()});
        steps.job->setProgressList({{u"nothing"_s, u"Complete"_s}, {u"one"_s, u"0%"_s}});
        steps.steps.first()->post(u"monitorTestUpdate"_s, u"45%"_s);
        QCOMPARE(steps.progressOf(1), u"45%"_s);
        steps.steps.first()->post(u"taskCompletion"_s, u"Complete"_s);
        QVERIFY(steps.isDone(support::patience));
    }

    void wholeListIsPostedAsItIs()
    {
        JobOfSteps steps({u"one"_s});
        const ProgressList list{{u"MOOV Atom"_s, u"Moving"_s}};
        steps.job->updateProgressWithProgressList(list);
        QCOMPARE(steps.lastPosted(), list);
        QCOMPARE(steps.progressOf(0), u"0%"_s);
    }

    void itemThatIsNotThereIsNotReplaced()
    {
        JobOfSteps steps({u"one"_s});
        for (const qsizetype index : {-1, 1, 99}) {
            steps.job->updateProgressWithProgressItem({index, {u"x"_s, u"9%"_s}});
            steps.job->flashProgress({index, {u"x"_s, u"9%"_s}}, 1);
        }
        QVERIFY(steps.record.all().isEmpty());
        QCOMPARE(steps.progressOf(0), u"0%"_s);
    }

    void flashingShowsTheItemOnOddSecondsOnly_data()
    {
        QTest::addColumn<int>("second");
        QTest::addColumn<QString>("progress");
        QTest::newRow("odd") << 7 << u"moving moov atom"_s;
        QTest::newRow("even") << 8 << u""_s;
        QTest::newRow("odd of two digits") << 59 << u"moving moov atom"_s;
        QTest::newRow("full minute") << 0 << u""_s;
    }

    void flashingShowsTheItemOnOddSecondsOnly()
    {
        QFETCH(int, second);
        QFETCH(QString, progress);
        JobOfSteps steps({u"one"_s, u"two"_s});
        steps.job->flashProgress({1, {u"label"_s, u"moving moov atom"_s}}, second);
        const ProgressList expected{{u"one"_s, u"0%"_s}, {u"label"_s, progress}};
        QCOMPARE(steps.job->progressList(), expected);
        QCOMPARE(steps.lastPosted(), expected);
    }

    void flashingGoesOnUntilTheNextItem()
    {
        JobOfSteps steps({u"one"_s});
        steps.job->flashProgressWithProgressItem({0, {u"one"_s, u"first"_s}});
        steps.job->flashProgressWithProgressItem({0, {u"one"_s, u"second"_s}}); // one is running
        QVERIFY(steps.record.all().isEmpty());                                  // it begins an interval later
        QSet<QString> shown;
        QVERIFY(support::waitFor([&] {
            if (steps.record.count(u"progressUpdate"_s) > 0)
                shown.insert(steps.progressOf(0));
            return shown.size() == 2;
        }));
        QCOMPARE(shown, (QSet<QString>{u"first"_s, u""_s}));
        steps.job->updateProgressWithProgressItem({0, {u"one"_s, u"45%"_s}});
        QVERIFY(!support::waitFor([&] { return steps.progressOf(0) != u"45%"_s; }, 100));
        steps.job->flashProgressWithProgressItem({0, {u"one"_s, u"third"_s}});
        QVERIFY(support::waitFor([&] { return steps.progressOf(0) == u"third"_s; }));
    }

    void jobOfWhichNothingRunsEndsAfterATenthOfASecond()
    {
        JobOfSteps steps({});
        QElapsedTimer clock;
        clock.start();
        steps.job->endIfNothingRuns();
        QVERIFY(steps.record.all().isEmpty());
        QVERIFY(steps.isDone(support::patience));
        QVERIFY(clock.elapsed() >= 95);
    }

    void jobWhoseStepsWereAllRefusedEnds()
    {
        JobOfSteps steps({});
        const auto refused = steps.job->addStep(u"one"_s, steps.fixture.scratch.url(u"out"_s));
        steps.job->stepStarted(refused, nullptr);
        QCOMPARE(steps.progressOf(0), u"Complete"_s);
        steps.job->endIfNothingRuns();
        QVERIFY(steps.isDone(support::patience));
        QCOMPARE(steps.job->outcome().verdict, steps::Verdict::Failed);
    }

    void jobOfWhichSomethingRunsDoesNotEnd()
    {
        JobOfSteps steps({});
        steps.job->runStep(u"one"_s, steps.fixture.scratch.url(u"out"_s),
                           steps.fixture.installTool(u"tool"_s, {u"hang"_s}));
        QCOMPARE(steps.progressOf(0), u"0%"_s);
        steps.job->endIfNothingRuns();
        QVERIFY(!steps.isDone());
    }

    void startedStepIsTakenIntoTheLists()
    {
        JobOfSteps steps({});
        const auto converter = steps.job->addStep(u"one"_s, steps.fixture.scratch.url(u"out"_s));
        converter->setTempFileToDeleteURL(steps.fixture.scratch.url(u"temp.ass"_s));
        const auto task = converter->run(steps.fixture.installTool(u"tool"_s, {u"hang"_s}));
        steps.job->stepStarted(converter, task);
        QCOMPARE(steps.job->stepTaskList(), QList<jobs::StepTask>{task});
        QCOMPARE(steps.job->tempFilesToDeleteList(), QList<QUrl>{steps.fixture.scratch.url(u"temp.ass"_s)});
        QCOMPARE(steps.job->logFilesToDeleteList(), QList<QUrl>{steps.fixture.scratch.url(u"out.log"_s)});
        steps.job->addTask(u"17"_s);
        steps.job->removeTask(task);
        QCOMPARE(steps.job->stepTaskList(), QList<jobs::StepTask>{u"17"_s});
    }

    void unsubscribedJobHearsNothing()
    {
        JobOfSteps steps({u"one"_s});
        steps.job->unsubscribe();
        steps.steps.first()->post(u"taskCompletion"_s, u"Complete"_s);
        QCOMPARE(steps.job->heard, 0);
        QVERIFY(!steps.isDone(100));
    }
};

TESSARAY_TEST(KXJobTest)
#include "KXJobTest.moc"
