#pragma once

#include "jobs/ProgressItem.h"
#include "steps/Outcome.h"

class KXJob;

namespace media {
struct Receipt;
}

namespace summary {

/// How a job stands, as a person is told.
enum class JobState { Queued, Running, Paused, Completed, Warnings, Failed, Interrupted };

JobState jobState(const QString &jobStatus, const steps::Outcome &outcome, bool isPaused);
/// "Queued", "Completed with warnings", ...
QString stateText(JobState state);
bool hasEnded(JobState state);

/// The number of "45%" and of "Pass #1 45%"; 100 of "Complete"; -1 where there is none.
int percentageOf(const QString &progress);
/// How far a whole job is, of what its steps tell: every step counts alike, and in a step of two passes each
/// is half of it. 0 where nothing is told yet.
int percentOf(const jobs::ProgressList &steps);
/// Seconds that are left, as long as it goes on like this; -1 while nothing can be said.
qint64 secondsLeft(qint64 elapsed, int percent);
/// "14:20 elapsed · about 8 min left"
QString runningText(qint64 elapsed, int percent);
/// "4 jobs: 2 done, 1 failed": how a queue stands that holds jobs in these states.
QString queueText(const QList<JobState> &states, qint64 secondsLeft);
/// How far all of them are, in per cent; the running one by its own percentage.
int queuePercent(const QList<JobState> &states, int percentOfRunning);

/// Below the tracks of a finished job: "Nothing of what you chose is missing.", or what is.
QString receiptSentence(const media::Receipt &receipt);

} // namespace summary
