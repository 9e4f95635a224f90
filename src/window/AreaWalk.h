#pragma once

#include <QList>

class QWidget;

namespace window {

/// Gives the keyboard to the next area, in that order, that can take it: to its first control. Without an area
/// that has it, to the first or the last.
void walkAreas(const QList<QWidget *> &areas, const QWidget *focused, bool forward);

} // namespace window
