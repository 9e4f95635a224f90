#include "jobs/KXQueueController.h"

#include "jobs/MuxingTracks.h"
#include "media/KXVideoTrack.h"
#include "prefs/KXPreferences.h"
#include "prefs/KXWatchModeController.h"

#include <QFileInfo>
#include <QPointer>

#include <algorithm>

using namespace Qt::StringLiterals;
using jobs::JobKind;

namespace {

/// A raw H.264 stream whose video passes through can only be muxed.
JobKind conversionKindFor(const KXSelection &selection)
{
    const TrackList tracks = selection.trackList();
    const auto video = std::find_if(tracks.begin(), tracks.end(), [](const TrackPointer &track) {
        return track->trackType() == u"Video"_s;
    });
    const bool passes = video != tracks.end() && (*video)->userCodec() == u"passthru"_s;
    const bool isRaw = selection.videoTrackFileExtension().toLower() == u"h264"_s;
    return isRaw && passes ? JobKind::Muxing : JobKind::Conversion;
}

constexpr int deleteColumn = 0;

bool isWaiting(const JobPointer &job)
{
    return job->jobStatus() == u"Queued"_s;
}

} // namespace

KXQueueController::KXQueueController(const jobs::JobContext &context, const jobs::JobFactory &factory,
                                     KXWatchModeController *watchMode)
    : KXHelpers(&context.preferences, &context.alerts)
    , m_context(context)
    , m_factory(factory)
    , m_watchMode(watchMode)
{
    connect(&m_timer, &QTimer::timeout, this, &KXQueueController::theQueueLoop);
    m_soon.setSingleShot(true);
    connect(&m_soon, &QTimer::timeout, this, &KXQueueController::manageQueue);
}

KXQueueController::~KXQueueController()
{
    if (m_jobIsRunning && m_currentJob)
        m_currentJob->stopJob();
}

void KXQueueController::initialize()
{
    m_jobList.clear();
    m_progressList.clear();
    m_jobIsRunning = false;
    m_subscriptions.clear();
    for (const QString &name : {u"progressUpdate"_s, u"jobDone"_s, u"conversionStarted"_s}) {
        m_subscriptions.push_back(m_context.notifications.subscribe(
            name, [this](const KXNotification &notification) { notificationHub(notification); }));
    }
}

void KXQueueController::openForJobs()
{
    if (!m_jobList.isEmpty())
        return;
    Q_EMIT drawerWanted(true);
    m_timer.start(m_context.intervals.tick);
}

/// From the event loop: the code that adds a job, or is told that one has ended, returns first.
void KXQueueController::startNextSoon()
{
    m_soon.start(0);
}

int KXQueueController::addToQueue(const SelectionPointer &selection)
{
    if (const auto kind = jobs::kindOfJobType(selection->jobType()))
        return add({*kind, selection});
    openForJobs(); // also for a word that stands for no job
    return 0;
}

int KXQueueController::add(const jobs::JobRequest &request)
{
    openForJobs();
    switch (request.kind) {
    case JobKind::Conversion:
        return addConversion(request.selection);
    case JobKind::Splitting:
    case JobKind::Remux:
        return addOnePerFile(request);
    default:
        return addOne(request);
    }
}

JobPointer KXQueueController::make(JobKind kind)
{
    const JobPointer job = m_factory.make(kind, m_context);
    if (!job)
        return nullptr;
    connect(job.get(), &KXJob::outcomeChanged, this, [this, job = job.get()] {
        const auto isIt = [job](const JobPointer &other) { return other.get() == job; };
        const auto found = std::find_if(m_jobList.cbegin(), m_jobList.cend(), isIt);
        if (found != m_jobList.cend())
            Q_EMIT jobChanged(static_cast<int>(found - m_jobList.cbegin()));
    });
    connect(job.get(), &KXJob::publishing, this, &KXQueueController::jobPublishing);
    return job;
}

JobPointer KXQueueController::append(JobKind kind)
{
    const JobPointer job = make(kind);
    if (!job)
        return nullptr;
    m_jobList.append(job);
    startNextSoon();
    return job;
}

void KXQueueController::announceAdded(const JobPointer &job, JobKind kind)
{
    if (m_remembersChoices) {
        const SelectionPointer chosen = jobs::independentCopy(*job->jobSelection());
        m_queued.insert(job.get(),
                        {kind, job->jobFileName(), chosen, jobs::statesOf(jobs::sourcesOf(*chosen)), {}, {}});
    }
    Q_EMIT jobAdded(static_cast<int>(m_jobList.size()) - 1);
}

