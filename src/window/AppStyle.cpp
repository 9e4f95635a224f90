#include "window/AppStyle.h"

#include "window/Icons.h"
#include "window/Theme.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr double buttonRadius = 4;
constexpr double boxRadius = 3;
constexpr int indicator = 16;
constexpr int iconSide = 16;
constexpr int textMargin = 12;
constexpr int iconToText = 6;
constexpr int accentLine = 3;
constexpr int barHeight = 6;

bool has(const QWidget *widget, const char *property)
{
    return widget != nullptr && widget->property(property).toBool();
}

bool isOn(const QStyleOption *option)
{
    return option->state.testFlag(QStyle::State_Enabled);
}

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

void drawButton(const QStyleOption *option, QPainter *painter, const QWidget *widget)
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
void drawButtonLabel(const QStyleOptionButton *option, QPainter *painter)
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

void drawField(const QStyleOption *option, QPainter *painter, const QWidget *widget)
{
    const Role edge = has(widget, "refused") ? Role::Bad : isOn(option) ? Role::Edge : Role::Line;
    roundRect(painter, option->rect, buttonRadius, color(isOn(option) ? Role::Base : Role::Window),
              color(edge));
}

void drawCheckMark(const QStyleOption *option, QPainter *painter)
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

void drawRadio(const QStyleOption *option, QPainter *painter)
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

void drawComboBox(const QStyleOptionComboBox *option, QPainter *painter, const QWidget *widget)
{
    QStyleOption frame = *option;
    frame.state.setFlag(QStyle::State_On, false);
    frame.state.setFlag(QStyle::State_Sunken, false);
    drawButton(&frame, painter, widget);
    const bool isRight = option->direction == Qt::RightToLeft;
    const int x = isRight ? option->rect.left() + 8 : option->rect.right() - 23;
    const QRect chevron(x, option->rect.center().y() - 7, iconSide, iconSide);
    paintIcon(*painter, chevron, u"go-down"_s, color(isOn(option) ? Role::Text : Role::Off));
}

void drawTab(const QStyleOptionTab *option, QPainter *painter)
{
    if (option->state.testFlag(QStyle::State_Selected)) {
        QRect line = option->rect;
        line.setTop(line.bottom() - accentLine + 1);
        painter->fillRect(line, color(Role::Accent));
    }
}

void drawHeader(const QStyleOptionHeader *option, QPainter *painter)
{
    painter->fillRect(option->rect, color(Role::Window));
    painter->setPen(color(Role::Line));
    painter->drawLine(option->rect.bottomLeft(), option->rect.bottomRight());
}

void drawHeaderText(const QStyleOptionHeader *option, QPainter *painter)
{
    painter->setPen(color(isOn(option) ? Role::Second : Role::Off));
    painter->setFont(fontOf(Type::Second));
    const QRect place = option->rect.adjusted(space::small, 0, -space::small, 0);
    const QString text = painter->fontMetrics().elidedText(option->text, Qt::ElideRight, place.width());
    painter->drawText(place, static_cast<int>(option->textAlignment | Qt::AlignVCenter), text);
}

QRect barOf(const QRect &rect)
{
    return {rect.x(), rect.center().y() - barHeight / 2 + 1, rect.width(), barHeight};
}

void drawBar(const QStyleOptionProgressBar *option, QPainter *painter, const QWidget *widget)
{
    const double span = std::max(1, option->maximum - option->minimum);
    QRect bar = barOf(option->rect);
    bar.setWidth(static_cast<int>(bar.width() * (option->progress - option->minimum) / span));
    if (option->direction == Qt::RightToLeft)
        bar.moveRight(option->rect.right());
    if (bar.width() > 0)
        roundRect(painter, bar, boxRadius, color(has(widget, "paused") ? Role::Edge : Role::Bar), {});
}

} // namespace

AppStyle::AppStyle()
    : QProxyStyle(u"Fusion"_s)
{
}

bool AppStyle::isInUse()
{
    return qobject_cast<AppStyle *>(QApplication::style()) != nullptr;
}

void AppStyle::install()
{
    if (!isInUse() && QApplication::style()->name().compare(u"fusion"_s, Qt::CaseInsensitive) == 0)
        QApplication::setStyle(new AppStyle);
}

/// One of our two palettes, whichever is nearer to what the platform has; a palette of high contrast stays.
void AppStyle::polish(QPalette &palette)
{
    if (!isHighContrast(palette))
        palette = themePalette(isDark(palette));
}

void AppStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    if (qobject_cast<QAbstractButton *>(widget) != nullptr || qobject_cast<QComboBox *>(widget) != nullptr)
        widget->setAttribute(Qt::WA_Hover);
    if (auto *field = qobject_cast<QLineEdit *>(widget))
        field->setTextMargins(5, 0, 5, 0);
}

int AppStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
    case PM_ButtonIconSize:
    case PM_SmallIconSize:
    case PM_TabBarIconSize:
        return indicator;
    case PM_DefaultFrameWidth:
        return 1;
    case PM_FocusFrameHMargin:
    case PM_FocusFrameVMargin:
        return 3;
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
        return space::small;
    case PM_ToolBarFrameWidth:
    case PM_ToolBarItemMargin:
    case PM_ToolBarItemSpacing:
    case PM_ToolBarSeparatorExtent:
    case PM_DockWidgetSeparatorExtent:
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_TabBarTabShiftVertical:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int AppStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                        QStyleHintReturn *answer) const
{
    if (hint == SH_ComboBox_Popup || hint == SH_EtchDisabledText ||
        hint == SH_DialogButtonBox_ButtonsHaveIcons)
        return 0;
    if (hint == SH_FocusFrame_AboveWidget)
        return 1; // else it is cut at the edges of the control's row
    return QProxyStyle::styleHint(hint, option, widget, answer);
}

