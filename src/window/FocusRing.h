#pragma once

#include <QFocusFrame>
#include <QPointer>

namespace window {

/// The line around the control that has the keyboard, a little off it, always drawn. One for the program;
/// only where our own style draws the controls.
class FocusRing final : public QObject
{
    Q_OBJECT

public:
    explicit FocusRing(QObject *parent);
    ~FocusRing() override;

private:
    void follow(QWidget *focused);

    QPointer<QFocusFrame> m_frame;
};

} // namespace window
