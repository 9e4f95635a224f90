#include "window/Controls.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPalette>

namespace window {

namespace {

/// Red that can be read on the window's own background, light or dark.
QColor redOn(const QColor &background)
{
    return background.lightnessF() > 0.5 ? QColor(0xb0, 0x10, 0x20) : QColor(0xff, 0x7b, 0x72);
}

} // namespace

QLabel *labelFor(QWidget *control, const QString &text)
{
    auto *label = new QLabel(text);
    label->setBuddy(control);
    return label;
}

QLabel *hint(const QString &text)
{
    auto *label = new QLabel(text);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    label->setFont(font);
    return label;
}

void setReddened(QWidget *widget, bool red)
{
    if (!red) {
        widget->setPalette(QPalette());
        return;
    }
    QPalette palette = widget->palette();
    const QColor color = redOn(palette.color(QPalette::Window));
    palette.setColor(QPalette::Active, QPalette::WindowText, color);
    palette.setColor(QPalette::Inactive, QPalette::WindowText, color);
    widget->setPalette(palette);
}

QWidget *rowOf(const QList<QWidget *> &controls)
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget *control : controls) {
        if (control == nullptr)
            layout->addStretch(1);
        else
            layout->addWidget(control);
    }
    return row;
}

} // namespace window
