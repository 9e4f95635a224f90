#pragma once

#include "window/Controls.h"

#include <QTabBar>
#include <QToolBar>

namespace window {

class ToolTipBinder;

/// The row at the top: opening, the two tabs, watching, the preferences.
class ToolRow final : public QToolBar
{
    Q_OBJECT

public:
    explicit ToolRow(const QStringList &tabs, ToolTipBinder &tips, QWidget *parent = nullptr);

    QTabBar *tabs() const { return m_tabs; }
    QPushButton *watchButton() const { return m_watch; }
    void showTab(int index);
    /// The list of open files: whether it can be shown, whether it is, how many there are.
    void setOpenFiles(bool can, bool shown, int count);
    void setIdle(bool idle);
    void setShortWords(bool shortWords);

Q_SIGNALS:
    void openWanted();
    void openFilesWanted(bool shown);
    void tabChosen(int index);
    void watchWanted();
    void preferencesWanted();

private:
    QPushButton *m_open;
    QPushButton *m_openFiles;
    QTabBar *m_tabs;
    QPushButton *m_watch;
    QPushButton *m_preferences;
};

} // namespace window
