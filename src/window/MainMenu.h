#pragma once

#include <QCoreApplication>
#include <QKeySequence>
#include <QList>

#include <functional>

class KXAppDelegate;
class QAction;
class QMainWindow;
class QMenu;

namespace window {

/// The main window's menus. It calls the delegate's operations, presses the window's buttons by their names,
/// and asks the window for what only a window has. Owned by the window; it decides nothing.
class MainMenu final
{
    Q_DECLARE_TR_FUNCTIONS(window::MainMenu)

public:
    /// What the window does itself.
    struct Commands
    {
        std::function<void()> openPreferences;
        std::function<void()> editTrackPresets;
        std::function<void()> editSettingsPresets;
        std::function<void()> convert;
        std::function<void()> pauseOrResume;
        std::function<void()> deleteSelectedJob;
        std::function<void()> clearJobs;
        std::function<void()> season;
        std::function<void()> watchFolder;
        std::function<void(int index)> showTab;
        std::function<void(int by)> nextFilm;
        std::function<void(bool forward)> nextArea;
        std::function<void()> quit;
    };

    /// Window and delegate outlive it.
    MainMenu(QMainWindow &window, KXAppDelegate &delegate, const Commands &commands);

    /// While files are probed, tracks and presets are off, with their shortcuts.
    void setIdle(bool idle);
    void setCanAdd(bool can);
    void setToolTipsTitle(const QString &title);

private:
    void addFileMenu();
    void addTrackMenu();
    void addPresetsMenu();
    void addQueueMenu();
    void addWhenDone(QMenu *menu);
    void addWindowCommands();
    void addHelpMenu();
    void showAbout();
    QMenu *addMenu(const QString &title);
    QAction *addCommand(QMenu *menu, const QString &text, const QKeySequence &keys,
                        const std::function<void()> &run);

    QMainWindow &m_window;
    KXAppDelegate &m_delegate;
    Commands m_commands;
    QAction *m_add = nullptr;
    QAction *m_toolTips = nullptr;
    QList<QMenu *> m_idleMenus;
};

} // namespace window