QSize AppStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                                 const QWidget *widget) const
{
    const int least = has(widget, "small")     ? smallHeight
                      : has(widget, "primary") ? primaryHeight
                                               : controlHeight;
    const int height = std::max(least, contents.height() + space::small);
    switch (type) {
    case CT_PushButton: {
        const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
        if (button != nullptr && button->text.isEmpty())
            return {std::max(least, contents.width()), least};
        if (has(widget, "link"))
            return contents + QSize(2, 0);
        const int air = has(widget, "small") ? space::small : textMargin;
        return {contents.width() + 2 * air, height};
    }
    case CT_ComboBox:
        return {contents.width() + 8 + 8 + iconSide + 8 + 4, height}; // and what the base keeps free
    case CT_LineEdit:
        return {contents.width() + 2, height};
    case CT_CheckBox:
    case CT_RadioButton:
        return {contents.width() + indicator + space::small, std::max(contents.height(), indicator + 4)};
    case CT_TabBarTab: {
        const QSize base = QProxyStyle::sizeFromContents(type, option, contents, widget);
        return {contents.width() + space::small, std::max(44, base.height())};
    }
    case CT_HeaderSection:
        return {QProxyStyle::sizeFromContents(type, option, contents, widget).width(),
                std::max(controlHeight, contents.height() + space::small)};
    case CT_MenuBarItem:
        return {contents.width() + space::large, std::max(controlHeight, contents.height() + 6)};
    default:
        return QProxyStyle::sizeFromContents(type, option, contents, widget);
    }
}

QRect AppStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                               const QWidget *widget) const
{
    if (control == CC_ComboBox && part == SC_ComboBoxEditField)
        return visualRect(option->direction, option->rect,
                          option->rect.adjusted(space::small, 2, -(iconSide + 2 * space::small), -2));
    return QProxyStyle::subControlRect(control, option, part, widget);
}

QRect AppStyle::subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const
{
    if (element == SE_CheckBoxIndicator || element == SE_RadioButtonIndicator) {
        const QRect place(option->rect.x(), option->rect.center().y() - indicator / 2 + 1, indicator,
                          indicator);
        return visualRect(option->direction, option->rect, place);
    }
    if (element == SE_CheckBoxContents || element == SE_RadioButtonContents)
        return visualRect(option->direction, option->rect,
                          option->rect.adjusted(indicator + space::small, 0, 0, 0));
    if (element == SE_CheckBoxFocusRect || element == SE_RadioButtonFocusRect)
        return option->rect;
    return QProxyStyle::subElementRect(element, option, widget);
}

void AppStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                             const QWidget *widget) const
{
    switch (element) {
    case PE_PanelButtonCommand:
        return drawButton(option, painter, widget);
    case PE_PanelLineEdit:
    case PE_FrameLineEdit:
        // An editor in a table has no frame of its own.
        if (const auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(option);
            frame != nullptr && frame->lineWidth == 0)
            return painter->fillRect(option->rect, color(Role::Base));
        return drawField(option, painter, widget);
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
        return drawCheckMark(option, painter);
    case PE_IndicatorRadioButton:
        return drawRadio(option, painter);
    case PE_Frame:
        painter->save();
        painter->setPen(color(Role::Line));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
        return painter->restore();
    case PE_FrameFocusRect: // FocusRing draws it
    case PE_FrameDefaultButton:
    case PE_FrameTabBarBase:
    case PE_PanelStatusBar:
        return;
    default:
        return QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void AppStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                           const QWidget *widget) const
{
    switch (element) {
    case CE_PushButtonBevel:
        return drawButton(option, painter, widget);
    case CE_PushButtonLabel: {
        QStyleOptionButton label = *qstyleoption_cast<const QStyleOptionButton *>(option);
        if (has(widget, "primary"))
            label.palette.setColor(QPalette::ButtonText, color(isOn(option) ? Role::OnAccent : Role::Off));
        else if (isOn(option) && (label.state.testFlag(State_On) || has(widget, "link")))
            label.palette.setColor(QPalette::ButtonText, color(Role::Link));
        return drawButtonLabel(&label, painter);
    }
    case CE_TabBarTabShape:
        return drawTab(qstyleoption_cast<const QStyleOptionTab *>(option), painter);
    case CE_HeaderSection:
    case CE_HeaderEmptyArea:
        if (const auto *header = qstyleoption_cast<const QStyleOptionHeader *>(option))
            return drawHeader(header, painter);
        return painter->fillRect(option->rect, color(Role::Window));
    case CE_HeaderLabel:
        return drawHeaderText(qstyleoption_cast<const QStyleOptionHeader *>(option), painter);
    case CE_ProgressBarGroove:
        return roundRect(painter, barOf(option->rect), boxRadius, color(Role::Groove), {});
    case CE_ProgressBarContents:
        return drawBar(qstyleoption_cast<const QStyleOptionProgressBar *>(option), painter, widget);
    case CE_FocusFrame:
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(color(Role::Accent), 2));
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(QRectF(option->rect).adjusted(1, 1, -1, -1), 6, 6);
        return painter->restore();
    case CE_ToolBar:
        painter->fillRect(option->rect, color(Role::Window));
        painter->setPen(color(Role::Line));
        return painter->drawLine(option->rect.bottomLeft(), option->rect.bottomRight());
    default:
        return QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void AppStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                  QPainter *painter, const QWidget *widget) const
{
    if (control == CC_ComboBox) {
        if (const auto *combo = qstyleoption_cast<const QStyleOptionComboBox *>(option))
            return drawComboBox(combo, painter, widget);
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

} // namespace window
