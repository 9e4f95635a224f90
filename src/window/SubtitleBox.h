#pragma once

#include <QGroupBox>
#include <QPushButton>

class KXSelectionController;

namespace window {

class RadioMatrix;
class ToolTipBinder;

/// What becomes of the selected subtitles, and the button that sends one to the subtitle application.
class SubtitleBox final : public QGroupBox
{
    Q_OBJECT

public:
    SubtitleBox(KXSelectionController &controller, ToolTipBinder &tips, QWidget *parent = nullptr);

    void refresh();
    /// Null switches sending on; else it is off and says why.
    void setSendingRefusal(const QString &refusal);

Q_SIGNALS:
    /// The button with that title was pressed.
    void startWanted(const QString &title);

private:
    KXSelectionController &m_controller;
    ToolTipBinder &m_tips;
    RadioMatrix *m_subtitles;
    QPushButton *m_send;
    QString m_sendingRefusal;
};

} // namespace window
