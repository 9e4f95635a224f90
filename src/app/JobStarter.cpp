#include "app/JobStarter.h"

#include "app/CurrentFile.h"
#include "app/OpenQueue.h"
#include "app/ResultName.h"
#include "app/TrackEditing.h"
#include "jobs/KXQueueController.h"
#include "platform/AlertPresenter.h"
#include "prefs/SaveFolder.h"
#include "presets/KXPresetsController.h"
#include "selection/KXSelectionController.h"
#include "selection/Refusals.h"
#include "summary/ConversionSummary.h"

using namespace Qt::StringLiterals;

namespace app {

namespace {

const QString conversion = u"MKV Conversion"_s;
const QString extraction = u"MKV Track Extraction"_s;

/// A null text where the title starts nothing: the job type then stays as it is.
QString fileJobTypeFor(const QString &title)
{
    if (title == u"Join"_s)
        return u"MKV Joining"_s;
    if (title == u"Split"_s)
        return u"MKV Splitting"_s;
    return title == u"Re-Mux"_s ? u"MKV Remux"_s : QString();
}

std::optional<selection::TrackEdit> editOf(int editTrackMatrixIndex)
{
    using selection::TrackEdit;
    const QList<TrackEdit> edits{TrackEdit::Extract, TrackEdit::Remove, TrackEdit::Add};
    if (editTrackMatrixIndex < 0 || editTrackMatrixIndex >= edits.size())
        return std::nullopt;
    return edits.at(editTrackMatrixIndex);
}

} // namespace

JobStarter::JobStarter(const Parts &parts)
    : m_parts(parts)
{
    m_finish.setSingleShot(true);
    m_finish.setInterval(finishMilliseconds);
    connect(&m_finish, &QTimer::timeout, this, [this] {
        finishStartProcess(m_finishJobType);
        Q_EMIT finishingChanged();
    });
}

void JobStarter::startProcess(const QString &title)
{
    if (isFinishing())
        return;
    Q_EMIT editingEndWanted();
    if (!saveFolderIsWritable())
        return;
    if (m_parts.selectionController.currentTab() == u"Edit Files"_s)
        startEditingFiles(title);
    else
        startFile(title);
}

/// Of several files the first one counts.
QUrl JobStarter::source() const
{
    const SelectionPointer selection = m_parts.selectionController.currentSelection();
    const bool editsFiles = m_parts.selectionController.currentTab() == u"Edit Files"_s;
    return editsFiles ? selection->editFilesURLsList().value(0) : selection->videoTrackFileURL();
}

bool JobStarter::takesResultsOf(const QUrl &film) const
{
    return prefs::SaveFolder(m_parts.preferences).takesResultsOf(film);
}

bool JobStarter::saveFolderIsWritable()
{
    if (takesResultsOf(source()))
        return true;
    platform::Alert alert;
    alert.message = prefs::SaveFolder::notWritable();
    alert.informativeText = prefs::SaveFolder::notWritableAdvice();
    alert.style = platform::AlertStyle::Informational;
    alert.closesAfter = std::chrono::milliseconds(alertMilliseconds);
    m_parts.alerts.show(std::make_shared<const platform::Alert>(alert), {});
    Q_EMIT refused(alert.message);
    return false;
}

void JobStarter::startEditingFiles(const QString &title)
{
    const SelectionPointer selection = m_parts.selectionController.currentSelection();
    if (const QString type = fileJobTypeFor(title); !type.isNull())
        selection->setJobType(type);
    m_parts.queue.addToQueue(selection);
}

void JobStarter::startFile(const QString &title)
{
    const SelectionPointer selection = m_parts.selectionController.currentSelection();
    if (title == u"Send"_s) {
        selection->setJobType(u"Send To Lintwick"_s);
        m_parts.queue.addToQueue(selection);
        return;
    }
    const QString jobType = title == u"Extract"_s ? extraction : jobTypeFor(m_parts.presets);
    if (title == u"Extract"_s || jobType == conversion)
        selection->setJobType(jobType);
    startCurrent(jobType);
}

void JobStarter::startCurrent(const QString &jobType)
{
    const int files = m_parts.openQueue.openFileCount();
    if (files == 0)
        return;
    if (mayStart(jobType)) {
        // The preset named "Extract Tracks" leaves the type of the selection as it is; the job needs it.
        const SelectionPointer job = m_parts.selectionController.currentSelection()->copy();
        job->setJobType(jobType);
        job->setOutputName(chosenResultName(*job));
        m_parts.queue.addToQueue(job);
        m_parts.openQueue.choicesAreUsed();
        if (files >= 2)
            m_parts.openQueue.takeSelected();
    } else if (files == 1) {
        leave(jobType);
    }
    if (files < 2)
        return tellWhatIsLeft();
    m_finishJobType = jobType;
    m_finish.start();
    Q_EMIT finishingChanged();
}

bool JobStarter::mayStart(const QString &jobType) const
{
    const KXSelectionController &controller = m_parts.selectionController;
    return (jobType == conversion && controller.canConvert()) ||
           (jobType == extraction && controller.canEditTracks());
}

bool JobStarter::queueEntry(int row, const QString &jobType)
{
    m_parts.openQueue.select(row);
    if (m_parts.selectionController.openQueueMatrixIndex() == 0)
        m_parts.currentFile.applyPresets();
    m_parts.selectionController.updateTabs();
    const SelectionPointer selection = m_parts.selectionController.currentSelection();
    selection->setJobType(jobType);
    if (!mayStart(jobType)) {
        leave(jobType);
        return false;
    }
    selection->setOutputName(chosenResultName(*selection));
    m_parts.queue.addToQueue(selection);
    Q_EMIT jobQueued();
    return true;
}

void JobStarter::leave(const QString &jobType)
{
    const KXVideoFile &film = *m_parts.currentFile.file();
    QString reason =
        jobType == conversion ? summary::reasonToStay(film) : u"no MKV file with ticked tracks"_s;
    if (reason.isEmpty())
        reason = u"it can't be converted as it is chosen"_s;
    m_left.append({film.theFileName(), reason});
    Q_EMIT notStarted(film.theFileName());
}

void JobStarter::tellWhatIsLeft()
{
    if (const QList<LeftFilm> left = std::exchange(m_left, {}); !left.isEmpty())
        Q_EMIT filmsLeft(left);
}

/// What became a job leaves the list; the first that did not is shown, or, when all did, the last one.
void JobStarter::finishStartProcess(const QString &jobType)
{
    QList<int> queued;
    const int count = m_parts.openQueue.openFileCount();
    for (int row = 0; row < count; ++row) {
        if (queueEntry(row, jobType))
            queued.append(row);
    }
    if (queued.size() == count && count > 0)
        queued.removeLast();
    int shown = 0;
    while (queued.contains(shown))
        ++shown;
    m_parts.openQueue.select(shown);
    m_parts.openQueue.removeRows(queued);
    tellWhatIsLeft();
}

QString JobStarter::trackEditingRefusal() const
{
    const KXSelectionController &controller = m_parts.selectionController;
    if (!controller.canEditTracks())
        return tr("Tracks of MKV files can be edited, and at least one has to be ticked.");
    return selection::refusalToEdit(*controller.currentSelection(),
                                    editOf(controller.editTrackMatrixIndex()));
}

void JobStarter::startTrackEditing()
{
    Q_EMIT editingEndWanted();
    if (isFinishing() || !trackEditingRefusal().isNull())
        return;
    const int index = m_parts.selectionController.editTrackMatrixIndex();
    if (index == 0)
        return startProcess(u"Extract"_s);
    if (!saveFolderIsWritable())
        return;
    const KXSelection &selection = *m_parts.selectionController.currentSelection();
    if (index == 1)
        m_parts.queue.add({jobs::JobKind::MkvEditing, selectionForRemoval(selection)});
    else
        m_parts.queue.add(
            {jobs::JobKind::Muxing, selectionForAdding(*m_parts.currentFile.file(), selection)});
}

} // namespace app
