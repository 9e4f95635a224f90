#pragma once

#include "window/Section.h"

#include <QPushButton>

class KXSelectionController;

namespace window {

class RadioMatrix;
class ToolTipBinder;

/// What becomes of the selected subtitles, and the button that sends one to the subtitle application.
class SubtitleBox final : public Section
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
    OptionCaption *m_mux;
    OptionCaption *m_burn;
    QPushButton *m_send;
    QLabel *m_sendHint;
    QString m_sendingRefusal;
};

} // namespace window