int KXQueueController::addConversion(const SelectionPointer &selection)
{
    const JobKind kind = conversionKindFor(*selection);
    const JobPointer job = append(kind);
    if (!job)
        return 0;
    const SelectionPointer own = jobs::independentCopy(*selection);
    own->setTrackList(own->trackList() + own->addedAudioTrackList());
    if (kind == JobKind::Muxing)
        own->setTrackList(jobs::tracksForMuxing(own->trackList()));
    job->setJobType(selection->jobType());
    job->setJobStatus(u"Queued"_s);
    job->setJobFileName(selection->videoTrackFileName());
    job->setJobSelection(own);
    job->setExpectedBytes(jobs::expectedBytes(kind, *selection));
    announceAdded(job, kind);
    return 1;
}

int KXQueueController::addOne(const jobs::JobRequest &request)
{
    const JobPointer job = append(request.kind);
    if (!job)
        return 0;
    job->initJobWithSelectionAndPreferences(jobs::independentCopy(*request.selection), m_context.preferences);
    job->setExpectedBytes(jobs::expectedBytes(request.kind, *request.selection));
    announceAdded(job, request.kind);
    return 1;
}

int KXQueueController::addOnePerFile(const jobs::JobRequest &request)
{
    int added = 0;
    for (const QUrl &file : request.selection->editFilesURLsList()) {
        const JobPointer job = append(request.kind);
        if (!job)
            return added;
        const SelectionPointer own = jobs::independentCopy(*request.selection);
        job->initJobWithSelectionAndPreferences(own, m_context.preferences);
        own->setVideoTrackFileURL(file);
        job->setJobFileName(file.fileName());
        job->setExpectedBytes(QFileInfo(file.toLocalFile()).size());
        announceAdded(job, request.kind);
        ++added;
    }
    return added;
}

void KXQueueController::theQueueLoop()
{
    if (m_jobList.isEmpty()) {
        Q_EMIT drawerWanted(false);
        m_timer.stop();
        return;
    }
    if (m_watchMode == nullptr || !m_watchMode->appIsInWatchMode())
        Q_EMIT drawerWanted(true);
    manageQueue();
}

void KXQueueController::manageQueue()
{
    if (m_jobIsRunning || m_isHeld)
        return;
    const auto queued = std::find_if(m_jobList.cbegin(), m_jobList.cend(), isWaiting);
    if (queued == m_jobList.cend())
        return;
    // Said before the start: a start that waits serves timers, and nothing may start twice.
    m_jobIsRunning = true;
    m_currentJob = *queued;
    m_currentJobRowIndex = queued - m_jobList.cbegin();
    m_currentJob->setJobStatus(u"Running"_s);
    Q_EMIT jobChanged(static_cast<int>(m_currentJobRowIndex));
    startJobThread();
}

void KXQueueController::startJobThread()
{
    const JobPointer job = m_currentJob; // stays alive even if its row goes while it starts
    if (!job)
        return;
    const QString change = m_restored.remove(job.get()) ? changeOf(*job) : QString();
    if (change.isNull())
        job->startJob();
    else
        job->refuse(change);
}

void KXQueueController::notificationHub(const KXNotification &notification)
{
    if (notification.name == u"progressUpdate"_s) {
        m_progressList = notification.object.value<jobs::ProgressList>();
        Q_EMIT jobProgressListChanged();
    } else if (notification.name == u"jobDone"_s) {
        jobEnded(notification);
    } else if (notification.name == u"conversionStarted"_s) {
        rememberOutput(notification.object.toUrl());
        Q_EMIT jobClaimed(notification.object.toUrl());
    }
}

/// Only the running job's end counts: one that was stopped or has ended before is history.
void KXQueueController::jobEnded(const KXNotification &notification)
{
    const auto *sender = notification.userInfo.value(u"theJob"_s).value<QObject *>();
    if (!m_jobIsRunning || !m_currentJob || (sender != nullptr && sender != m_currentJob.get()))
        return;
    m_jobIsRunning = false;
    m_progressList = notification.object.value<jobs::ProgressList>();
    m_currentJob->setJobStatus(u"Completed"_s);
    setPauseButtonTitle(m_isHeld ? u"Resume"_s : u"Pause"_s);
    const bool stops = m_stopsAfterThisJob;
    forgetStop();
    if (stops)
        hold();
    Q_EMIT jobProgressListChanged();
    Q_EMIT jobChanged(static_cast<int>(m_currentJobRowIndex));
    startNextSoon();
}

void KXQueueController::rememberOutput(const QUrl &output)
{
    if (m_watchMode == nullptr)
        return;
    m_watchMode->outputAnnounced(output); // also before watch mode begins
    if (!m_watchMode->appIsInWatchMode())
        return;
    const QString extension = QFileInfo(output.toLocalFile()).suffix().toLower();
    if (m_watchMode->movieExtensionsList().contains(extension))
        m_watchMode->setBaseWatchFolderMovieList(m_watchMode->baseWatchFolderMovieList() << output);
}

