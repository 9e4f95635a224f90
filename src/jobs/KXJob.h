#pragma once

#include "jobs/JobContext.h"
#include "jobs/JobReceipt.h"
#include "jobs/JobResults.h"
#include "jobs/Pace.h"
#include "jobs/ProgressItem.h"
#include "platform/Fields.h"
#include "steps/DurationLooks.h"
#include "steps/KXConverter.h"

#include <QPointer>
#include <QSemaphore>
#include <QSet>
#include <QThreadPool>
#include <QTimer>

#include <atomic>
#include <functional>
#include <optional>
#include <variant>

namespace jobs {

/// A running tool of a job: a process object, or the id of a tool in the shell's background.
using StepTask = std::variant<tools::ToolProcessPointer, QString>;

} // namespace jobs

/// The base of every unit of work in the queue. It splits its work into steps, runs one converter per
/// step, keeps their progress, and at the end cleans up and says how it went. Owned by the queue (and
/// held by its own monitor loop while that runs); it ends exactly once. It knows no window.
class KXJob : public KXHelpers, public std::enable_shared_from_this<KXJob>
{
    Q_OBJECT
    KX_FIELD(int, flashProgressCounter, setFlashProgressCounter, 0)
    KX_FIELD(int, progressStepCounter, setProgressStepCounter, 0)
    KX_FIELD(int, progressStepCounterLabel, setProgressStepCounterLabel, 0)
    KX_FIELD(int, oldProgress, setOldProgress, 0)
    KX_FIELD(QString, jobFileName, setJobFileName, QString())
    KX_FIELD(QString, jobType, setJobType, QString())
    /// "Queued", "Running" or "Completed"; how it went is outcome().
    KX_FIELD(QString, jobStatus, setJobStatus, QString())
    KX_FIELD(jobs::ProgressList, progressList, setProgressList, {})
    KX_FIELD(jobs::ProgressList, oldProgressList, setOldProgressList, {})
    /// One converter per step; a step with nothing to do holds null.
    KX_FIELD(QList<ConverterPointer>, stepConverterList, setStepConverterList, {})
    KX_FIELD(QList<jobs::StepTask>, stepTaskList, setStepTaskList, {})
    KX_FIELD(QList<QUrl>, tempFilesToDeleteList, setTempFilesToDeleteList, {})
    KX_FIELD(QList<QUrl>, logFilesToDeleteList, setLogFilesToDeleteList, {})
    KX_FIELD(QString, jobCurrentStepName, setJobCurrentStepName, QString())
    Q_PROPERTY(bool jobIsCancelled READ jobIsCancelled)
    Q_PROPERTY(SelectionPointer jobSelection READ jobSelection WRITE setJobSelection)

public:
    explicit KXJob(const jobs::JobContext &context);
    ~KXJob() override;

    SelectionPointer jobSelection() const { return m_jobSelection; }
    /// Also tells the guard which files are inputs from now on.
    void setJobSelection(const SelectionPointer &selection);
    KXPreferences &appPreferences() const { return m_context.preferences; }
    bool jobIsCancelled() const { return *m_cancelled; }
    QThreadPool *monitorQueue() { return &m_monitorQueue; }

    void initJobWithSelectionAndPreferences(const SelectionPointer &selection,
                                            const KXPreferences &preferences);
    virtual void startJob();
    /// What the job would run, in order. It takes its names and nothing else happens: nothing is started,
    /// written or announced. For a job that is not started; why it would not start is startProblem().
    QList<steps::Launch> plan();
    virtual void monitorNotifications(const KXNotification &notification);
    void updateProgressWithProgressList(const jobs::ProgressList &list);
    void updateProgressWithProgressItem(const jobs::ProgressUpdate &update);
    void flashProgressWithProgressItem(const jobs::ProgressUpdate &update);
    /// One blink; the second of the clock decides whether the text shows.
    void flashProgress(const jobs::ProgressUpdate &update, int second);
    void jobDone();
    void pauseJob();
    void resumeJob();
    void stopJob();
    /// Ends all observing, as when a row is removed.
    void unsubscribe();
    bool hasEnded() const { return m_ended; }
    /// For a job that an earlier run of the program made: it is completed and never runs.
    void endedBefore(const steps::Outcome &outcome, const QList<QUrl> &outputs);
    /// In the place of startJob(): it ends as failed, for that reason.
    void refuse(const QString &reason);

