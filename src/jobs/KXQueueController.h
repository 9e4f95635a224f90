#pragma once

#include "jobs/JobFactory.h"
#include "jobs/KXJob.h"

#include <QTimer>

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
    /// "Pause" and "Resume" act while a job runs; any other title does nothing.
    void pauseQueueButton(const QString &title);
    void clearQueueButton();
    void deleteJobRow(int column, int row);
    void quitJobAlertClosedReturnCode(int returnCode);
    /// Stops the running job and takes its row away, without a question.
    void stopCurrentJob();
    /// Takes every row away and stops the running job, when the program ends.
    void removeAllJobs();

    const QList<JobPointer> &qJobList() const { return m_jobList; }
    const jobs::ProgressList &jobProgressList() const { return m_progressList; }
    bool qJobIsRunning() const { return m_jobIsRunning; }
    JobPointer currentJob() const { return m_currentJob; }
    qint64 currentJobRowIndex() const { return m_currentJobRowIndex; }
    QString pauseButtonTitle() const { return m_pauseButtonTitle; }
    bool timerIsRunning() const { return m_timer.isActive(); }

Q_SIGNALS:
    void jobAdded(int row);
    void jobChanged(int row);
    void jobRemoved(int row);
    void jobProgressListChanged();
    void drawerWanted(bool open);
    void pauseButtonTitleChanged();

private:
    int addConversion(const SelectionPointer &selection);
    int addOne(const jobs::JobRequest &request);
    int addOnePerFile(const jobs::JobRequest &request);
    JobPointer append(jobs::JobKind kind);
    void openForJobs();
    void startNextSoon();
    void removeRow(qsizetype row);
    void setPauseButtonTitle(const QString &title);
    void jobEnded(const KXNotification &notification);
    void rememberOutput(const QUrl &output);
    void askToStop();

    jobs::JobContext m_context;
    const jobs::JobFactory &m_factory;
    KXWatchModeController *m_watchMode;
    QList<JobPointer> m_jobList;
    jobs::ProgressList m_progressList;
    JobPointer m_currentJob;
    std::weak_ptr<KXJob> m_jobAskedAbout;
    std::vector<KXNotificationCenter::Subscription> m_subscriptions;
    QTimer m_timer;
    QTimer m_soon; ///< something has happened that may let a job start
    QString m_pauseButtonTitle = QStringLiteral("Pause");
    qint64 m_currentJobRowIndex = 0;
    bool m_jobIsRunning = false;
};
