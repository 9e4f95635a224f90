#pragma once

#include <QLabel>
#include <QPushButton>
#include <QWidget>

class KXAppDelegate;

namespace window {

class ToolTipBinder;

/// The folder that can be watched, and the buttons that choose it and start watching.
class WatchRow final : public QWidget
{
    Q_OBJECT

public:
    WatchRow(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent = nullptr);

    void refresh();

private:
    KXAppDelegate &m_delegate;
    ToolTipBinder &m_tips;
    QLabel *m_folder;
    QPushButton *m_choose;
    QPushButton *m_start;
};

} // namespace window
