#pragma once

#include <QString>
#include <QWidget>

class QAbstractButton;
class QBoxLayout;
class QLabel;

namespace window {

/// Gives a control the word by which tests find it and the name that a screen reader says.
template <typename Control>
Control *named(Control *control, const char *word, const QString &accessibleName)
{
    control->setObjectName(QString::fromLatin1(word));
    control->setAccessibleName(accessibleName);
    return control;
}

/// A label for a control, whose underlined letter leads to it.
QLabel *labelFor(QWidget *control, const QString &text);
/// A quiet line of explanation that wraps.
QLabel *hint(const QString &text = {});
/// The text in the palette's warning red, or as usual.
void setReddened(QWidget *widget, bool red);
/// A row of controls without margins; null stands for the space that grows.
QWidget *rowOf(const QList<QWidget *> &controls);

} // namespace window
