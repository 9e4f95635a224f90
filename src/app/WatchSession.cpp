#include "app/WatchSession.h"

#include "app/FileIntake.h"
#include "app/JobStarter.h"
#include "app/QueuePause.h"
#include "jobs/KXQueueController.h"
#include "prefs/KXWatchModeController.h"
#include "prefs/SaveFolder.h"
#include "presets/KXPresetsController.h"
#include "selection/KXSelectionController.h"
#include "steps/FailureCause.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace app {

namespace {

constexpr qsizetype mostNamed = 100;
constexpr qsizetype mostEnded = 1000; ///< jobs that are kept; a watch may go on for years

qsizetype endedOf(const QList<JobPointer> &jobs)
{
    return std::count_if(jobs.begin(), jobs.end(), [](const JobPointer &job) { return job->hasEnded(); });
}

QString pathsOf(const QList<QUrl> &files)
{
    QStringList names;
    for (const QUrl &file : files)
        names.append(file.toLocalFile());
    return names.join(u", "_s);
}

} // namespace

WatchSession::WatchSession(const Parts &parts)
    : m_parts(parts)
    , m_journal(QFileInfo(parts.settingsPath).absolutePath())
{
    parts.watchMode.setDataFolder(QFileInfo(parts.settingsPath).absolutePath());
    m_start.setSingleShot(true);
    m_start.setInterval(parts.startInterval);
    connect(&m_start, &QTimer::timeout, this, &WatchSession::startOpened);
    connect(&parts.watchMode, &KXWatchModeController::filesReady, this, [this](const QList<QUrl> &files) {
        m_pending.append(files);
        takeNext();
    });
    connect(&parts.intake, &FileIntake::busyChanged, this, &WatchSession::takeNext, Qt::QueuedConnection);
    connect(&parts.intake, &FileIntake::watchedFilesOpened, this, [this] {
        m_parts.intake.setHeld(true); // what the desktop opens now must not take the films' place
        m_start.start();
    });
    connect(&parts.starter, &JobStarter::finishingChanged, this, [this] {
        if (m_active && !m_parts.starter.isFinishing() && !m_start.isActive())
            batchDone();
    });
    m_announced =
        parts.notifications.subscribe(u"conversionStarted"_s, [this](const KXNotification &notification) {
            if (m_parts.watchMode.appIsInWatchMode())
                m_journal.started(notification.object.toUrl().toLocalFile());
        });
    connectLog();
}

WatchSession::~WatchSession() = default;

void WatchSession::connectLog()
{
    using Watch = KXWatchModeController;
    connect(&m_parts.watchMode, &Watch::filesFound, this, &WatchSession::filesFound);
    connect(&m_parts.watchMode, &Watch::fileForgotten, this,
            [this](const QString &path) { note(WatchLog::Kind::Note, tr("%1 is gone.").arg(path)); });
    connect(&m_parts.watchMode, &Watch::fileGivenUp, this, [this](const QString &path) {
        note(WatchLog::Kind::Failed, tr("%1 could not be opened, and is not tried again.").arg(path));
    });
    connect(&m_parts.watchMode, &Watch::fileNotWhole, this, [this](const QString &path) {
        note(WatchLog::Kind::Waiting, tr("%1: until it is whole.").arg(path));
    });
    connect(&m_parts.watchMode, &Watch::nameNotReadable, this, [this](const QString &path) {
        note(WatchLog::Kind::Failed,
             tr("%1: its name is not UTF-8. Rename it to have it converted.").arg(path));
    });
    connect(&m_parts.watchMode, &Watch::folderMissing, this, [this] {
        if (!std::exchange(m_folderWasMissing, true))
            note(WatchLog::Kind::Failed, tr("The folder is not there. Waiting until it is back."));
    });
    connect(&m_parts.watchMode, &Watch::fileEmpty, this,
            [this](const QString &path) { note(WatchLog::Kind::Waiting, tr("%1: it is empty.").arg(path)); });
    connect(&m_parts.watchMode, &Watch::folderTaken, this,
            [this](const QString &problem) { note(WatchLog::Kind::Failed, problem); });
    connect(&m_parts.intake, &FileIntake::watchedFileRefused, this, &WatchSession::refusedByIntake);
    connect(&m_parts.intake, &FileIntake::watchedTrackRefused, this, [this](const QUrl &track) {
        note(WatchLog::Kind::Failed,
             tr("%1 can't be added to the film beside it, which is converted without.")
                 .arg(track.toLocalFile()));
    });
    connect(&m_parts.intake, &FileIntake::watchedFilesLeft, this, [this](const QList<QUrl> &films) {
        for (const QUrl &film : films)
            m_parts.watchMode.fileGivenBack(film);
    });
    connect(&m_parts.starter, &JobStarter::notStarted, this, &WatchSession::leftByPresets);
    connect(&m_parts.starter, &JobStarter::refused, this, &WatchSession::refusedNow);
    connect(&m_parts.queue, &KXQueueController::jobAdded, this, &WatchSession::jobAdded);
    connect(&m_parts.queue, &KXQueueController::jobChanged, this, &WatchSession::jobChanged);
    connect(&m_parts.queue, &KXQueueController::jobDeleted, this, &WatchSession::jobDeleted);
    connect(&m_parts.pause, &QueuePause::roomIsShort, this,
            [this](const QString &sentence) { note(WatchLog::Kind::Note, sentence); });
    connect(&m_parts.queue, &KXQueueController::pauseReasonChanged, this, [this](const QString &reason) {
        if (m_parts.queue.qJobIsRunning())
            note(WatchLog::Kind::Waiting,
                 reason.isNull() ? tr("The job goes on.") : tr("The job is paused. %1").arg(reason));
    });
}

