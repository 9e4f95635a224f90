#include "window/IntegerField.h"

#include <QApplication>

namespace window {

IntegerField::IntegerField(QWidget *parent)
    : QLineEdit(parent)
{
    connect(this, &QLineEdit::textEdited, this, &IntegerField::check);
}

void IntegerField::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    m_validator.controlTextShouldBeginEditing(text());
}

void IntegerField::check(const QString &text)
{
    const prefs::FieldEdit answer = m_validator.controlTextDidChange(text, cursorPosition());
    if (answer.beep) {
        QApplication::beep();
        setText(answer.text);
        setCursorPosition(static_cast<int>(answer.caret));
        return;
    }
    Q_EMIT typed(answer.text);
}

} // namespace window
