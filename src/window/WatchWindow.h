#pragma once

#include "app/WatchLog.h"

#include <QLabel>
#include <QListWidget>
#include <QPropertyAnimation>
#include <QWidget>

class KXAppDelegate;

namespace window {

/// Takes the main window's place while a folder is watched: the folder, what is running, and the log. The
/// two windows fade into each other.
class WatchWindow final : public QWidget
{
    Q_OBJECT

public:
    /// The main window outlives this one.
    WatchWindow(KXAppDelegate &delegate, QWidget &mainWindow);
    ~WatchWindow() override;

    /// Takes the main window's place, or gives it back.
    void swap(bool watching);

Q_SIGNALS:
    /// It was closed, as the program would be.
    void quitWanted();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void fade(QWidget *from, QWidget *to);
    void addLine(const app::WatchLog::Line &line);
    void refresh();

    KXAppDelegate &m_delegate;
    QWidget &m_mainWindow;
    QLabel *m_folder;
    QListWidget *m_log;
    QPropertyAnimation m_fadeOut;
    QPropertyAnimation m_fadeIn;
};

} // namespace window
