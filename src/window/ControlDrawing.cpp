#include "window/ControlDrawing.h"

#include "window/Icons.h"
#include "window/Theme.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QStyleOption>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace window::drawing {

namespace {

constexpr double buttonRadius = 4;
constexpr double boxRadius = 3;
constexpr double ringRadius = 6;
constexpr int iconToText = 6;
constexpr int accentLine = 3;
constexpr int barHeight = 6;

void roundRect(QPainter *painter, const QRect &rect, double radius, const QColor &fill, const QColor &edge)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(fill.isValid() ? QBrush(fill) : QBrush(Qt::NoBrush));
    painter->setPen(edge.isValid() ? QPen(edge, 1) : QPen(Qt::NoPen));
    painter->drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter->restore();
}

/// One button of a row that touches its neighbours: only the outer corners are round.
void segmentRect(QPainter *painter, const QRect &rect, const QString &place, const QColor &fill,
                 const QColor &edge)
{
    QRect wide = rect;
    if (place != u"first"_s)
        wide.setLeft(wide.left() - 8);
    if (place != u"last"_s)
        wide.setRight(wide.right() + 8);
    painter->save();
    painter->setClipRect(rect);
    roundRect(painter, wide, buttonRadius, fill, edge);
    if (place != u"first"_s) {
        painter->setPen(edge);
        painter->drawLine(rect.topLeft(), rect.bottomLeft());
    }
    painter->restore();
}

void drawPrimary(const QStyleOption *option, QPainter *painter)
{
    Role role = Role::Accent;
    if (!isOn(option))
        role = Role::Groove;
    else if (option->state.testFlag(QStyle::State_Sunken))
        role = Role::AccentDown;
    else if (option->state.testFlag(QStyle::State_MouseOver))
        role = Role::AccentHover;
    roundRect(painter, option->rect, buttonRadius, color(role), {});
}

QColor buttonFill(const QStyleOption *option, bool isFlat)
{
    if (!isOn(option))
        return isFlat ? QColor() : color(Role::Window);
    if (option->state.testFlag(QStyle::State_On))
        return color(Role::Soft);
    if (option->state.testFlag(QStyle::State_Sunken))
        return color(Role::Groove);
    if (option->state.testFlag(QStyle::State_MouseOver))
        return color(Role::Side);
    return isFlat ? QColor() : color(Role::Button);
}

QRect barOf(const QRect &rect)
{
    return {rect.x(), rect.center().y() - barHeight / 2 + 1, rect.width(), barHeight};
}

} // namespace

bool has(const QWidget *widget, const char *property)
{
    return widget != nullptr && widget->property(property).toBool();
}

bool isOn(const QStyleOption *option)
{
    return option->state.testFlag(QStyle::State_Enabled);
}

void button(const QStyleOption *option, QPainter *painter, const QWidget *widget)
{
    if (has(widget, "link"))
        return;
    if (has(widget, "primary"))
        return drawPrimary(option, painter);
    const bool isFlat = has(widget, "flat");
    const bool isChosen = option->state.testFlag(QStyle::State_On);
    QColor edge = color(!isOn(option) ? Role::Line : isChosen ? Role::Accent : Role::Edge);
    const QString segment = widget == nullptr ? QString() : widget->property("segment").toString();
    if (!segment.isEmpty())
        return segmentRect(painter, option->rect, segment, buttonFill(option, false),
                           color(isOn(option) ? Role::Edge : Role::Line));
    if (isFlat)
        edge = QColor();
    roundRect(painter, option->rect, buttonRadius, buttonFill(option, isFlat), edge);
}

/// The drawing and the words, in the middle together.
void buttonLabel(const QStyleOptionButton *option, QPainter *painter)
{
    const int flags = Qt::AlignVCenter | Qt::AlignLeft | Qt::TextShowMnemonic | Qt::TextSingleLine;
    const QSize side = option->icon.isNull() ? QSize(0, 0) : option->iconSize;
    const int words = painter->fontMetrics().size(Qt::TextShowMnemonic, option->text).width();
    const int between = side.isEmpty() || option->text.isEmpty() ? 0 : iconToText;
    QRect place = option->rect;
    place.setX(option->rect.x() + (option->rect.width() - side.width() - between - words) / 2);
    place.setWidth(side.width() + between + words);
    const QRect drawing =
        QStyle::visualRect(option->direction, place,
                           QRect(QPoint(place.x(), place.y() + (place.height() - side.height()) / 2), side));
    if (!side.isEmpty())
        option->icon.paint(painter, drawing, Qt::AlignCenter, isOn(option) ? QIcon::Normal : QIcon::Disabled);
    const QRect text =
        QStyle::visualRect(option->direction, place, place.adjusted(side.width() + between, 0, 2, 0));
    painter->setPen(
        option->palette.color(isOn(option) ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText));
    painter->drawText(text, flags, option->text);
}