void KXQueueController::setPauseButtonTitle(const QString &title)
{
    if (m_pauseButtonTitle == title)
        return;
    m_pauseButtonTitle = title;
    if (title != u"Resume"_s)
        setPauseReason({});
    Q_EMIT pauseButtonTitleChanged();
}

void KXQueueController::setPauseReason(const QString &reason)
{
    if (m_pauseReason == reason)
        return;
    m_pauseReason = reason;
    Q_EMIT pauseReasonChanged(reason);
}

void KXQueueController::pauseFor(const QString &reason)
{
    const bool isPaused = m_pauseButtonTitle == u"Resume"_s;
    if (!m_jobIsRunning || (isPaused && m_pauseReason.isNull()))
        return;
    if (!isPaused)
        pauseQueueButton(u"Pause"_s);
    setPauseReason(reason);
}

void KXQueueController::pauseQueueButton(const QString &title)
{
    if (m_isHeld && title == u"Resume"_s) {
        setHeld(false);
        startNextSoon();
    }
    if (!m_jobIsRunning || !m_currentJob)
        return;
    if (title == u"Pause"_s) {
        setPauseReason({}); // a person's own from now on
        setPauseButtonTitle(u"Resume"_s);
        m_currentJob->pauseJob();
    } else if (title == u"Resume"_s) {
        setPauseButtonTitle(u"Pause"_s);
        m_currentJob->resumeJob();
    }
}

void KXQueueController::clearQueueButton()
{
    m_cleared.clear();
    for (qsizetype row = m_jobList.size() - 1; row >= 0; --row) {
        const JobPointer job = m_jobList.at(row);
        if (job->jobStatus() != u"Completed"_s)
            continue;
        m_cleared.prepend({row, job, queuedJob(*job)});
        removeRow(row);
    }
}

/// What stands in the list by now keeps its order.
void KXQueueController::bringBackCleared()
{
    for (const ClearedRow &cleared : std::exchange(m_cleared, {})) {
        const qsizetype row = std::min(cleared.row, m_jobList.size());
        m_jobList.insert(row, cleared.job);
        if (cleared.queued)
            m_queued.insert(cleared.job.get(), *cleared.queued);
        if (m_jobIsRunning && row <= m_currentJobRowIndex)
            ++m_currentJobRowIndex;
        Q_EMIT jobAdded(static_cast<int>(row));
    }
}

/// Takes a row away; the current job's row stays true when rows above it go.
void KXQueueController::removeRow(qsizetype row)
{
    const JobPointer job = m_jobList.takeAt(row);
    job->unsubscribe();
    m_queued.remove(job.get());
    m_restored.remove(job.get());
    if (row < m_currentJobRowIndex)
        --m_currentJobRowIndex;
    Q_EMIT jobRemoved(static_cast<int>(row));
    if (!hasWaitingJob())
        setHeld(false);
}

void KXQueueController::deleteJobRow(int column, int row)
{
    if (column != deleteColumn || row < 0 || row >= m_jobList.size())
        return;
    if (!m_jobIsRunning)
        return deleteRow(row);
    m_currentJob->pauseJob();
    if (row == m_currentJobRowIndex)
        return askToStop();
    deleteRow(row);
    m_currentJob->resumeJob();
    setPauseButtonTitle(u"Pause"_s);
}

void KXQueueController::deleteRow(qsizetype row)
{
    const JobPointer job = m_jobList.at(row);
    if (isWaiting(job))
        Q_EMIT jobDeleted(*job);
    removeRow(row);
}

void KXQueueController::askToStop()
{
    platform::Alert alert;
    alert.message = u"Stop the currently running job?"_s;
    alert.buttons = {u"OK"_s, u"Cancel"_s};
    m_jobAskedAbout = m_currentJob;
    m_context.alerts.show(std::make_shared<const platform::Alert>(alert),
                          [queue = QPointer<KXQueueController>(this)](int returnCode) {
                              if (queue)
                                  queue->quitJobAlertClosedReturnCode(returnCode);
                          });
}

void KXQueueController::quitJobAlertClosedReturnCode(int returnCode)
{
    const JobPointer asked = m_jobAskedAbout.lock();
    m_jobAskedAbout.reset();
    // The job may have ended, or another may run by now: then the answer is about nothing.
    if (!asked || asked != m_currentJob || !m_jobIsRunning)
        return;
    if (returnCode == platform::firstButtonReturn) {
        Q_EMIT jobDeleted(*asked);
        stopCurrentJob();
        return startNextSoon();
    }
    if (returnCode != platform::secondButtonReturn)
        return;
    m_currentJob->resumeJob();
    setPauseButtonTitle(u"Pause"_s);
}

