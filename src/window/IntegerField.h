#pragma once

#include "prefs/KXIntegerValidator.h"

#include <QLineEdit>

namespace window {

/// A field for whole numbers; anything else is refused with a beep.
class IntegerField final : public QLineEdit
{
    Q_OBJECT

public:
    explicit IntegerField(QWidget *parent = nullptr);

Q_SIGNALS:
    /// An accepted text was typed.
    void typed(const QString &text);

protected:
    void focusInEvent(QFocusEvent *event) override;

private:
    void check(const QString &text);

    KXIntegerValidator m_validator;
};

} // namespace window
