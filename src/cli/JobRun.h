#pragma once

#include "cli/FinishedFiles.h"
#include "jobs/KXQueueController.h"

#include <QHash>
#include <QJsonObject>
#include <QObject>

namespace cli {

class Session;

/// Runs what is in the queue to its end, tells how far it is and how each job went. Lives for one run.
class JobRun final : public QObject
{
    Q_OBJECT

public:
    explicit JobRun(Session &session);
    ~JobRun() override;

    /// Puts a request into the queue; false when no job class takes it.
    bool add(const jobs::JobRequest &request);
    /// Returns when every job has ended or the program was interrupted; the worst outcome counts.
    ExitStatus run();

private:
    void progressed(const KXNotification &notification);
    void changed(int row);
    void sayPause(const QString &reason);
    void finished(const KXJob &job);
    void stop();
    void sendEvent(const QString &event, const KXJob &job, QJsonObject more = {});
    int numberOf(const KXJob &job) const { return m_numbers.value(&job); }
    bool everyJobHasEnded() const;

    Session &m_session;
    KXQueueController &m_queue;
    std::vector<KXNotificationCenter::Subscription> m_subscriptions;
    FinishedFiles m_files;
    QHash<const KXJob *, int> m_numbers;
    QList<JobPointer> m_jobs;
    QHash<const KXJob *, QString> m_reported; ///< what was told last: "queued", "started", "done"
    jobs::ProgressList m_lastProgress;
    ExitStatus m_worst = ExitStatus::AllWell;
};

} // namespace cli
