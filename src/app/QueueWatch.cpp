#include "app/QueueWatch.h"

#include "jobs/KXQueueController.h"
#include "platform/Desktop.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace app {

QueueWatch::QueueWatch(KXQueueController &queue, platform::Desktop &desktop)
    : m_queue(queue)
    , m_desktop(desktop)
{
    connect(&queue, &KXQueueController::jobAdded, this, &QueueWatch::look);
    connect(&queue, &KXQueueController::jobRemoved, this, &QueueWatch::look);
    connect(&queue, &KXQueueController::pauseButtonTitleChanged, this, &QueueWatch::look);
    connect(&queue, &KXQueueController::jobChanged, this, [this](int row) {
        count(row);
        look();
    });
}

bool QueueWatch::hasQueuedJob() const
{
    const QList<JobPointer> &jobs = m_queue.qJobList();
    return std::any_of(jobs.begin(), jobs.end(),
                       [](const JobPointer &job) { return job->jobStatus() == u"Queued"_s; });
}

void QueueWatch::count(int row)
{
    const JobPointer job = m_queue.qJobList().value(row);
    if (!job || job->jobStatus() != u"Completed"_s || m_lastEnded.lock() == job)
        return;
    m_lastEnded = job;
    ++m_ended[job->outcome().verdict];
}

void QueueWatch::expectMore(bool more)
{
    m_moreComing = more;
    look();
}

/// A paused or held queue may let the machine sleep: nothing of it runs.
void QueueWatch::look()
{
    const bool paused = m_queue.canPauseOrResume() && m_queue.pauseButtonTitle() == u"Resume"_s;
    const bool working = m_queue.qJobIsRunning() || hasQueuedJob() || m_moreComing;
    if (working && !paused)
        m_desktop.keepAwake(tr("Videos are being processed"));
    else
        m_desktop.allowSleep();
    if (working && !m_working) {
        m_ended.clear();
    } else if (m_working && !working && !m_ended.isEmpty()) {
        m_desktop.tell(tr("Tessaray has finished"), summary());
        Q_EMIT queueEnded(summary());
    }
    m_working = working;
}

QString QueueWatch::summary() const
{
    QStringList parts;
    const auto add = [&](steps::Verdict verdict, const QString &words) {
        if (const int count = m_ended.value(verdict); count > 0)
            parts.append(words.arg(count));
    };
    add(steps::Verdict::Ok, tr("%1 done"));
    add(steps::Verdict::Warnings, tr("%1 done with warnings"));
    add(steps::Verdict::Failed, tr("%1 failed"));
    add(steps::Verdict::Stopped, tr("%1 stopped"));
    return parts.join(u", "_s);
}

} // namespace app
