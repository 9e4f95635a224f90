#pragma once

#include "selection/OpenFiles.h"

#include <QList>
#include <QObject>

class KXSelectionController;

namespace app {

/// What was open at one time, and which of it was current.
struct OpenFilesBefore
{
    QList<OpenedFile> entries;
    int row = -1;
};

/// The opened videos that wait to be worked on, one of which is the current file. Owned by the program.
/// It replaces what is current in the selection controller; it never loads a file.
class OpenQueue final : public QObject, public OpenFiles
{
    Q_OBJECT

public:
    /// The controller must outlive the list.
    explicit OpenQueue(KXSelectionController &controller);
    ~OpenQueue() override;

    const QList<OpenedFile> &entries() const { return m_entries; }
    /// The row of the current file; -1 when there is none.
    int selectedRow() const { return m_selectedRow; }
    bool canOpenQueuePopover() const { return m_canOpenQueuePopover; }

    /// Takes the place of all entries; the first becomes current.
    void replaceAll(const QList<OpenedFile> &entries);
    /// The entries as they stand, with what is chosen for the current file now.
    OpenFilesBefore snapshot() const;
    /// Whether something was chosen for one of them since it was shown first: ticks, languages, titles,
    /// flags, tracks that were added, the result's name, the numbers of the conversion.
    bool hasChoicesByHand() const;
    /// What is chosen for the current film is in a job now: nothing of it is lost any more.
    void choicesAreUsed();
    /// Puts a snapshot in the place of all entries.
    void bringBack(const OpenFilesBefore &before);
    /// Shows another entry; what was current is kept in its own. A row beyond the end changes nothing.
    void select(int row);
    /// Removes the selected entry and shows the one before it. The last one stays. The misspelling is meant.
    void removeSelecetedItemFromOpenQ();
    /// Takes the selected entry out without showing another one, when its video became a job.
    void takeSelected();
    /// Takes these rows out; the selected entry must not be among them.
    void removeRows(const QList<int> &rows);

    void showOpenQ();
    int openFileCount() const override { return static_cast<int>(m_entries.size()); }
    void setCanOpenQueuePopover(bool can) override;
    void closeOpenQ() override;
    void storeCurrent(const VideoFilePointer &file, const SelectionPointer &selection) override;

Q_SIGNALS:
    void entriesChanged();
    void selectedRowChanged();
    void canOpenQueuePopoverChanged();
    void popoverWanted(bool open);

private:
    void makeCurrent(int row);
    void updatePopover();

    KXSelectionController &m_controller;
    QList<OpenedFile> m_entries;
    int m_selectedRow = -1;
    bool m_canOpenQueuePopover = false;
};

} // namespace app
