#include "window/TimeField.h"

#include <QApplication>

namespace window {

TimeField::TimeField(KXNotificationCenter &center, qint64 tag, QWidget *parent)
    : QLineEdit(parent)
    , m_validator(center, tag)
{
    setMaximumWidth(fontMetrics().horizontalAdvance(QStringLiteral("00:00:00")) * 2);
    connect(this, &QLineEdit::textEdited, this, &TimeField::check);
}

void TimeField::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    m_validator.controlTextShouldBeginEditing(text(), {selectionStart(), selectedText().size()});
}

void TimeField::focusOutEvent(QFocusEvent *event)
{
    QLineEdit::focusOutEvent(event);
    m_validator.controlIsValidObject(QVariant::fromValue<QObject *>(this), text());
}

/// The announcement comes before the answer, and its receivers may set the text: ours is set last.
void TimeField::check(const QString &text)
{
    const prefs::FieldEdit answer = m_validator.controlTextDidChange(text, cursorPosition());
    if (answer.beep)
        QApplication::beep();
    setText(answer.text);
    setCursorPosition(static_cast<int>(answer.caret));
}

} // namespace window
