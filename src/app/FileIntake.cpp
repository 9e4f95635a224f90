#include "app/FileIntake.h"

#include "app/CurrentFile.h"
#include "jobs/KXQueueController.h"
#include "media/FileNames.h"
#include "media/TracksBeside.h"
#include "platform/AlertPresenter.h"
#include "selection/KXSelectionController.h"

#include <QFileInfo>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace app {

namespace {

/// What the subtitle application hands over comes in like a mode of its own, and so does a film that is
/// opened although its codecs are newer ones.
const QString handOver = u"hand over"_s;
const QString anyway = u"anyway"_s;

platform::Alert timedAlert(const QString &message, const QString &text, int milliseconds)
{
    platform::Alert alert;
    alert.message = message;
    alert.informativeText = text;
    alert.style = platform::AlertStyle::Informational;
    alert.closesAfter = std::chrono::milliseconds(milliseconds);
    return alert;
}

void show(platform::AlertPresenter &alerts, const platform::Alert &alert)
{
    alerts.show(std::make_shared<const platform::Alert>(alert), {});
}

QString namesOf(const QList<QUrl> &files)
{
    QStringList names;
    for (const QUrl &file : files)
        names.append(file.fileName());
    return names.join(u'\n');
}

/// Why the file can't be edited; a null text when it can.
QString editProblemOf(const QUrl &url)
{
    const QFileInfo file(url.toLocalFile());
    if (file.suffix().toLower() != u"mkv"_s)
        return u"The application can only edit MKV files.  If you are trying to convert the file, "
               "make sure that you are using the MKV tab."_s;
    // A tool would read from it for ever.
    return file.exists() && !media::isRegularFile(url) ? u"It is no ordinary file."_s : QString();
}

} // namespace

/// Says that files are being probed for as long as it lives, and lets the probes be stopped.
class FileIntake::Busy final
{
public:
    explicit Busy(FileIntake &intake)
        : m_intake(intake)
    {
        intake.m_busyMode = intake.m_openingFileMode;
        intake.m_busy = true;
        intake.m_parts.currentFile.file()->setStopFlag(intake.m_stop);
        Q_EMIT intake.busyChanged();
    }
    ~Busy()
    {
        m_intake.m_parts.currentFile.file()->setStopFlag(nullptr);
        *m_intake.m_stop = false;
        m_intake.m_busy = false;
        Q_EMIT m_intake.busyChanged();
    }
    Q_DISABLE_COPY_MOVE(Busy)

private:
    FileIntake &m_intake;
};

FileIntake::FileIntake(const Parts &parts)
    : m_parts(parts)
{
}

void FileIntake::openedFileHubForFiles(const QList<QUrl> &files)
{
    if (m_busy || m_held) {
        m_waiting.append({m_openingFileMode, files});
        return;
    }
    takeIn(files);
    takeNextWaiting();
}

void FileIntake::setHeld(bool held)
{
    m_held = held;
    takeNextWaiting();
}

void FileIntake::takeNextWaiting()
{
    while (!m_waiting.isEmpty() && !m_busy && !m_held) {
        const auto [mode, files] = m_waiting.takeFirst();
        if (mode == handOver) {
            takeHandedOver(files.constFirst());
            continue;
        }
        if (mode == anyway) {
            addAnyway(files.constFirst());
            continue;
        }
        m_openingFileMode = mode;
        takeIn(files);
    }
}

void FileIntake::takeIn(const QList<QUrl> &files)
{
    m_openedURLsArray = files;
    if (files.isEmpty())
        return;
    {
        const Busy busy(*this);
        if (m_busyMode == u"watch"_s)
            takeWatchedFiles();
        else if (m_parts.selectionController.currentTab().toLower() == u"edit files"_s)
            gatherEditFiles(Alerts::Shown);
        else
            takeVideos();
    }
    Q_EMIT tracksChanged();
}

void FileIntake::stopProbing()
{
    for (const auto &[mode, files] : std::exchange(m_waiting, {})) {
        if (mode == u"watch"_s)
            Q_EMIT watchedFilesLeft(files);
    }
    if (m_busy)
        *m_stop = true;
}