void KXQueueController::stopCurrentJob()
{
    if (!m_jobIsRunning || !m_currentJob)
        return;
    const JobPointer job = m_currentJob;
    job->stopJob();
    m_jobIsRunning = false;
    forgetStop();
    setPauseButtonTitle(m_isHeld ? u"Resume"_s : u"Pause"_s);
    if (m_currentJobRowIndex < m_jobList.size() && m_jobList.at(m_currentJobRowIndex) == job)
        removeRow(m_currentJobRowIndex);
}

void KXQueueController::removeAllJobs()
{
    for (qsizetype row = m_jobList.size() - 1; row >= 0; --row) {
        if (!m_jobIsRunning || m_jobList.at(row) != m_currentJob)
            removeRow(row);
    }
    stopCurrentJob();
}

// Rows, and a queue that is held.

bool KXQueueController::hasWaitingJob() const
{
    return std::any_of(m_jobList.cbegin(), m_jobList.cend(), isWaiting);
}

bool KXQueueController::canMoveJob(int row) const
{
    return row >= 0 && row < m_jobList.size() && isWaiting(m_jobList.at(row));
}

bool KXQueueController::moveJob(int row, int to)
{
    if (!canMoveJob(row) || to < 0 || to >= m_jobList.size())
        return false;
    if (row == to)
        return true;
    m_jobList.move(row, to);
    if (m_currentJob && m_jobList.contains(m_currentJob))
        m_currentJobRowIndex = m_jobList.indexOf(m_currentJob);
    Q_EMIT jobMoved(row, to);
    return true;
}

std::optional<jobs::QueuedJob> KXQueueController::queuedJob(const KXJob &job) const
{
    const auto found = m_queued.constFind(&job);
    return found == m_queued.cend() ? std::nullopt : std::optional(*found);
}

QString KXQueueController::changeOf(const KXJob &job) const
{
    const auto queued = queuedJob(job);
    return queued ? jobs::changeOf(queued->sources) : QString();
}

QString KXQueueController::runAgainRefusal(int row) const
{
    const JobPointer job = m_jobList.value(row);
    if (!job || job->jobStatus() != u"Completed"_s)
        return u"Only a job that has ended can run again."_s;
    if (!queuedJob(*job))
        return u"What was chosen for this job is not known any more."_s;
    return changeOf(*job);
}

int KXQueueController::runJobAgain(int row)
{
    if (!runAgainRefusal(row).isNull())
        return -1;
    const JobPointer ended = m_jobList.at(row);
    jobs::QueuedJob queued = *queuedJob(*ended);
    queued.outcome = {};
    queued.outputs.clear();
    const JobPointer job = remade(queued);
    if (!job)
        return -1;
    Q_EMIT jobRunsAgain(*ended, *job);
    removeRow(row);
    m_jobList.append(job);
    Q_EMIT jobAdded(static_cast<int>(m_jobList.size()) - 1);
    startNextSoon();
    return static_cast<int>(m_jobList.size()) - 1;
}

/// A job as it was added, from what is known of it.
JobPointer KXQueueController::remade(const jobs::QueuedJob &queued)
{
    const JobPointer job = make(queued.kind);
    if (!job)
        return nullptr;
    const SelectionPointer own = jobs::independentCopy(*queued.selection);
    job->setJobType(own->jobType());
    job->setJobStatus(u"Queued"_s);
    job->setJobFileName(queued.fileName);
    job->setJobSelection(own);
    job->setExpectedBytes(jobs::expectedBytes(queued.kind, *own));
    if (queued.outcome.verdict != steps::Verdict::Unknown)
        job->endedBefore(queued.outcome, queued.outputs);
    m_queued.insert(job.get(), queued);
    return job;
}

void KXQueueController::restore(const QList<jobs::QueuedJob> &stored)
{
    if (!stored.isEmpty())
        openForJobs();
    int row = 0;
    for (const jobs::QueuedJob &queued : stored) {
        const JobPointer job = remade(queued);
        if (!job)
            continue;
        m_restored.insert(job.get());
        m_jobList.insert(row, job);
        if (row <= m_currentJobRowIndex && m_currentJob)
            ++m_currentJobRowIndex;
        Q_EMIT jobAdded(row++);
    }
    hold();
}

void KXQueueController::hold()
{
    setHeld(hasWaitingJob());
}

void KXQueueController::setHeld(bool held)
{
    if (m_isHeld == held)
        return;
    m_isHeld = held;
    if (!m_jobIsRunning)
        setPauseButtonTitle(held ? u"Resume"_s : u"Pause"_s);
    Q_EMIT heldChanged();
}

void KXQueueController::setStopsAfterThisJob(bool stops)
{
    const bool wanted = stops && m_jobIsRunning;
    if (m_stopsAfterThisJob == wanted)
        return;
    m_stopsAfterThisJob = wanted;
    Q_EMIT stopsAfterThisJobChanged();
}

void KXQueueController::forgetStop()
{
    setStopsAfterThisJob(false);
}
