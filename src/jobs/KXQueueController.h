#pragma once

#include "jobs/JobFactory.h"
#include "jobs/KXJob.h"
#include "jobs/QueuedJob.h"

#include <QHash>
#include <QSet>
#include <QTimer>

#include <optional>

class KXWatchModeController;

/// Holds the list of jobs, runs them one at a time in list order, and carries out what the user does
/// to them. Owned by the program; it owns its jobs until the user clears them. It knows no widget: a
/// view follows its signals.
class KXQueueController final : public KXHelpers
{
    Q_OBJECT
    Q_PROPERTY(bool qJobIsRunning READ qJobIsRunning)
    Q_PROPERTY(qint64 currentJobRowIndex READ currentJobRowIndex)
    Q_PROPERTY(QString pauseButtonTitle READ pauseButtonTitle NOTIFY pauseButtonTitleChanged)

public:
    /// watchMode may be null: then watch mode is never on. Factory and watch mode must outlive the queue.
    KXQueueController(const jobs::JobContext &context, const jobs::JobFactory &factory,
                      KXWatchModeController *watchMode);
    ~KXQueueController() override;

    void initialize();
    /// Turns a selection into its jobs. Answers how many were added: 0 for a job type without a class.
    int addToQueue(const SelectionPointer &selection);
    /// Adds the jobs of a request; answers how many.
    int add(const jobs::JobRequest &request);
    void theQueueLoop();
    void manageQueue();
    /// Starts the current job from elsewhere; the scheduler does it itself.
    void startJobThread();
    void notificationHub(const KXNotification &notification);
    /// "Pause" and "Resume" act while a job runs, and "Resume" lets a held queue go on; any other title does
    /// nothing.
    void pauseQueueButton(const QString &title);
    /// Pauses the running job for a reason that is no person's: a sentence that stands as long as the job is
    /// paused for it. Another one takes its place; nothing happens where a person has paused the job.
    void pauseFor(const QString &reason);
    /// Null where nothing but a person has paused the job.
    QString pauseReason() const { return m_pauseReason; }
    /// Whether that button does anything now.
    bool canPauseOrResume() const { return m_jobIsRunning || m_isHeld; }
    void clearQueueButton();
    /// Puts the rows that were cleared last where they stood. Once.
    void bringBackCleared();
    bool canBringBackCleared() const { return !m_cleared.isEmpty(); }
    void deleteJobRow(int column, int row);
    void quitJobAlertClosedReturnCode(int returnCode);
    /// Stops the running job and takes its row away, without a question.
    void stopCurrentJob();
    /// Takes every row away and stops the running job, when the program ends.
    void removeAllJobs();

    /// From now on what was chosen for each added job is remembered, so that it can run again. It takes
    /// memory.
    void rememberChoices() { m_remembersChoices = true; }

    // Rows. They are counted as they stand in qJobList(); one that is not there can do nothing.
    /// Whether that job waits, so that it may stand elsewhere.
    bool canMoveJob(int row) const;
    /// Gives a waiting job the row "to", counted without it. False where it can't be moved.
    bool moveJob(int row, int to);
    /// Why an ended job can't run again: a null text when it can. Looks at its sources on the disk.
    QString runAgainRefusal(int row) const;
    /// Makes an ended job wait anew, behind all others, with what was chosen for it. Answers its new row; -1
    /// where it can't run again.
    int runJobAgain(int row);
    /// Once the running job has ended the queue is held. Forgotten when no job runs.
    bool stopsAfterThisJob() const { return m_stopsAfterThisJob; }
    void setStopsAfterThisJob(bool stops);

    // A held queue starts nothing until pauseQueueButton("Resume"): the button reads so meanwhile. Jobs that
    // are added join its end. It is held only as long as jobs wait.
    bool isHeld() const { return m_isHeld; }
    void hold();
    /// Jobs of an earlier run of the program, in their order, in front of what is there. Nothing of them
    /// starts: where any of them waits the queue is held.
    void restore(const QList<jobs::QueuedJob> &stored);
    /// What was chosen for a job, as it was when it was added; nothing where it is not in the list.
    std::optional<jobs::QueuedJob> queuedJob(const KXJob &job) const;