void FileIntake::showProgress(qsizetype done, const QUrl &url)
{
    Q_EMIT probing(static_cast<int>(done), static_cast<int>(m_openedURLsArray.size()), url.fileName());
}

OpenedFile FileIntake::entryOfCurrent() const
{
    const VideoFilePointer &file = m_parts.currentFile.file();
    return {file->copy(), m_parts.selectionController.currentSelection()->copy(), file->theFileName()};
}

void FileIntake::takeWatchedFiles()
{
    QList<OpenedFile> entries;
    const QList<QUrl> files = m_openedURLsArray;
    qsizetype i = 0;
    for (; i < files.size() && !isStopped(); ++i) {
        showProgress(i, files.at(i));
        const bool replaces = m_parts.currentFile.file()->whatToDoWithFile(files.at(i)) == u"replace file"_s;
        const bool isLoaded = replaces && loadWithPresets(files.at(i), Alerts::Off);
        if (isLoaded)
            addTracksBeside(files.at(i));
        if (isLoaded && !isStopped())
            entries.append(entryOfCurrent());
        else if (isStopped())
            break; // its probe was ended, so it is not known what it is
        else
            Q_EMIT watchedFileRefused(files.at(i));
    }
    if (i < files.size())
        Q_EMIT watchedFilesLeft(files.sliced(i));
    if (entries.isEmpty())
        return;
    m_parts.selectionController.setOpenQueueMatrixIndex(0);
    m_parts.openQueue.replaceAll(entries);
    Q_EMIT watchedFilesOpened();
}

/// Nobody can choose them there, so what belongs to the film by its name does.
void FileIntake::addTracksBeside(const QUrl &film)
{
    const QList<QUrl> tracks = media::tracksBeside(film);
    for (const QUrl &track : tracks) {
        if (m_parts.currentFile.addTrack(track).toLower() != u"ok"_s && !isStopped())
            Q_EMIT watchedTrackRefused(track);
    }
    if (!tracks.isEmpty())
        m_parts.currentFile.applyPresets();
}

/// Only the first file decides whether a track is added; a later one that is no video is passed over.
void FileIntake::takeVideos()
{
    QList<OpenedFile> entries;
    const OpenFilesBefore before = m_parts.openQueue.snapshot();
    const bool hadChoices = m_parts.openQueue.hasChoicesByHand();
    const QList<QUrl> files = m_openedURLsArray;
    for (qsizetype i = 0; i < files.size() && !isStopped(); ++i) {
        showProgress(i, files.at(i));
        const QString answer = m_parts.currentFile.file()->whatToDoWithFile(files.at(i));
        if (isStopped())
            break;
        if (answer != u"replace file"_s) {
            if (i > 0) {
                passOver(files.at(i), answer);
                continue;
            }
            handle(files.at(i), answer, Alerts::Shown);
            return;
        }
        if (m_busyMode == u"add"_s)
            handle(files.at(i), answer, Alerts::Shown);
        else if (loadWithPresets(files.at(i), Alerts::Shown)) {
            entries.append(entryOfCurrent());
            if (entries.size() == 1)
                Q_EMIT firstFilmOpened();
        }
    }
    if (entries.isEmpty())
        return;
    m_parts.openQueue.replaceAll(entries);
    if (hadChoices)
        Q_EMIT choicesReplaced(before);
}

void FileIntake::passOver(const QUrl &url, const QString &answer)
{
    const bool isTrack = answer == u"add file"_s;
    Q_EMIT refused(
        {url, isTrack ? u"it is a track: open it alone to add it"_s : reasonNotToOpen(url, {}), false});
}

void FileIntake::openAnyway(const QUrl &url)
{
    m_openedAnyway.insert(url);
    m_waiting.append({anyway, {url}});
    takeNextWaiting();
}