void WatchSession::note(WatchLog::Kind kind, const QString &text)
{
    if (m_parts.watchMode.appIsInWatchMode())
        m_log.add(kind, text);
}

void WatchSession::leftByPresets(const QString &fileName)
{
    note(WatchLog::Kind::Failed, tr("%1: the presets choose nothing that can be converted.").arg(fileName));
    for (const QUrl &film : std::as_const(m_batch)) {
        if (film.fileName() == fileName)
            m_parts.watchMode.fileDone(film);
    }
}

void WatchSession::refusedNow(const QString &reason)
{
    note(WatchLog::Kind::Failed, reason);
    for (const QUrl &film : std::as_const(m_batch))
        m_parts.watchMode.fileLater(film);
}

/// Null where the film itself is the reason.
QString WatchSession::momentaryProblem(const QUrl &film) const
{
    const QString path = film.toLocalFile();
    if (!QFileInfo(path).isReadable())
        return tr("it can't be read.");
    if (!QFileInfo(m_parts.queue.urlOfApp(u"ffprobe"_s).toLocalFile()).isExecutable())
        return tr("ffprobe is missing.");
    return m_parts.starter.takesResultsOf(film) ? QString() : prefs::SaveFolder::notWritable();
}

void WatchSession::refusedByIntake(const QUrl &film)
{
    const QString path = film.toLocalFile();
    if (!QFileInfo::exists(path)) {
        note(WatchLog::Kind::Failed, tr("%1 is gone.").arg(path));
        return m_parts.watchMode.fileGivenBack(film);
    }
    if (const QString problem = momentaryProblem(film); !problem.isNull())
        return later(film, problem);
    note(WatchLog::Kind::Failed, tr("%1 can't be opened; it is tried again when it changes.").arg(path));
    m_parts.watchMode.fileRefused(film);
}

void WatchSession::later(const QUrl &film, const QString &reason)
{
    note(WatchLog::Kind::Failed, tr("%1: %2 It is tried again later.").arg(film.toLocalFile(), reason));
    m_parts.watchMode.fileLater(film);
}

/// A job that failed leaves a log, and what it had made, so it is not tried for ever.
void WatchSession::failed(const QUrl &film, const QString &reason)
{
    const QString path = film.toLocalFile();
    if (!QFileInfo::exists(path))
        return m_parts.watchMode.fileGivenBack(film);
    if (momentaryProblem(film).isNull() && !steps::FailureCause::mayPass(reason))
        return m_parts.watchMode.fileDone(film);
    if (m_parts.watchMode.fileLater(film) < prefs::WatchedFiles::mostAttempts)
        return note(WatchLog::Kind::Note, tr("%1: It is tried again later.").arg(path));
    m_parts.watchMode.fileRefused(film);
    note(WatchLog::Kind::Note, tr("%1: It is tried again when it changes, and at the next start.").arg(path));
}

