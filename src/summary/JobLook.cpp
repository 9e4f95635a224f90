#include "summary/JobLook.h"

#include "media/Receipt.h"
#include "summary/Figures.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace summary {

namespace {

constexpr int whole = 100;
constexpr int passes = 2;
// Before that a guess would be worth nothing.
constexpr qint64 fewestSeconds = 10;
constexpr int fewestPercent = 2;

/// Of one step, passes and all.
int percentOfStep(const QString &progress)
{
    if (progress == u"Pass 1 Complete"_s)
        return whole / passes;
    const int percentage = percentageOf(progress);
    if (percentage < 0)
        return 0;
    if (progress.startsWith(u"Pass #"_s)) {
        const int pass = progress.at(6).digitValue();
        return (pass - 1) * whole / passes + percentage / passes;
    }
    return percentage;
}

qsizetype countOf(const QList<JobState> &states, JobState state)
{
    return std::count(states.begin(), states.end(), state);
}

QString endedText(const QList<JobState> &states)
{
    const qsizetype failed = countOf(states, JobState::Failed) + countOf(states, JobState::Interrupted);
    const qsizetype well = states.size() - failed;
    if (failed == 0)
        return u"All done"_s;
    return u"All done: %1 well, %2 failed"_s.arg(well).arg(failed);
}

} // namespace

JobState jobState(const QString &jobStatus, const steps::Outcome &outcome, bool isPaused)
{
    if (jobStatus == u"Queued"_s)
        return JobState::Queued;
    if (jobStatus == u"Running"_s)
        return isPaused ? JobState::Paused : JobState::Running;
    switch (outcome.verdict) {
    case steps::Verdict::Warnings:
        return JobState::Warnings;
    case steps::Verdict::Failed:
        return JobState::Failed;
    case steps::Verdict::Stopped:
    case steps::Verdict::Interrupted:
        return JobState::Interrupted;
    default:
        return JobState::Completed;
    }
}

QString stateText(JobState state)
{
    static const QStringList texts{
        u"Queued"_s, u"Running"_s,    u"Paused"_s, u"Completed"_s, u"Completed with warnings"_s,
        u"Failed"_s, u"Interrupted"_s};
    return texts.at(static_cast<int>(state));
}

bool hasEnded(JobState state)
{
    return state != JobState::Queued && state != JobState::Running && state != JobState::Paused;
}

int percentageOf(const QString &progress)
{
    if (progress == u"Complete"_s)
        return whole;
    static const QRegularExpression number(u"(\\d{1,3})%$"_s); // "Pass #1 45%" too
    const QRegularExpressionMatch match = number.match(progress);
    return match.hasMatch() ? std::min(match.captured(1).toInt(), whole) : -1;
}

int percentOf(const jobs::ProgressList &steps)
{
    if (steps.isEmpty())
        return 0;
    int sum = 0;
    for (const jobs::ProgressItem &item : steps)
        sum += percentOfStep(item.progress);
    return sum / static_cast<int>(steps.size());
}

qint64 secondsLeft(qint64 elapsed, int percent)
{
    if (elapsed < fewestSeconds || percent < fewestPercent)
        return -1;
    return elapsed * (whole - percent) / percent;
}

QString runningText(qint64 elapsed, int percent)
{
    const QString text = elapsedText(elapsed) + u" elapsed"_s;
    const qint64 left = secondsLeft(elapsed, percent);
    return left < 0 ? text : text + u" · "_s + leftText(left);
}

QString queueText(const QList<JobState> &states, qint64 secondsLeft)
{
    if (states.isEmpty())
        return {};
    const auto ended = std::count_if(states.begin(), states.end(), hasEnded);
    if (ended == states.size())
        return endedText(states);
    const auto isActive = [](JobState state) {
        return state == JobState::Running || state == JobState::Paused;
    };
    const auto active = std::find_if(states.begin(), states.end(), isActive);
    if (active == states.end())
        return states.size() == 1 ? u"1 job waits"_s : u"%1 jobs wait"_s.arg(states.size() - ended);
    const QString place = u"ob %1 of %2"_s.arg(active - states.begin() + 1).arg(states.size());
    if (*active == JobState::Paused)
        return u"Paused · j"_s + place;
    const bool isLast = ended + 1 == states.size();
    return u'J' + place + (isLast && secondsLeft >= 0 ? u" · "_s + leftText(secondsLeft) : QString());
}

int queuePercent(const QList<JobState> &states, int percentOfRunning)
{
    if (states.isEmpty())
        return 0;
    const auto ended = static_cast<int>(std::count_if(states.begin(), states.end(), hasEnded));
    const int running = ended < states.size() ? percentOfRunning : 0;
    return (ended * whole + running) / static_cast<int>(states.size());
}

QString receiptSentence(const media::Receipt &receipt)
{
    static const QStringList wanted{u"It was not chosen."_s, u"It was removed."_s};
    static const QStringList kinds{u"video"_s, u"audio"_s, u"subtitle"_s};
    QStringList missing;
    for (const media::TrackFate &fate : receipt.tracks) {
        if (fate.became == media::Became::LeftOut && kinds.contains(fate.kind) &&
            !wanted.contains(fate.reason))
            missing.append(u"%1 %2 (%3)"_s.arg(fate.kind).arg(fate.index).arg(fate.codec));
    }
    return missing.isEmpty() ? u"Nothing of what you chose is missing."_s
                             : u"Of what you chose is missing: %1."_s.arg(missing.join(u", "_s));
}

} // namespace summary
