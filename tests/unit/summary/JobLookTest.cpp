// How jobs and their queue stand, in words and per cent.
#include "summary/JobLook.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using summary::JobState;

class JobLookTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void statesAreNamed()
    {
        const auto text = [](const QString &status, const steps::Outcome &outcome, bool paused) {
            return summary::stateText(summary::jobState(status, outcome, paused));
        };
        QCOMPARE(text(u"Queued"_s, {}, false), u"Queued"_s);
        QCOMPARE(text(u"Running"_s, {}, false), u"Running"_s);
        QCOMPARE(text(u"Running"_s, {}, true), u"Paused"_s);
        QCOMPARE(text(u"Completed"_s, steps::Outcome::ok(), false), u"Completed"_s);
        QCOMPARE(text(u"Completed"_s, steps::Outcome::warnings(u"x"_s), false), u"Completed with warnings"_s);
        QCOMPARE(text(u"Completed"_s, steps::Outcome::failed(u"x"_s), false), u"Failed"_s);
        QCOMPARE(text(u"Completed"_s, steps::Outcome::stopped(), false), u"Interrupted"_s);
    }

    void aWholeJobCountsItsPassesAndSteps()
    {
        QCOMPARE(summary::percentOf({}), 0);
        QCOMPARE(summary::percentOf({{u"Video Conversion"_s, u"45%"_s}}), 45);
        QCOMPARE(summary::percentOf({{u"Video Conversion"_s, u"Pass #1 40%"_s}}), 20);
        QCOMPARE(summary::percentOf({{u"Video Conversion"_s, u"Pass 1 Complete"_s}}), 50);
        QCOMPARE(summary::percentOf({{u"Video Conversion"_s, u"Pass #2 26%"_s}}), 63);
        QCOMPARE(summary::percentOf({{u"a"_s, u"Complete"_s}, {u"b"_s, u"Pass #2 26%"_s}}), 81);
        QCOMPARE(summary::percentOf({{u"a"_s, u"Checking"_s}}), 0);
    }

    void timeLeftIsGuessedOnlyFromEnough()
    {
        QCOMPARE(summary::secondsLeft(9, 50), -1);
        QCOMPARE(summary::secondsLeft(60, 1), -1);
        QCOMPARE(summary::secondsLeft(860, 63), 505);
        QCOMPARE(summary::runningText(860, 63), u"14:20 elapsed · about 8 min left"_s);
        QCOMPARE(summary::runningText(5, 63), u"0:05 elapsed"_s);
    }

    void aQueueIsToldInOneLine()
    {
        QCOMPARE(summary::queueText({}, -1), QString());
        QCOMPARE(summary::queueText({JobState::Completed, JobState::Running}, -1), u"Job 2 of 2"_s);
        QCOMPARE(summary::queueText({JobState::Completed, JobState::Running}, 500),
                 u"Job 2 of 2 · about 8 min left"_s);
        // Nobody knows how long the waiting one takes.
        QCOMPARE(summary::queueText({JobState::Running, JobState::Queued}, 500), u"Job 1 of 2"_s);
        QCOMPARE(summary::queueText({JobState::Paused, JobState::Queued}, -1), u"Paused · job 1 of 2"_s);
        QCOMPARE(summary::queueText({JobState::Completed, JobState::Failed}, -1),
                 u"All done: 1 well, 1 failed"_s);
        QCOMPARE(summary::queueText({JobState::Completed, JobState::Warnings}, -1), u"All done"_s);
        QCOMPARE(summary::queuePercent({JobState::Completed, JobState::Running}, 50), 75);
        QCOMPARE(summary::queuePercent({JobState::Completed, JobState::Failed}, 50), 100);
    }
};

TESSARAY_TEST(JobLookTest)
#include "JobLookTest.moc"