/// A preset that is gone while watching makes films wait; one of its name that is back is taken.
QString WatchSession::presetProblem()
{
    KXPresetsController &presets = m_parts.presets;
    const auto tracks = presets.presetSelectionsNamesList().indexOf(m_tracksPreset);
    const auto settings = presets.presetSettingsNamesList().indexOf(m_settingsPreset);
    if (tracks < 0 || settings < 0)
        return tr("the preset \"%1\" is gone.").arg(tracks < 0 ? m_tracksPreset : m_settingsPreset);
    if (presets.selectionMethodIndex() != tracks)
        presets.setSelectionMethodIndex(static_cast<int>(tracks));
    if (presets.settingMethodIndex() != settings)
        presets.setSettingMethodIndex(static_cast<int>(settings));
    return {};
}

QString WatchSession::startRefusal() const
{
    if (m_parts.presets.selectionMethodIndex() == 0)
        return tr("Choose a track preset: with \"Manual\" nothing can be watched.");
    if (m_parts.presets.settingMethodIndex() == 0)
        return tr("Choose a settings preset: with \"Manual\" nothing can be watched.");
    return {};
}

bool WatchSession::start()
{
    const QString refusal = startRefusal();
    if (!refusal.isNull()) {
        m_log.add(WatchLog::Kind::Failed, refusal);
        return false;
    }
    // Another tab leaves the settings preset, which is what is watched with.
    const int settings = m_parts.presets.settingMethodIndex();
    m_parts.selectionController.setCurrentTab(u"MKV"_s);
    m_parts.presets.setSettingMethodIndex(settings);
    m_tracksPreset =
        m_parts.presets.presetSelectionsNamesList().value(m_parts.presets.selectionMethodIndex());
    m_settingsPreset = m_parts.presets.presetSettingsNamesList().value(settings);
    if (!m_parts.watchMode.startWatchMode()) {
        m_log.add(WatchLog::Kind::Failed, m_parts.watchMode.watchFolderPath());
        return false;
    }
    m_folderWasMissing = false;
    takeQueued();
    note(WatchLog::Kind::Note, tr("Watching %1.").arg(m_parts.watchMode.watchFolderPath()));
    if (!m_parts.watchMode.isJournalInFolder())
        note(WatchLog::Kind::Note,
             tr("The folder can't be written, so what is known of it is kept beside the "
                "settings. A program on another machine does not see it."));
    tellLeftOver();
    tellWhatIsThere();
    return true;
}

/// What an earlier run of the program has left in the queue must not become a second job.
void WatchSession::takeQueued()
{
    for (const JobPointer &job : m_parts.queue.qJobList()) {
        if (!job->hasEnded())
            m_parts.watchMode.fileIsQueued(job->jobSelection()->videoTrackFileURL());
    }
}

void WatchSession::filesRequested(const QStringList &paths)
{
    for (const QString &path : paths) {
        const bool isWanted = m_parts.watchMode.fileWanted(QUrl::fromLocalFile(path));
        note(isWanted ? WatchLog::Kind::Waiting : WatchLog::Kind::Note,
             isWanted
                 ? tr("%1: it was handed over, and is converted.").arg(path)
                 : tr("%1: it is not opened while a folder is watched. Stop watching, or put it into the "
                      "folder.")
                       .arg(path));
    }
}

/// Half-made by a run that was killed: named, never touched.
void WatchSession::tellLeftOver()
{
    for (const QString &output : m_journal.takeLeftOver())
        note(WatchLog::Kind::Failed,
             tr("%1 was not finished when the program ended the last time.").arg(output));
}

void WatchSession::tellWhatIsThere()
{
    const QList<QUrl> there = m_parts.watchMode.baseWatchFolderMovieList();
    for (const QUrl &file : there.first(std::min(there.size(), mostNamed)))
        note(WatchLog::Kind::Note, tr("%1 is already there and is not processed.").arg(file.toLocalFile()));
    if (there.size() > mostNamed)
        note(WatchLog::Kind::Note,
             tr("%n more are already there.", nullptr, static_cast<int>(there.size() - mostNamed)));
}