    /// How the job went; Unknown until it has ended.
    steps::Outcome outcome() const { return m_outcome; }
    /// What became of every track of its sources, once it has ended; empty when it was stopped.
    media::Receipt receipt() const { return m_receipt.receipt(); }
    /// What a source holds, beside what was chosen of it. Until it is known the receipt tells of chosen
    /// tracks and of those that could have been.
    void takeStreamsOf(const QUrl &source, const media::SourceStreams &streams)
    {
        m_receipt.takeStreams(source, streams);
    }
    /// Where its results go.
    QUrl resultFolder() const;
    /// How large its results are likely to be, known before it starts; absent where that is not known.
    void setExpectedBytes(std::optional<qint64> bytes) { m_expectedBytes = bytes; }
    /// How much it is likely to write from now on. Absent where nothing is known of that.
    std::optional<qint64> bytesToCome() const;
    /// How far it is and how fast, while it runs.
    jobs::Pace pace() const;
    /// Finished files the user wanted, in step order.
    QList<QUrl> outputs() const;
    /// What is wrong with the job before anything runs; a null text when it may start.
    virtual QString refusal() const { return {}; }
    /// Why nothing, or not everything, of the job could be started; a null text when all of it was.
    QString startProblem() const;

Q_SIGNALS:
    void outcomeChanged();
    /// Its files are about to get their names, which they do after this.
    void publishing(const QList<steps::Publication> &publications);

protected:
    const jobs::JobContext &context() const { return m_context; }
    steps::OutputGuard &guard() { return m_guard; }
    jobs::JobReceipt &receiptInTheMaking() { return m_receipt; }
    /// The converters of the first steps, with their names; those of which nothing may be started know why.
    virtual QList<ConverterPointer> preparedSteps() { return {}; }
    /// The work of plan(), for jobs that have more than their first steps.
    virtual QList<steps::Launch> planned() { return planOf(preparedSteps()); }
    /// Every finished file has its name; what comes after the last step, and may still add to the outcome.
    virtual void published() {}
    QList<steps::Launch> planOf(const QList<ConverterPointer> &prepared);
    void observe(const QString &name);
    steps::ConverterContext converterContext();
    const QString &temporaryFolder();
    const tools::StopFlag &cancelFlag() const { return m_cancelled; }
    /// Takes a converter whose step was just started (or refused) into the lists.
    void stepStarted(const ConverterPointer &converter, const tools::ToolProcessPointer &task);
    void addTask(const jobs::StepTask &task);
    void removeTask(const jobs::StepTask &task);
    /// The position of the notification's converter; -1 when it is not ours.
    qsizetype stepOf(const KXNotification &notification) const;
    /// The rule for a monitor notification with a percentage, and for "Complete".
    void followNotification(const KXNotification &notification, const QString &monitorName);
    void completeStep(qsizetype index, const QString &label);
    bool everyStepIsComplete() const;
    /// Asks for jobDone() from the event loop; however often that is asked, a job ends once.
    void requestJobDone(int afterMilliseconds = 0);
    /// A job of which nothing runs would never end: it ends after 0.1 s.
    void endIfNothingRuns();
    void addOutcome(const steps::Outcome &outcome);
    /// Takes its logs and intermediate files into the lists of what goes at the end.
    void noteFilesOf(const KXConverter &converter);
    /// The outcome of a step that has ended; the log of a failed one is kept and named.
    steps::Outcome outcomeOfStep(KXConverter &converter);
    /// What that step wrote for the job alone is published all the same, if it is whole.
    void keepOutputOf(const KXConverter &converter);
    void postProgress(const jobs::ProgressList &list);
    /// The start of a job of one step that has its names: it joins the lists, and is started there.
    void startSingleStep(const ConverterPointer &converter);
    /// Starts steps that have their names, as many at once as the job may run tools and the next one when one
    /// has ended. All are shown from the beginning.
    void startInTurn(const QList<ConverterPointer> &converters);
    int toolsAtOnce() const { return qMax(m_context.toolsAtOnce, 1); }
    bool isPaused() const { return m_isPaused; }

