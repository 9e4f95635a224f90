#pragma once

#include "window/LayoutRules.h"
#include "window/MainMenu.h"
#include "window/MessageBars.h"

#include <QMainWindow>
#include <QTimer>

#include <memory>

class KXAppDelegate;
class KXPreferencesController;
class QHBoxLayout;
class QStackedWidget;

namespace window {

class ActionBar;
class EditFilesPanel;
class EmptyState;
class FilmHeader;
class Inspector;
class Notices;
class OpenFilesList;
class QueueDrawer;
class QueueStrip;
class SeasonPage;
class Sheets;
class Thumbnails;
class ToolRow;
class ToolTipBinder;
class TracksPane;
class WatchPopover;

/// The main window: tool row, messages, the open films, the tracks and settings of the current one, what will
/// come out, and the queue's drawer. It shows the properties of the delegate's program and calls its
/// operations; it decides nothing. It does not own them.
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow(KXAppDelegate &delegate, KXPreferencesController &preferences);
    ~MainWindow() override;

    MessageBars &bars() { return *m_bars; }

Q_SIGNALS:
    /// The user asks to close the window or the program.
    void quitWanted();

protected:
    void closeEvent(QCloseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    QWidget *content();
    QWidget *filmPage();
    MainMenu::Commands menuCommands();
    void connectParts();
    void connectAreas();
    void scheduleRefresh();
    void refresh();
    void showCurrent();
    void showFirstFilm();
    void refreshFilm();
    void arrange();
    void showOpenFiles();
    void showDrag(const QList<QUrl> &files);
    void endDrag();
    void showTab(int index);
    void showSeason(bool shown);
    void start(const QString &title);
    void showWatchPopover();

    KXAppDelegate &m_delegate;
    ToolTipBinder *m_tips;
    Thumbnails *m_thumbnails;
    ToolRow *m_tools = nullptr;
    MessageBars *m_bars = nullptr;
    Notices *m_notices = nullptr;
    Sheets *m_sheets = nullptr;
    QStackedWidget *m_pages = nullptr;
    EmptyState *m_empty = nullptr;
    QHBoxLayout *m_film = nullptr;
    SeasonPage *m_season = nullptr;
    OpenFilesList *m_openFiles = nullptr;
    FilmHeader *m_header = nullptr;
    TracksPane *m_tracks = nullptr;
    QWidget *m_inspectorLine = nullptr;
    Inspector *m_inspector = nullptr;
    EditFilesPanel *m_editFiles = nullptr;
    ActionBar *m_actions = nullptr;
    QueueDrawer *m_drawer = nullptr;
    QueueStrip *m_strip = nullptr;
    WatchPopover *m_watch = nullptr;
    std::unique_ptr<MainMenu> m_menu;
    QWidget *m_whileIdle = nullptr; ///< what is off while files are probed
    Arrangement m_arrangement;
    bool m_openFilesWanted = true;
    bool m_drawerWanted = false;
    bool m_wantsSeason = false;
    bool m_refreshScheduled = false;
};

} // namespace window
