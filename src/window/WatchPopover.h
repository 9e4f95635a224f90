#pragma once

#include "window/Controls.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QLineEdit>

class KXAppDelegate;

namespace window {

class ToolTipBinder;

/// What is needed to watch a folder, below its button: the folder, the two presets, and why it can't begin.
class WatchPopover final : public QFrame
{
    Q_OBJECT

public:
    WatchPopover(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent);

    void showBelow(QWidget *button);
    void refresh();

private:
    void buildRows();
    void takeExisting(bool taken);
    static void showNames(QComboBox *popup, const QStringList &names, int index);

    KXAppDelegate &m_delegate;
    ToolTipBinder &m_tips;
    ElidedLabel *m_folder;
    QPushButton *m_choose;
    QComboBox *m_tracks;
    QComboBox *m_settings;
    QCheckBox *m_existing;
    QLabel *m_mark;
    InkLabel *m_reason;
    QPushButton *m_start;
};

} // namespace window
