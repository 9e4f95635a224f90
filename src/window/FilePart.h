#pragma once

#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QWidget>

class KXAppDelegate;
class KXDropScrollView;
class KXSelectionController;

namespace window {

class FilesModel;
class OpenFilesPopover;
class ToolTipBinder;
class TrackModel;

/// The upper part of the main window: the file line, the track table or the list of files to edit, and the
/// buttons that belong to them.
class FilePart final : public QWidget
{
    Q_OBJECT

public:
    FilePart(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent = nullptr);

    void refresh();
    /// The tracks of the current file, or their ticks, have changed.
    void refreshTracks();
    /// The table that files are dropped on takes the keyboard.
    void focusTable();

private:
    void showPopover(bool open);
    QWidget *fileRow();
    QWidget *toggleRow();
    QPushButton *toggle(const QString &title, const char *word, const char *tip,
                        const QString &accessibleName, void (KXSelectionController::*action)());
    void setUpTrackTable();
    void setUpFileTable();

    KXAppDelegate &m_delegate;
    ToolTipBinder &m_tips;
    QLabel *m_file;
    QPushButton *m_open;
    QPushButton *m_add;
    QPushButton *m_openFiles;
    QPushButton *m_play;
    QWidget *m_toggles;
    QStackedWidget *m_tables;
    KXDropScrollView *m_trackTable;
    KXDropScrollView *m_fileTable;
    TrackModel *m_trackModel;
    FilesModel *m_filesModel;
    OpenFilesPopover *m_popover = nullptr; ///< made when it is wanted first
};

} // namespace window
