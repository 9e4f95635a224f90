#include "window/Theme.h"

#include "window/AppStyle.h"

#include <QFontDatabase>
#include <QGuiApplication>

#include <array>
#include <cmath>

namespace window {

namespace {

struct Pair
{
    QRgb light;
    QRgb dark;
};

/// In the order of the roles.
constexpr std::array<Pair, 29> table{{
    {0xf4f5f7, 0x23262b}, // Window
    {0xebedf0, 0x1e2125}, // Side
    {0xffffff, 0x191b1f}, // Base
    {0xffffff, 0x2c3036}, // Button
    {0xd5d9df, 0x383d45}, // Line
    {0x868e99, 0x757d89}, // Edge
    {0x1a1d21, 0xe9ebee}, // Text
    {0x545c66, 0xaab2bd}, // Second
    {0x68707a, 0x8e96a1}, // Off
    {0x1565c0, 0x2472c8}, // Accent
    {0x1159ad, 0x1f66b5}, // AccentHover
    {0x0d478b, 0x1a589c}, // AccentDown
    {0xffffff, 0xffffff}, // OnAccent
    {0x1159ad, 0x7cb8f5}, // Link
    {0xe2edfa, 0x1d3550}, // Soft
    {0x1b7a3d, 0x6fcf8e}, // Ok
    {0xe3f3e8, 0x1b3325}, // OkSoft
    {0x855300, 0xf0b64c}, // Warn
    {0xfff1d6, 0x3a2e14}, // WarnSoft
    {0xb3261e, 0xff8a80}, // Bad
    {0xfbe6e4, 0x43211f}, // BadSoft
    {0x5b3cc4, 0xb9a6ff}, // Video
    {0xece8fb, 0x2e2850}, // VideoSoft
    {0x0b6e6e, 0x6fd3d0}, // Audio
    {0xdff2f1, 0x173536}, // AudioSoft
    {0x8a4b08, 0xf0b27a}, // Subtitle
    {0xfbebdd, 0x3b2a1a}, // SubtitleSoft
    {0xdde1e6, 0x3a3f47}, // Groove
    {0x1565c0, 0x7cb8f5}, // Bar
}};

QColor fromTable(Role role, bool dark)
{
    const Pair &pair = table.at(static_cast<size_t>(role));
    return QColor::fromRgb(dark ? pair.dark : pair.light);
}

double luminance(const QColor &color)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor &one, const QColor &other)
{
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// What a platform's palette says for a role; invalid where it has no word for it.
QColor fromPalette(Role role, const QPalette &palette)
{
    switch (role) {
    case Role::Window:
    case Role::Side:
        return palette.color(QPalette::Window);
    case Role::Base:
        return palette.color(QPalette::Base);
    case Role::Button:
        return palette.color(QPalette::Button);
    case Role::Text:
        return palette.color(QPalette::WindowText);
    case Role::Accent:
        return palette.color(QPalette::Highlight);
    case Role::OnAccent:
        return palette.color(QPalette::HighlightedText);
    case Role::Link:
        return palette.color(QPalette::Link);
    default:
        return {};
    }
}

void setAll(QPalette &palette, QPalette::ColorRole role, const QColor &color)
{
    palette.setColor(QPalette::All, role, color);
}

void setDisabled(QPalette &palette, bool dark)
{
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, fromTable(Role::Off, dark));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, fromTable(Role::Line, dark));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, fromTable(Role::Off, dark));
}

} // namespace

bool isDark(const QPalette &palette)
{
    return luminance(palette.color(QPalette::Window)) < luminance(palette.color(QPalette::WindowText));
}

bool isHighContrast(const QPalette &palette)
{
    constexpr double nearlyAll = 18.5; // black on white is 21; an ordinary scheme stays below
    return contrast(palette.color(QPalette::Window), palette.color(QPalette::WindowText)) > nearlyAll &&
           contrast(palette.color(QPalette::Button), palette.color(QPalette::ButtonText)) > nearlyAll;
}

QColor color(Role role)
{
    return color(role, QGuiApplication::palette());
}

QColor color(Role role, const QPalette &palette)
{
    if (!AppStyle::isInUse() || isHighContrast(palette)) {
        if (const QColor own = fromPalette(role, palette); own.isValid())
            return own;
    }
    return fromTable(role, isDark(palette));
}

QPalette themePalette(bool dark)
{
    const auto of = [dark](Role role) { return fromTable(role, dark); };
    QPalette palette(of(Role::Button), of(Role::Window));
    setAll(palette, QPalette::Window, of(Role::Window));
    setAll(palette, QPalette::WindowText, of(Role::Text));
    setAll(palette, QPalette::Base, of(Role::Base));
    setAll(palette, QPalette::AlternateBase, of(Role::Window));
    setAll(palette, QPalette::Text, of(Role::Text));
    setAll(palette, QPalette::Button, of(Role::Button));
    setAll(palette, QPalette::ButtonText, of(Role::Text));
    setAll(palette, QPalette::BrightText, of(Role::OnAccent));
    setAll(palette, QPalette::PlaceholderText, of(Role::Second));
    setAll(palette, QPalette::Mid, of(Role::Line));
    setAll(palette, QPalette::Midlight, of(Role::Line));
    setAll(palette, QPalette::Light, of(Role::Base));
    setAll(palette, QPalette::Dark, of(Role::Edge));
    setAll(palette, QPalette::Shadow, of(Role::Edge));
    setAll(palette, QPalette::Highlight, of(Role::Accent));
    setAll(palette, QPalette::HighlightedText, of(Role::OnAccent));
    setAll(palette, QPalette::Link, of(Role::Link));
    setAll(palette, QPalette::LinkVisited, of(Role::Link));
    setAll(palette, QPalette::ToolTipBase, of(Role::Base));
    setAll(palette, QPalette::ToolTipText, of(Role::Text));
    setDisabled(palette, dark);
    return palette;
}

QFont fontOf(Type type)
{
    if (type == Type::Mono) {
        QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        fixed.setPointSizeF(QFontDatabase::systemFont(QFontDatabase::GeneralFont).pointSizeF() * 0.92);
        return fixed;
    }
    static const std::array<double, 6> factors{1.54, 1.23, 1, 1, 0.92, 0.85};
    QFont font = QGuiApplication::font();
    const double factor = factors.at(static_cast<size_t>(type));
    if (font.pixelSize() > 0)
        font.setPixelSize(static_cast<int>(std::lround(font.pixelSize() * factor)));
    else
        font.setPointSizeF(font.pointSizeF() * factor);
    const bool isBold =
        type == Type::Title || type == Type::Pane || type == Type::Head || type == Type::Badge;
    font.setWeight(isBold ? QFont::DemiBold : QFont::Normal);
    return font;
}

} // namespace window