void FileIntake::addAnyway(const QUrl &url)
{
    {
        const Busy busy(*this);
        OpenFilesBefore open = m_parts.openQueue.snapshot();
        if (loadWithPresets(url, Alerts::Shown)) {
            open.entries.append(entryOfCurrent());
            open.row = static_cast<int>(open.entries.size()) - 1;
            m_parts.openQueue.bringBack(open);
        }
    }
    Q_EMIT tracksChanged();
}

QString FileIntake::testNewFileURLWithAlerts(const QUrl &url, Alerts alerts)
{
    const QString tab = m_parts.selectionController.currentTab().toLower();
    if (tab == u"mkv"_s)
        return handle(url, m_parts.currentFile.file()->whatToDoWithFile(url), alerts);
    if (tab == u"edit files"_s)
        gatherEditFiles(alerts);
    return u""_s;
}

QString FileIntake::handle(const QUrl &url, const QString &answer, Alerts alerts)
{
    if (answer == u"replace file"_s)
        return handleReplacing(url, alerts);
    if (alerts == Alerts::Off || isStopped())
        return u""_s;
    if (answer == u"add file"_s) {
        addFileTrackFrom(url);
        m_parts.currentFile.applyPresets();
    } else {
        refuse(url, u"The application can't open this file."_s);
    }
    return u""_s;
}

/// Who asked to add a track but chose a video is told so; what is open stays.
QString FileIntake::handleReplacing(const QUrl &url, Alerts alerts)
{
    if (modeInForce() == u"add"_s) {
        if (alerts == Alerts::Shown)
            refuse(url, u"The application can't add the track from this file."_s);
        return u""_s;
    }
    loadWithPresets(url, alerts);
    return u"new file added"_s; // also where the load was refused
}

bool FileIntake::loadWithPresets(const QUrl &url, Alerts alerts)
{
    if (loadNewFileTracksFromWithAlerts(url, alerts).toLower() != u"ok"_s)
        return false;
    m_parts.currentFile.file()->takeFlagsOfSource(); // the table shows and edits them
    m_parts.currentFile.applyPresets();
    return true;
}

QString FileIntake::loadNewFileTracksFromWithAlerts(const QUrl &url, Alerts alerts)
{
    const VideoFilePointer &file = m_parts.currentFile.file();
    const VideoFilePointer before = file->copy();
    file->setTakesNewerCodecs(m_openedAnyway.contains(url));
    const QString status = m_parts.currentFile.load(url);
    file->setTakesNewerCodecs(false);
    const QString problemCodec = file->problemCodec();
    if (status.toLower() == u"ok"_s)
        return status;
    file->makeSelfCopyOfVideoFile(*before);
    m_problemCodec = problemCodec;
    if (alerts == Alerts::Shown && !isStopped()) {
        refuse(url,
               u"The application could not identify one or more of the tracks in this file.  Check the "
               "text file that should have been created in the video's directory for more information."_s);
    }
    return status;
}

void FileIntake::addFileTrackFrom(const QUrl &url)
{
    if (m_parts.currentFile.addTrack(url).toLower() != u"ok"_s && !isStopped())
        refuse(url, u"The application can't add this track to the current video."_s);
    Q_EMIT tracksChanged();
}

bool FileIntake::applicationOpenFile(const QString &path)
{
    const QUrl url = QUrl::fromLocalFile(path);
    if (m_busy || m_held) {
        m_waiting.append({handOver, {url}});
        return true;
    }
    takeHandedOver(url);
    takeNextWaiting();
    return true;
}

/// What comes in while the subtitle is probed waits, else it would be added to another video.
void FileIntake::takeHandedOver(const QUrl &url)
{
    if (m_parts.selectionController.currentSelection()->vidCount().isNull()) {
        // "subitle" is meant.
        show(m_parts.alerts,
             timedAlert(u"Transfer From Lintwick Failed"_s,
                        u"Tessaray must have a video file opened before a subtitle can be transferred from "
                        "Lintwick.  Open video file and resend the subitle."_s,
                        handOverAlertMilliseconds));
        return;
    }
    const Busy busy(*this);
    addFileTrackFrom(url);
}

