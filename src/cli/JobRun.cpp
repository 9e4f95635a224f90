#include "cli/JobRun.h"

#include "app/RoomForJobs.h"
#include "cli/LiveLine.h"
#include "cli/Records.h"
#include "cli/Session.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

ExitStatus statusOf(steps::Verdict verdict)
{
    switch (verdict) {
    case steps::Verdict::Warnings:
        return ExitStatus::Warnings;
    case steps::Verdict::Failed:
        return ExitStatus::Failed;
    default:
        return ExitStatus::AllWell;
    }
}

/// The log that is left of the job, that of a failed step first; null when none is.
QJsonValue remainingLog(const KXJob &job)
{
    QJsonValue found;
    for (const QUrl &log : job.logFilesToDeleteList()) {
        const QString path = log.toLocalFile();
        if (!QFileInfo::exists(path))
            continue;
        if (job.outcome().sentence.contains(path))
            return path;
        if (found.isNull())
            found = path;
    }
    return found;
}

QJsonArray pathsOf(const QList<QUrl> &files)
{
    QJsonArray paths;
    for (const QUrl &file : files)
        paths.append(file.toLocalFile());
    return paths;
}

QJsonValue numberOrNull(const std::optional<double> &number)
{
    return number ? QJsonValue(*number) : QJsonValue();
}

/// What progress is in numbers; what is not known is null.
QJsonObject numbersOf(const jobs::Pace &pace, std::optional<double> queueLeft)
{
    return {{u"percent"_s, pace.percent},
            {u"elapsedSeconds"_s, pace.elapsedSeconds},
            {u"leftSeconds"_s, numberOrNull(pace.leftSeconds)},
            {u"queueLeftSeconds"_s, numberOrNull(queueLeft)},
            {u"speed"_s, numberOrNull(pace.speed)},
            {u"fps"_s, numberOrNull(pace.fps)}};
}

} // namespace

JobRun::JobRun(Session &session)
    : m_session(session)
    , m_queue(session.program().queue())
    , m_files(session)
{
    m_subscriptions.push_back(session.program().notifications().subscribe(
        u"progressUpdate"_s, [this](const KXNotification &notification) { progressed(notification); }));
    connect(&m_queue, &KXQueueController::jobChanged, this, &JobRun::changed);
    connect(&m_queue, &KXQueueController::pauseReasonChanged, this, &JobRun::sayPause);
}

JobRun::~JobRun()
{
    m_session.program().outputs().release(this);
}

bool JobRun::add(const jobs::JobRequest &request)
{
    // A job gives its inputs free when it ends; what was named here stays safe from those behind it.
    const KXSelection &selection = *request.selection;
    for (const QUrl &input : QList<QUrl>{selection.videoTrackFileURL()} + selection.editFilesURLsList())
        m_session.program().outputs().add(this, input);
    const qsizetype before = m_queue.qJobList().size();
    m_queue.add(request);
    for (qsizetype row = before; row < m_queue.qJobList().size(); ++row) {
        const JobPointer job = m_queue.qJobList().at(row);
        m_jobs.append(job);
        m_numbers.insert(job.get(), static_cast<int>(m_jobs.size()));
        m_reported.insert(job.get(), u"queued"_s);
        sendEvent(u"queued"_s, *job);
    }
    return m_queue.qJobList().size() > before;
}

ExitStatus JobRun::run()
{
    QEventLoop loop;
    connect(&m_session.interrupts(), &app::Interrupts::interrupted, &loop, [&] {
        stop();
        loop.quit();
    });
    connect(&m_queue, &KXQueueController::jobChanged, &loop, [&] {
        if (everyJobHasEnded())
            loop.quit();
    });
    if (const QString shortage = app::shortageBefore(m_jobs, m_session.program().volumes());
        !shortage.isNull())
        m_session.console().say(shortage);
    if (m_session.isInterrupted())
        stop();
    else if (!everyJobHasEnded())
        loop.exec();
    m_session.console().endProgress();
    return worse(m_worst, m_files.finish());
}