void field(const QStyleOption *option, QPainter *painter, const QWidget *widget)
{
    const Role edge = has(widget, "refused") ? Role::Bad : isOn(option) ? Role::Edge : Role::Line;
    roundRect(painter, option->rect, buttonRadius, color(isOn(option) ? Role::Base : Role::Window),
              color(edge));
}

void checkMark(const QStyleOption *option, QPainter *painter)
{
    const bool isChecked = option->state.testFlag(QStyle::State_On);
    const bool isPartly = option->state.testFlag(QStyle::State_NoChange);
    const QRect box(option->rect.x() + (option->rect.width() - indicator) / 2,
                    option->rect.y() + (option->rect.height() - indicator) / 2, indicator, indicator);
    if (!isChecked && !isPartly)
        return roundRect(painter, box, boxRadius, color(isOn(option) ? Role::Base : Role::Window),
                         color(isOn(option) ? Role::Edge : Role::Line));
    roundRect(painter, box, boxRadius, color(isOn(option) ? Role::Accent : Role::Off), {});
    paintIcon(*painter, box.adjusted(2, 2, -2, -2), isPartly ? u"list-remove"_s : u"dialog-ok"_s,
              color(Role::OnAccent));
}

void radio(const QStyleOption *option, QPainter *painter)
{
    const bool isChosen = option->state.testFlag(QStyle::State_On);
    const QRectF circle = QRectF(option->rect.x(), option->rect.y(), indicator, indicator);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (isChosen) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(color(isOn(option) ? Role::Accent : Role::Off));
        painter->drawEllipse(circle);
        painter->setBrush(color(Role::OnAccent));
        painter->drawEllipse(circle.adjusted(5, 5, -5, -5));
    } else {
        painter->setPen(color(isOn(option) ? Role::Edge : Role::Line));
        painter->setBrush(color(isOn(option) ? Role::Base : Role::Window));
        painter->drawEllipse(circle.adjusted(0.5, 0.5, -0.5, -0.5));
    }
    painter->restore();
}

void comboBox(const QStyleOptionComboBox *option, QPainter *painter, const QWidget *widget)
{
    QStyleOption frame = *option;
    frame.state.setFlag(QStyle::State_On, false);
    frame.state.setFlag(QStyle::State_Sunken, false);
    button(&frame, painter, widget);
    const bool isRight = option->direction == Qt::RightToLeft;
    const int x = isRight ? option->rect.left() + 8 : option->rect.right() - 23;
    const QRect chevron(x, option->rect.center().y() - 7, iconSide, iconSide);
    paintIcon(*painter, chevron, u"go-down"_s, color(isOn(option) ? Role::Text : Role::Off));
}

void tab(const QStyleOptionTab *option, QPainter *painter)
{
    if (option->state.testFlag(QStyle::State_Selected)) {
        QRect line = option->rect;
        line.setTop(line.bottom() - accentLine + 1);
        painter->fillRect(line, color(Role::Accent));
    }
}

void header(const QStyleOptionHeader *option, QPainter *painter)
{
    painter->fillRect(option->rect, color(Role::Window));
    painter->setPen(color(Role::Line));
    painter->drawLine(option->rect.bottomLeft(), option->rect.bottomRight());
}

void headerText(const QStyleOptionHeader *option, QPainter *painter)
{
    painter->setPen(color(isOn(option) ? Role::Second : Role::Off));
    painter->setFont(fontOf(Type::Second));
    const QRect place = option->rect.adjusted(space::small, 0, -space::small, 0);
    const QString text = painter->fontMetrics().elidedText(option->text, Qt::ElideRight, place.width());
    painter->drawText(place, static_cast<int>(option->textAlignment | Qt::AlignVCenter), text);
}

void progress(const QStyleOptionProgressBar *option, QPainter *painter, const QWidget *widget)
{
    const double span = std::max(1, option->maximum - option->minimum);
    QRect bar = barOf(option->rect);
    bar.setWidth(static_cast<int>(bar.width() * (option->progress - option->minimum) / span));
    if (option->direction == Qt::RightToLeft)
        bar.moveRight(option->rect.right());
    if (bar.width() > 0)
        roundRect(painter, bar, boxRadius, color(has(widget, "paused") ? Role::Edge : Role::Bar), {});
}

void groove(const QStyleOption *option, QPainter *painter)
{
    roundRect(painter, barOf(option->rect), boxRadius, color(Role::Groove), {});
}

void focusFrame(const QStyleOption *option, QPainter *painter)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(color(Role::Accent), 2));
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(QRectF(option->rect).adjusted(1, 1, -1, -1), ringRadius, ringRadius);
    painter->restore();
}

} // namespace window::drawing