    /// Takes a background run that was just started (or refused) into the lists.
    void backgroundStepStarted(const ConverterPointer &converter, const QString &pid);
    /// Its process id is among the tools until it ends; then the loop looks at once.
    void followBackground(KXConverter &converter);
    /// Begins to follow the steps a moment after their start, or as soon as one of them has ended.
    void followSoon(const std::function<void()> &monitor);

    // Following runs by polling; the loop runs on the monitor queue and holds the job alive.
    /// One cycle: the items that are shown from now on, made from those of the cycle before; answers
    /// whether every step has finished.
    using Cycle = std::function<bool(const jobs::ProgressList &previous, jobs::ProgressList &current)>;
    /// Runs cycles until one has finished or the job is cancelled; after that, unless cancelled,
    /// finished is called on the main thread.
    void poll(const jobs::ProgressList &first, const Cycle &cycle, const std::function<void()> &finished);
    /// Runs work on the main thread, from whichever thread. Blocking waits for it, but never for a stop.
    void runOnMain(const std::function<void()> &work, Qt::ConnectionType how);
    /// "0%" for every converter that is there.
    jobs::ProgressList firstProgress() const;

    /// Lets the loop look now instead of at its pace. From any thread.
    void pollSoon() { m_news.release(); }

private:
    void toolEnded();
    void waitForKilledTools();
    void startWaitingSteps();
    void startWaitingStepsOnceDurationsAreKnown();
    void startWaitingStep(qsizetype index);
    void settleOutcome();
    void keepFiles();
    void showSlowEnd();
    void finish();
    void takeResults();
    void addWordsOfReceipt();
    void stopTask(const jobs::StepTask &task);
    void stopFlashing();
    void checkFreeSpace();
    void releaseEverything();

    jobs::JobContext m_context;
    steps::OutputGuard m_guard;
    SelectionPointer m_jobSelection;
    QThreadPool m_monitorQueue;
    QSemaphore m_news; ///< something has happened that the loop should see
    steps::DurationLooks m_durations;
    /// Set when the job is stopped; handed to whatever waits inside it.
    tools::StopFlag m_cancelled = std::make_shared<std::atomic_bool>(false);
    std::vector<KXNotificationCenter::Subscription> m_subscriptions;
    QTimer m_firstPoll;
    std::function<void()> m_monitor; ///< what m_firstPoll begins
    QList<QPointer<KXConverter>> m_inBackground;
    QTimer m_flashProgressTimer;
    std::optional<jobs::ProgressUpdate> m_flashing;
    steps::Outcome m_outcome;
    jobs::JobReceipt m_receipt;
    QList<QUrl> m_logsToKeep;
    QList<QUrl> m_neverKept; ///< of the intermediate files
    QString m_temporaryFolder;
    QList<qsizetype> m_waitingSteps;
    QSet<qsizetype> m_runningSteps; ///< of those that are started in turn
    std::atomic_bool m_isPaused = false;
    jobs::JobResults m_results;
    jobs::PaceKeeper m_pace;
    QTimer m_slowEnd;   ///< runs while finished files are checked and published
    QString m_shownEnd; ///< what was shown of that
    std::optional<qint64> m_expectedBytes;
    bool m_isEnding = false; ///< every step has ended
    bool m_ended = false;
    QList<QUrl> m_earlierOutputs; ///< of one that ended before the program was started
};

using JobPointer = std::shared_ptr<KXJob>;
