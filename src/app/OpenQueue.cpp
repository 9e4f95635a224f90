#include "app/OpenQueue.h"

#include "selection/KXSelectionController.h"

#include <algorithm>

namespace app {

namespace {

/// What a person can choose for a film, as one text to be compared.
QString choicesOf(const KXVideoFile &file, const KXSelection &selection)
{
    QStringList parts{selection.outputName(), selection.userVideoBitRate(), selection.userWidth(),
                      selection.userPassNumber()};
    for (const TrackPointer &track : file.trackList()) {
        parts << QString::number(track->trackSelected()) << track->trackLanguage() << track->trackTitle()
              << QString::number(track->trackDefaultFlag()) << QString::number(track->trackForcedFlag())
              << track->trackFilePath();
    }
    return parts.join(QChar(0));
}

} // namespace

OpenQueue::OpenQueue(KXSelectionController &controller)
    : m_controller(controller)
{
    m_controller.setOpenFiles(this);
}

OpenQueue::~OpenQueue()
{
    m_controller.setOpenFiles(nullptr);
}

void OpenQueue::replaceAll(const QList<OpenedFile> &entries)
{
    m_entries = entries;
    m_selectedRow = -1; // what is current belongs to none of them
    Q_EMIT entriesChanged();
    if (!m_entries.isEmpty())
        makeCurrent(0);
    updatePopover();
}

void OpenQueue::select(int row)
{
    if (row < 0 || row >= m_entries.size() || row == m_selectedRow)
        return;
    makeCurrent(row);
}

OpenFilesBefore OpenQueue::snapshot() const
{
    OpenFilesBefore before{m_entries, m_selectedRow};
    if (m_selectedRow < 0 || m_selectedRow >= m_entries.size())
        return before;
    before.entries[m_selectedRow].videoFile = m_controller.currentVideoFile()->copy();
    before.entries[m_selectedRow].videoSelection = m_controller.currentSelection()->copy();
    return before;
}

bool OpenQueue::hasChoicesByHand() const
{
    const QList<OpenedFile> entries = snapshot().entries;
    return std::any_of(entries.begin(), entries.end(), [](const OpenedFile &entry) {
        return !entry.asShown.isNull() && entry.asShown != choicesOf(*entry.videoFile, *entry.videoSelection);
    });
}

void OpenQueue::choicesAreUsed()
{
    if (m_selectedRow >= 0 && m_selectedRow < m_entries.size())
        m_entries[m_selectedRow].asShown =
            choicesOf(*m_controller.currentVideoFile(), *m_controller.currentSelection());
}

void OpenQueue::bringBack(const OpenFilesBefore &before)
{
    replaceAll(before.entries);
    select(before.row);
}

void OpenQueue::makeCurrent(int row)
{
    m_controller.makeCurrent(m_entries.at(row)); // keeps what was current in the row that is still selected
    m_selectedRow = row;
    if (m_entries.at(row).asShown.isNull())
        m_entries[row].asShown =
            choicesOf(*m_controller.currentVideoFile(), *m_controller.currentSelection());
    Q_EMIT selectedRowChanged();
}

void OpenQueue::removeSelecetedItemFromOpenQ()
{
    if (m_entries.size() >= 2 && m_selectedRow >= 0) {
        const int removed = m_selectedRow;
        takeSelected();
        makeCurrent(std::max(removed - 1, 0));
    }
    updatePopover();
}

void OpenQueue::takeSelected()
{
    if (m_selectedRow < 0 || m_selectedRow >= m_entries.size())
        return;
    m_entries.removeAt(m_selectedRow);
    m_selectedRow = -1;
    Q_EMIT entriesChanged();
}

void OpenQueue::removeRows(const QList<int> &rows)
{
    QList<int> fromTheEnd = rows;
    std::sort(fromTheEnd.begin(), fromTheEnd.end(), std::greater<>());
    for (const int row : fromTheEnd) {
        m_entries.removeAt(row);
        if (row < m_selectedRow)
            --m_selectedRow;
    }
    if (!rows.isEmpty())
        Q_EMIT entriesChanged();
    updatePopover();
}

void OpenQueue::updatePopover()
{
    const bool several = m_entries.size() >= 2;
    if (!several)
        closeOpenQ();
    setCanOpenQueuePopover(several);
}

void OpenQueue::showOpenQ()
{
    Q_EMIT popoverWanted(true);
}

void OpenQueue::closeOpenQ()
{
    Q_EMIT popoverWanted(false);
}

void OpenQueue::setCanOpenQueuePopover(bool can)
{
    if (m_canOpenQueuePopover == can)
        return;
    m_canOpenQueuePopover = can;
    Q_EMIT canOpenQueuePopoverChanged();
}

void OpenQueue::storeCurrent(const VideoFilePointer &file, const SelectionPointer &selection)
{
    if (m_selectedRow < 0 || m_selectedRow >= m_entries.size())
        return;
    m_entries[m_selectedRow].videoFile = file;
    m_entries[m_selectedRow].videoSelection = selection;
}

} // namespace app
