#pragma once

#include "selection/Refusals.h"
#include "window/Controls.h"

#include <optional>

class KXAppDelegate;

namespace window {

class Segments;
class ToolTipBinder;

/// Extracting, removing and adding tracks without a conversion, with what that means and why it can't be
/// done. It can be folded into one line.
class EditTracksPane final : public QWidget
{
    Q_OBJECT

public:
    EditTracksPane(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent = nullptr);

    void refresh();
    void setFolded(bool folded);

Q_SIGNALS:
    /// The pointer or the keyboard is in it, with that choice; or not any more.
    void inUse(std::optional<selection::TrackEdit> edit);

protected:
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    QWidget *headLine();
    QWidget *makeCard();
    selection::TrackEdit edit() const;
    void tellUse();

    KXAppDelegate &m_delegate;
    ToolTipBinder &m_tips;
    QPushButton *m_fold;
    QLabel *m_foldHint;
    QPushButton *m_add;
    Segments *m_actions;
    ElidedLabel *m_reason;
    QLabel *m_text;
    QPushButton *m_go;
    QWidget *m_card;
};

} // namespace window