/// The alert says that it is so; the reason stays for those who want to know it.
void FileIntake::refuse(const QUrl &url, const QString &text)
{
    const QString codec = std::exchange(m_problemCodec, {});
    const bool opensNewerly = !codec.isEmpty(); // the setting takes every codec that has a name
    platform::Alert alert = timedAlert(u"Error Opening: "_s + url.fileName(), text, alertMilliseconds);
    if (opensNewerly) {
        alert.action = u"Open Anyway"_s;
        alert.act = [self = QPointer(this), url] {
            if (self)
                self->openAnyway(url);
        };
    }
    Q_EMIT refused({url, reasonToTell(url, codec), opensNewerly});
    show(m_parts.alerts, alert);
}

/// What is no film may be refused for where it was dropped.
QString FileIntake::reasonToTell(const QUrl &url, const QString &codec) const
{
    const bool editsFiles = m_parts.selectionController.currentTab().toLower() == u"edit files"_s;
    if (editsFiles && QFileInfo(url.toLocalFile()).suffix().toLower() != u"mkv"_s)
        return u"it is no MKV file"_s;
    return modeInForce() == u"add"_s ? u"it holds no track that can be added"_s : reasonNotToOpen(url, codec);
}

void FileIntake::gatherEditFiles(Alerts alerts)
{
    m_editFilesURLsArray.clear();
    for (const QUrl &url : std::as_const(m_openedURLsArray)) {
        const QString problem = editProblemOf(url);
        if (problem.isNull())
            m_editFilesURLsArray.append(url);
        else if (alerts == Alerts::Shown)
            refuse(url, problem);
    }
    m_editFilesPathsArray.clear();
    for (const QUrl &url : std::as_const(m_editFilesURLsArray))
        m_editFilesPathsArray.append(url.toLocalFile());
    m_parts.selectionController.currentSelection()->setEditFilesURLsList(m_editFilesURLsArray);
    m_parts.selectionController.updateTabs();
    Q_EMIT tracksChanged();
    askAboutHeaderRemoval();
}

/// Asked once for all files that were gathered, when at least one of them uses it.
void FileIntake::askAboutHeaderRemoval()
{
    m_headerRemovalFiles.clear();
    const QList<QUrl> files = m_editFilesURLsArray;
    for (qsizetype i = 0; i < files.size() && !isStopped(); ++i) {
        showProgress(i, files.at(i));
        if (m_parts.currentFile.file()->checkForHeaderRemovalFor(files.at(i)))
            m_headerRemovalFiles.append(files.at(i));
    }
    m_parts.selectionController.currentSelection()->setHeaderRemovalFlag(!m_headerRemovalFiles.isEmpty());
    if (m_headerRemovalFiles.isEmpty() || isStopped())
        return;
    platform::Alert question;
    question.message = u"Some players can't read files that use MKV header removal."_s;
    question.informativeText =
        u"Re-Mux makes a copy of each of these files without it:\n%1"_s.arg(namesOf(m_headerRemovalFiles));
    question.style = platform::AlertStyle::Informational;
    question.buttons = {u"Re-Mux"_s, u"Cancel"_s};
    m_parts.alerts.show(std::make_shared<const platform::Alert>(question),
                        [self = QPointer(this), flagged = m_headerRemovalFiles](int returnCode) {
                            if (!self)
                                return;
                            self->m_headerRemovalFiles = flagged; // others may have been gathered since
                            self->handleHeaderCompressionReturnCode(returnCode);
                        });
}

void FileIntake::handleHeaderCompressionReturnCode(int returnCode)
{
    if (returnCode != platform::firstButtonReturn || m_headerRemovalFiles.isEmpty())
        return;
    const SelectionPointer current = m_parts.selectionController.currentSelection();
    current->setJobType(u"MKV Remux"_s);
    const SelectionPointer flagged = current->copy();
    flagged->setEditFilesURLsList(m_headerRemovalFiles);
    m_parts.queue.addToQueue(flagged);
}

} // namespace app
