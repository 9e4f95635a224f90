#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

class KXSelectionController;

namespace app {
class JobStarter;
}

namespace window {

class RadioMatrix;
class ToolTipBinder;

/// Extracting, removing and adding tracks, with what that means, and the button that starts it.
class EditTracksBox final : public QGroupBox
{
    Q_OBJECT

public:
    EditTracksBox(KXSelectionController &controller, app::JobStarter &starter, ToolTipBinder &tips,
                  QWidget *parent = nullptr);

    void refresh();

private:
    KXSelectionController &m_controller;
    app::JobStarter &m_starter;
    ToolTipBinder &m_tips;
    RadioMatrix *m_actions;
    QLabel *m_text;
    QPushButton *m_go;
};

} // namespace window
