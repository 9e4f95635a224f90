#include "window/AppStyle.h"

#include "window/ControlDrawing.h"
#include "window/Icons.h"
#include "window/Theme.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPainter>
#include <QStyleOption>

using namespace Qt::StringLiterals;

namespace window {

namespace {

using drawing::has;
using drawing::iconSide;
using drawing::indicator;
using drawing::isOn;

constexpr int textMargin = 12;

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
        return drawing::button(option, painter, widget);
    case PE_PanelLineEdit:
    case PE_FrameLineEdit:
        // An editor in a table has no frame of its own.
        if (const auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(option);
            frame != nullptr && frame->lineWidth == 0)
            return painter->fillRect(option->rect, color(Role::Base));
        return drawing::field(option, painter, widget);
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
        return drawing::checkMark(option, painter);
    case PE_IndicatorRadioButton:
        return drawing::radio(option, painter);
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
        return drawing::button(option, painter, widget);
    case CE_PushButtonLabel: {
        QStyleOptionButton label = *qstyleoption_cast<const QStyleOptionButton *>(option);
        if (has(widget, "primary"))
            label.palette.setColor(QPalette::ButtonText, color(isOn(option) ? Role::OnAccent : Role::Off));
        else if (isOn(option) && (label.state.testFlag(State_On) || has(widget, "link")))
            label.palette.setColor(QPalette::ButtonText, color(Role::Link));
        return drawing::buttonLabel(&label, painter);
    }
    case CE_TabBarTabShape:
        return drawing::tab(qstyleoption_cast<const QStyleOptionTab *>(option), painter);
    case CE_HeaderSection:
    case CE_HeaderEmptyArea:
        if (const auto *header = qstyleoption_cast<const QStyleOptionHeader *>(option))
            return drawing::header(header, painter);
        return painter->fillRect(option->rect, color(Role::Window));
    case CE_HeaderLabel:
        return drawing::headerText(qstyleoption_cast<const QStyleOptionHeader *>(option), painter);
    case CE_ProgressBarGroove:
        return drawing::groove(option, painter);
    case CE_ProgressBarContents:
        return drawing::progress(qstyleoption_cast<const QStyleOptionProgressBar *>(option), painter, widget);
    case CE_FocusFrame:
        return drawing::focusFrame(option, painter);
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
            return drawing::comboBox(combo, painter, widget);
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

} // namespace window
