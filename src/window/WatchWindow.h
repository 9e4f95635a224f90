#pragma once

#include "app/WatchLog.h"
#include "window/Badges.h"
#include "window/Controls.h"

#include <QElapsedTimer>
#include <QListWidget>
#include <QPropertyAnimation>
#include <QTimer>

class KXAppDelegate;
class QVBoxLayout;

namespace window {

/// Takes the main window's place while a folder is watched: whether it is looked at, what came of the films,
/// and each film with its state, the newest first. The two windows fade into each other.
class WatchWindow final : public QWidget
{
    Q_OBJECT

public:
    /// The main window outlives this one.
    WatchWindow(KXAppDelegate &delegate, QWidget &mainWindow);
    ~WatchWindow() override;

    /// Takes the main window's place, or gives it back.
    void swap(bool watching);
    void comeForward();

Q_SIGNALS:
    /// It was closed, as the program would be.
    void quitWanted();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void addMenus(QVBoxLayout *layout);
    QWidget *stateBar();
    QWidget *countRow();
    QWidget *foot();
    void fade(QWidget *from, QWidget *to);
    void addLine(const app::WatchLog::Line &line);
    void looked(bool isThere);
    void refresh();
    void refreshState();

    KXAppDelegate &m_delegate;
    QWidget &m_mainWindow;
    Ground *m_state;
    QLabel *m_eye;
    InkLabel *m_stateText;
    ElidedLabel *m_folder;
    BadgeRow *m_counts;
    ElidedLabel *m_presets;
    QListWidget *m_log;
    ElidedLabel *m_place;
    QPushButton *m_pause;
    QAction *m_pauseAction = nullptr;
    QTimer m_second;
    QElapsedTimer m_lastLook;
    bool m_isThere = true;
    QPropertyAnimation m_fadeOut;
    QPropertyAnimation m_fadeIn;
};

} // namespace window