    const QList<JobPointer> &qJobList() const { return m_jobList; }
    const jobs::ProgressList &jobProgressList() const { return m_progressList; }
    bool qJobIsRunning() const { return m_jobIsRunning; }
    /// Whether a job runs, or one that waits is about to start.
    bool isAtWork() const { return m_jobIsRunning || (!m_isHeld && hasWaitingJob()); }
    JobPointer currentJob() const { return m_currentJob; }
    qint64 currentJobRowIndex() const { return m_currentJobRowIndex; }
    QString pauseButtonTitle() const { return m_pauseButtonTitle; }
    bool timerIsRunning() const { return m_timer.isActive(); }

Q_SIGNALS:
    void jobAdded(int row);
    void jobChanged(int row);
    void jobRemoved(int row);
    /// A person has taken that job out of the list, waiting or running. Before jobRemoved().
    void jobDeleted(const KXJob &job);
    /// A row stands elsewhere now.
    void jobMoved(int from, int to);
    void heldChanged();
    void stopsAfterThisJobChanged();
    /// An ended job goes, and that one takes its place at the end of the list: both follow as jobRemoved()
    /// and jobAdded().
    void jobRunsAgain(const KXJob &ended, const KXJob &job);
    /// A step of the running job has begun to write what is to bear that name.
    void jobClaimed(const QUrl &output);
    /// The running job is about to give its files their names, which they get after this.
    void jobPublishing(const QList<steps::Publication> &publications);
    void jobProgressListChanged();
    void drawerWanted(bool open);
    void pauseButtonTitleChanged();
    /// The running job is paused for that reason now, or goes on: a null text.
    void pauseReasonChanged(const QString &reason);

private:
    int addConversion(const SelectionPointer &selection);
    int addOne(const jobs::JobRequest &request);
    int addOnePerFile(const jobs::JobRequest &request);
    JobPointer make(jobs::JobKind kind);
    JobPointer append(jobs::JobKind kind);
    /// The job has all that it was given: it is shown.
    void announceAdded(const JobPointer &job, jobs::JobKind kind);
    JobPointer remade(const jobs::QueuedJob &queued);
    QString changeOf(const KXJob &job) const;
    bool hasWaitingJob() const;
    void setHeld(bool held);
    void forgetStop();
    void openForJobs();
    void startNextSoon();
    void deleteRow(qsizetype row);
    void removeRow(qsizetype row);
    void setPauseButtonTitle(const QString &title);
    void setPauseReason(const QString &reason);
    void jobEnded(const KXNotification &notification);
    void rememberOutput(const QUrl &output);
    void askToStop();

    jobs::JobContext m_context;
    const jobs::JobFactory &m_factory;
    KXWatchModeController *m_watchMode;
    QList<JobPointer> m_jobList;
    QHash<const KXJob *, jobs::QueuedJob> m_queued; ///< as they were added
    QSet<const KXJob *> m_restored;                 ///< those of an earlier run that were not started yet
    jobs::ProgressList m_progressList;
    struct ClearedRow
    {
        qsizetype row = 0;
        JobPointer job;
        std::optional<jobs::QueuedJob> queued;
    };
    QList<ClearedRow> m_cleared; ///< the lowest row first
    JobPointer m_currentJob;
    std::weak_ptr<KXJob> m_jobAskedAbout;
    std::vector<KXNotificationCenter::Subscription> m_subscriptions;
    QTimer m_timer;
    QTimer m_soon; ///< something has happened that may let a job start
    QString m_pauseButtonTitle = QStringLiteral("Pause");
    QString m_pauseReason;
    qint64 m_currentJobRowIndex = 0;
    bool m_jobIsRunning = false;
    bool m_remembersChoices = false;
    bool m_isHeld = false;
    bool m_stopsAfterThisJob = false;
};
