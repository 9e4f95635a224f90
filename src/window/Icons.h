#pragma once

#include "window/Theme.h"

#include <QIcon>

class QPainter;

namespace window {

/// One of our drawings in the colour of a role. It follows the palette: a switch from light to dark leaves no
/// stale picture.
QIcon icon(const QString &name, Role role = Role::Text);
/// The same, painted at once.
void paintIcon(QPainter &painter, const QRect &rect, const QString &name, const QColor &ink);

} // namespace window
