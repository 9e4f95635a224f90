#include "jobs/KXQueueController.h"

#include "jobs/MuxingTracks.h"
#include "media/KXVideoTrack.h"
#include "prefs/KXPreferences.h"
#include "prefs/KXWatchModeController.h"

#include <QFileInfo>
#include <QHash>
#include <QPointer>

#include <algorithm>

using namespace Qt::StringLiterals;
using jobs::JobKind;

namespace {

/// Gives the selection tracks of its own: one copy per track, the same one in every list.
void isolateTracks(KXSelection &selection)
{
    QHash<const KXVideoTrack *, TrackPointer> copies;
    const auto isolated = [&](const TrackList &tracks) {
        TrackList own;
        for (const TrackPointer &track : tracks) {
            TrackPointer &copy = copies[track.get()];
            if (!copy)
                copy = track->copy();
            own.append(copy);
        }
        return own;
    };
    selection.setTrackList(isolated(selection.trackList()));
    selection.setKeepTracksList(isolated(selection.keepTracksList()));
    selection.setAddedAudioTrackList(isolated(selection.addedAudioTrackList()));
}

SelectionPointer jobsOwnCopy(const SelectionPointer &selection)
{
    const SelectionPointer copy = selection->copy();
    isolateTracks(*copy);
    return copy;
}

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

JobPointer KXQueueController::append(JobKind kind)
{
    const JobPointer job = m_factory.make(kind, m_context);
    if (!job)
        return nullptr;
    m_jobList.append(job);
    startNextSoon();
    connect(job.get(), &KXJob::outcomeChanged, this, [this, job = job.get()] {
        const auto isIt = [job](const JobPointer &other) { return other.get() == job; };
        const auto found = std::find_if(m_jobList.cbegin(), m_jobList.cend(), isIt);
        if (found != m_jobList.cend())
            Q_EMIT jobChanged(static_cast<int>(found - m_jobList.cbegin()));
    });
    return job;
}

int KXQueueController::addConversion(const SelectionPointer &selection)
{
    const JobKind kind = conversionKindFor(*selection);
    const JobPointer job = append(kind);
    if (!job)
        return 0;
    const SelectionPointer own = jobsOwnCopy(selection);
    own->setTrackList(own->trackList() + own->addedAudioTrackList());
    if (kind == JobKind::Muxing)
        own->setTrackList(jobs::tracksForMuxing(own->trackList()));
    job->setJobType(selection->jobType());
    job->setJobStatus(u"Queued"_s);
    job->setJobFileName(selection->videoTrackFileName());
    job->setJobSelection(own);
    Q_EMIT jobAdded(static_cast<int>(m_jobList.size()) - 1);
    return 1;
}

int KXQueueController::addOne(const jobs::JobRequest &request)
{
    const JobPointer job = append(request.kind);
    if (!job)
        return 0;
    job->initJobWithSelectionAndPreferences(jobsOwnCopy(request.selection), m_context.preferences);
    Q_EMIT jobAdded(static_cast<int>(m_jobList.size()) - 1);
    return 1;
}

int KXQueueController::addOnePerFile(const jobs::JobRequest &request)
{
    int added = 0;
    for (const QUrl &file : request.selection->editFilesURLsList()) {
        const JobPointer job = append(request.kind);
        if (!job)
            return added;
        const SelectionPointer own = jobsOwnCopy(request.selection);
        job->initJobWithSelectionAndPreferences(own, m_context.preferences);
        own->setVideoTrackFileURL(file);
        job->setJobFileName(file.fileName());
        Q_EMIT jobAdded(static_cast<int>(m_jobList.size()) - 1);
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
    if (m_jobIsRunning)
        return;
    const auto queued = std::find_if(m_jobList.cbegin(), m_jobList.cend(),
                                     [](const JobPointer &job) { return job->jobStatus() == u"Queued"_s; });
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
    if (job)
        job->startJob();
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
    setPauseButtonTitle(u"Pause"_s);
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
    Q_EMIT pauseButtonTitleChanged();
}

void KXQueueController::pauseQueueButton(const QString &title)
{
    if (!m_jobIsRunning || !m_currentJob)
        return;
    if (title == u"Pause"_s) {
        setPauseButtonTitle(u"Resume"_s);
        m_currentJob->pauseJob();
    } else if (title == u"Resume"_s) {
        setPauseButtonTitle(u"Pause"_s);
        m_currentJob->resumeJob();
    }
}

void KXQueueController::clearQueueButton()
{
    for (qsizetype row = m_jobList.size() - 1; row >= 0; --row) {
        if (m_jobList.at(row)->jobStatus() == u"Completed"_s)
            removeRow(row);
    }
}

/// Takes a row away; the current job's row stays true when rows above it go.
void KXQueueController::removeRow(qsizetype row)
{
    const JobPointer job = m_jobList.takeAt(row);
    job->unsubscribe();
    if (row < m_currentJobRowIndex)
        --m_currentJobRowIndex;
    Q_EMIT jobRemoved(static_cast<int>(row));
}

void KXQueueController::deleteJobRow(int column, int row)
{
    if (column != deleteColumn || row < 0 || row >= m_jobList.size())
        return;
    if (!m_jobIsRunning)
        return removeRow(row);
    m_currentJob->pauseJob();
    if (row == m_currentJobRowIndex)
        return askToStop();
    removeRow(row);
    m_currentJob->resumeJob();
    setPauseButtonTitle(u"Pause"_s);
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
    setPauseButtonTitle(u"Pause"_s);
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