void JobRun::sayPause(const QString &reason)
{
    if (!m_queue.qJobIsRunning())
        return;
    m_session.console().endProgress();
    m_session.console().say(reason.isNull() ? u"The job goes on."_s : u"The job is paused. "_s + reason);
}

bool JobRun::everyJobHasEnded() const
{
    return std::all_of(m_jobs.begin(), m_jobs.end(), [](const JobPointer &job) { return job->hasEnded(); });
}

void JobRun::changed(int row)
{
    const JobPointer job = m_queue.qJobList().value(row);
    if (!job || !m_numbers.contains(job.get()))
        return;
    if (job->jobStatus() == u"Running"_s && !job->hasEnded() && m_reported.value(job.get()) == u"queued"_s) {
        m_reported[job.get()] = u"started"_s;
        sendEvent(u"started"_s, *job);
    }
    if (job->hasEnded() && m_reported.value(job.get()) != u"done"_s)
        finished(*job);
}

void JobRun::progressed(const KXNotification &notification)
{
    const auto *job = qobject_cast<KXJob *>(notification.userInfo.value(u"theJob"_s).value<QObject *>());
    const auto list = notification.object.value<jobs::ProgressList>();
    if (job == nullptr || list.isEmpty() || job->hasEnded())
        return;
    const auto queueLeft = jobs::secondsLeftFor(m_jobs);
    m_session.console().progress(liveLine(*job, list, m_jobs), job->jobFileName());
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (i < m_lastProgress.size() && m_lastProgress.at(i) == list.at(i))
            continue;
        QJsonObject numbers = numbersOf(job->pace(), queueLeft);
        numbers.insert(u"step"_s, list.at(i).step);
        numbers.insert(u"progress"_s, list.at(i).progress);
        sendEvent(u"progress"_s, *job, numbers);
    }
    m_lastProgress = list;
}

void JobRun::finished(const KXJob &job)
{
    m_reported[&job] = u"done"_s;
    m_lastProgress.clear();
    const steps::Outcome outcome = job.outcome();
    m_worst = worse(m_worst, statusOf(outcome.verdict));
    sendEvent(u"done"_s, job,
              {{u"outcome"_s, outcome.word()},
               {u"message"_s, outcome.sentence},
               {u"outputs"_s, pathsOf(job.outputs())},
               {u"tracks"_s, receiptRecord(job.receipt())},
               {u"log"_s, remainingLog(job)}});
    m_session.console().endProgress();
    for (const QUrl &output : job.outputs())
        m_session.console().result(output.toLocalFile());
    m_files.take(job);
    if (outcome.verdict != steps::Verdict::Ok || !outcome.sentence.isEmpty())
        m_session.console().say(u"%1: %2: %3"_s.arg(job.jobFileName(), outcome.word(), outcome.sentence));
}

/// Stops the running job; what is queued behind it does not start.
void JobRun::stop()
{
    const JobPointer running = m_queue.currentJob();
    if (!m_queue.qJobIsRunning() || !running)
        return;
    m_queue.stopCurrentJob();
    if (m_reported.value(running.get()) != u"done"_s)
        finished(*running);
}

void JobRun::sendEvent(const QString &event, const KXJob &job, QJsonObject more)
{
    QJsonObject object{
        {u"event"_s, event},           {u"job"_s, numberOf(job)}, {u"fileName"_s, job.jobFileName()},
        {u"jobType"_s, job.jobType()}, {u"step"_s, QJsonValue()}, {u"progress"_s, QJsonValue()}};
    for (auto item = more.begin(); item != more.end(); ++item)
        object.insert(item.key(), item.value());
    m_session.console().object(object, event == u"progress"_s ? PendingOutput::WhenBehind::Lose
                                                              : PendingOutput::WhenBehind::Keep);
}

} // namespace cli