void WatchSession::end()
{
    note(WatchLog::Kind::Note, tr("Watching has ended."));
    for (const QList<QUrl> &films : std::exchange(m_pending, {})) {
        for (const QUrl &film : films)
            m_parts.watchMode.fileGivenBack(film);
    }
    m_parts.watchMode.endWatchMode();
}

void WatchSession::filesFound(const QStringList &paths)
{
    m_folderWasMissing = false;
    for (const QString &path : paths)
        note(WatchLog::Kind::Waiting, tr("%1: until it has stopped growing.").arg(path));
}

/// A batch takes the place of what is open, so it has to be started before the next one comes. It also waits
/// for files that come in otherwise: the intake would keep it, and not say when it was done with it.
void WatchSession::takeNext()
{
    if (m_active || m_pending.isEmpty() || m_parts.intake.isBusy())
        return;
    m_active = true;
    m_batch = takenNow(m_pending.takeFirst());
    if (!m_batch.isEmpty()) {
        m_parts.intake.setOpeningFileMode(u"watch"_s);
        m_parts.intake.openedFileHubForFiles(m_batch);
    }
    if (!m_start.isActive())
        batchDone();
}

/// One film whose result has no place must not hold up those beside it.
QList<QUrl> WatchSession::takenNow(const QList<QUrl> &films)
{
    QList<QUrl> taken;
    const QString preset = presetProblem();
    for (const QUrl &film : films) {
        const QString problem = !preset.isNull()                        ? preset
                                : !m_parts.starter.takesResultsOf(film) ? prefs::SaveFolder::notWritable()
                                                                        : QString();
        if (problem.isNull())
            taken.append(film);
        else
            later(film, problem);
    }
    return taken;
}

void WatchSession::startOpened()
{
    m_active = true;
    m_parts.starter.startProcess(u"Convert"_s);
    if (!m_parts.starter.isFinishing())
        batchDone();
}

void WatchSession::batchDone()
{
    m_active = false;
    m_parts.intake.setHeld(false);
    QMetaObject::invokeMethod(this, &WatchSession::takeNext, Qt::QueuedConnection);
}

void WatchSession::jobAdded(int row)
{
    const JobPointer job = m_parts.queue.qJobList().value(row);
    if (job)
        note(WatchLog::Kind::Started, tr("%1: %2").arg(job->jobFileName(), job->jobType()));
}

void WatchSession::jobChanged(int row)
{
    const JobPointer job = m_parts.queue.qJobList().value(row);
    if (!job || job->jobStatus() != u"Completed"_s || m_lastEnded.lock() == job)
        return;
    m_lastEnded = job;
    m_journal.finished();
    const QUrl film = job->jobSelection()->videoTrackFileURL();
    const bool failed = job->outcome().verdict == steps::Verdict::Failed;
    if (!failed)
        m_parts.watchMode.fileDone(film);
    QStringList parts{job->jobFileName()};
    if (!failed && !job->outputs().isEmpty())
        parts.append(pathsOf(job->outputs()));
    if (!job->outcome().sentence.isEmpty())
        parts.append(job->outcome().sentence);
    note(failed ? WatchLog::Kind::Failed : WatchLog::Kind::Done, parts.join(u": "_s));
    if (failed)
        this->failed(film, job->outcome().sentence);
    if (m_parts.watchMode.appIsInWatchMode() && endedOf(m_parts.queue.qJobList()) >= mostEnded)
        QMetaObject::invokeMethod(&m_parts.queue, &KXQueueController::clearQueueButton, Qt::QueuedConnection);
}

/// Who takes a film's job away does not want it: it is known from now on.
void WatchSession::jobDeleted(const KXJob &job)
{
    m_parts.watchMode.fileDone(job.jobSelection()->videoTrackFileURL());
    note(WatchLog::Kind::Note, tr("%1: its job was removed, so it is not converted.").arg(job.jobFileName()));
}

} // namespace app
