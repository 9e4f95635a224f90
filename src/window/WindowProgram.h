#pragma once

#include "app/Interrupts.h"
#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "app/WayOut.h"
#include "prefs/KXPreferencesController.h"
#include "window/FileChooser.h"
#include "window/MainWindow.h"
#include "window/NativeDesktop.h"
#include "window/SheetAlerts.h"
#include "window/WatchWindow.h"

#include <QObject>
#include <QThread>
#include <QTimer>

#include <memory>

namespace window {

/// Makes everything of the window program once and ties it together: the program, its delegate, the windows,
/// and how all of it ends.
class WindowProgram final : public QObject
{
    Q_OBJECT

public:
    explicit WindowProgram(const app::Program::Options &options);
    ~WindowProgram() override;

    /// Loads the settings, shows the window, unpacks the tools and takes the files in: the window is painted
    /// first, and files wait for the tools.
    void start(const QStringList &paths);
    /// The tools are there, as far as they can be.
    bool isReady() const { return m_isReady; }
    void quit();
    KXAppDelegate &delegate() { return m_delegate; }
    MainWindow &mainWindow() { return m_window; }
    /// Made when it is wanted first.
    WatchWindow &watchWindow();
    SheetAlerts &alerts() { return m_alerts; }

protected:
    /// Files that the desktop opens while we run.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void getReady();
    void beReady();
    void swapWindows(bool watching);
    std::function<void()> showBar(const platform::Alert &alert);
    void sayProblem(const QString &problem);
    void leave();

    struct Look;
    std::unique_ptr<Look> m_look;
    SheetAlerts m_alerts;
    FileChooser m_chooser;
    NativeDesktop m_desktop;
    app::Program m_program;
    KXAppDelegate m_delegate;
    KXPreferencesController m_preferencesController;
    MainWindow m_window;
    std::unique_ptr<WatchWindow> m_watchWindow;
    app::Interrupts m_interrupts;
    app::WayOut m_wayOut; ///< before all the rest goes
    QTimer m_untilReady;
    std::unique_ptr<QThread> m_unpacking;
    bool m_isReady = false;
};

} // namespace window
