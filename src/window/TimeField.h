#pragma once

#include "prefs/KXTimeValidator.h"

#include <QLineEdit>

namespace window {

/// A field for a time as HH:MM:SS that is typed over like a mask. Who wants to know what was typed listens
/// to the announcements of its validator.
class TimeField final : public QLineEdit
{
    Q_OBJECT

public:
    /// The tag tells the fields apart in the announcements. The centre must outlive the field.
    TimeField(KXNotificationCenter &center, qint64 tag, QWidget *parent = nullptr);

protected:
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void check(const QString &text);

    KXTimeValidator m_validator;
};

} // namespace window
