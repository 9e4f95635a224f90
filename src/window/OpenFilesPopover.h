#pragma once

#include <QFrame>
#include <QListWidget>
#include <QPushButton>

class KXSelectionController;

namespace app {
class OpenQueue;
}

namespace window {

class RadioMatrix;
class ToolTipBinder;

/// The list of opened files below its button: pick the one to work on, remove one, and say whether presets
/// are applied as they become jobs.
class OpenFilesPopover final : public QFrame
{
    Q_OBJECT

public:
    OpenFilesPopover(app::OpenQueue &openQueue, KXSelectionController &controller, ToolTipBinder &tips,
                     QWidget *parent = nullptr);

    void showBelow(QWidget *button);

private:
    void refresh();

    app::OpenQueue &m_openQueue;
    KXSelectionController &m_controller;
    QListWidget *m_list;
    RadioMatrix *m_matrix;
    QPushButton *m_remove;
};

} // namespace window
