#include "window/AreaWalk.h"

#include <QWidget>

namespace window {

namespace {

QWidget *firstControlOf(const QWidget *area)
{
    for (QWidget *control : area->findChildren<QWidget *>()) {
        if (control->isVisible() && control->isEnabled() && control->focusPolicy() & Qt::TabFocus)
            return control;
    }
    return nullptr;
}

} // namespace

void walkAreas(const QList<QWidget *> &areas, const QWidget *focused, bool forward)
{
    const qsizetype count = areas.size();
    qsizetype at = forward ? -1 : count;
    for (qsizetype i = 0; i < count; ++i) {
        if (focused != nullptr && areas.at(i)->isAncestorOf(focused))
            at = i;
    }
    for (qsizetype step = 1; step <= count; ++step) {
        const qsizetype next = (at + (forward ? step : -step) + 2 * count) % count;
        if (QWidget *control = firstControlOf(areas.at(next)))
            return control->setFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    }
}

} // namespace window
