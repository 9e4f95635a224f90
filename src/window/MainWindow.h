#pragma once

#include "window/MainMenu.h"

#include <QLabel>
#include <QMainWindow>
#include <QTabBar>

#include <memory>

class KXAppDelegate;
class KXPreferencesController;
class QPushButton;
class QStackedWidget;

namespace window {

class AudioBox;
class EditFilesPanel;
class EditTracksBox;
class FilePart;
class ProbingRow;
class QueueDrawer;
class StatusLine;
class SubtitleBox;
class ToolTipBinder;
class VideoBox;
class WatchRow;

/// The main window: file line, tracks, the two tabs' controls, and the queue's drawer. It shows the
/// properties of the delegate's program and calls its operations; it decides nothing. It does not own them.
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow(KXAppDelegate &delegate, KXPreferencesController &preferences);
    ~MainWindow() override;

Q_SIGNALS:
    /// The user asks to close the window or the program.
    void quitWanted();

protected:
    void closeEvent(QCloseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    QWidget *content();
    QWidget *conversionPage();
    QWidget *startRow();
    MainMenu::Commands menuCommands();
    void connectParts();
    void scheduleRefresh();
    void refresh();
    void refreshConvertButton();
    void showTab(int index);
    void start(const QString &title);
    void openDocument(const QString &name);
    void openSelectionsSheet();
    void openSettingsSheet();
    void openPreferences();
    QString sendingRefusal() const;

    KXAppDelegate &m_delegate;
    KXPreferencesController &m_preferences;
    ToolTipBinder *m_tips;
    QTabBar *m_tabs = nullptr;
    QStackedWidget *m_pages = nullptr;
    FilePart *m_filePart = nullptr;
    ProbingRow *m_probing = nullptr;
    VideoBox *m_video = nullptr;
    AudioBox *m_audio = nullptr;
    SubtitleBox *m_subtitles = nullptr;
    EditTracksBox *m_editTracks = nullptr;
    WatchRow *m_watch = nullptr;
    EditFilesPanel *m_editFiles = nullptr;
    QPushButton *m_convert = nullptr;
    QueueDrawer *m_drawer = nullptr;
    StatusLine *m_status = nullptr;
    std::unique_ptr<MainMenu> m_menu;
    QWidget *m_whileIdle = nullptr; ///< what is off while files are probed
    bool m_refreshScheduled = false;
};

} // namespace window
