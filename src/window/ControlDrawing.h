#pragma once

class QPainter;
class QStyleOption;
class QStyleOptionButton;
class QStyleOptionComboBox;
class QStyleOptionHeader;
class QStyleOptionProgressBar;
class QStyleOptionTab;
class QWidget;

/// How AppStyle draws each kind of control, in the colours of the theme. Nothing here knows sizes or layouts.
namespace window::drawing {

constexpr int indicator = 16;
constexpr int iconSide = 16;

/// Whether the widget says so of itself; see AppStyle for the properties.
bool has(const QWidget *widget, const char *property);
bool isOn(const QStyleOption *option);

void button(const QStyleOption *option, QPainter *painter, const QWidget *widget);
void buttonLabel(const QStyleOptionButton *option, QPainter *painter);
void field(const QStyleOption *option, QPainter *painter, const QWidget *widget);
void checkMark(const QStyleOption *option, QPainter *painter);
void radio(const QStyleOption *option, QPainter *painter);
void comboBox(const QStyleOptionComboBox *option, QPainter *painter, const QWidget *widget);
void tab(const QStyleOptionTab *option, QPainter *painter);
void header(const QStyleOptionHeader *option, QPainter *painter);
void headerText(const QStyleOptionHeader *option, QPainter *painter);
void progress(const QStyleOptionProgressBar *option, QPainter *painter, const QWidget *widget);
/// The ground that a bar of progress runs along.
void groove(const QStyleOption *option, QPainter *painter);
/// The line around what has the keyboard.
void focusFrame(const QStyleOption *option, QPainter *painter);

} // namespace window::drawing
