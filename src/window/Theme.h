#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

/// The look of the program's windows: its colours by their use, its sizes of type and its spaces. Widgets ask
/// for a role and never name a colour.
namespace window {

enum class Role {
    Window,
    Side,
    Base,
    Button,
    Line,
    Edge,
    Text,
    Second,
    Off,
    Accent,
    AccentHover,
    AccentDown,
    OnAccent,
    Link,
    Soft,
    Ok,
    OkSoft,
    Warn,
    WarnSoft,
    Bad,
    BadSoft,
    Video,
    VideoSoft,
    Audio,
    AudioSoft,
    Subtitle,
    SubtitleSoft,
    Groove,
    Bar,
};

/// Whether text is lighter than what it stands on.
bool isDark(const QPalette &palette);
/// The application's palette decides between light and dark. Under a style of the platform its own colours
/// are taken where it has them.
QColor color(Role role);
QColor color(Role role, const QPalette &palette);
/// The palette that goes with our own style.
QPalette themePalette(bool dark);
/// More contrast than that is asked for: then a palette is left as it is.
bool isHighContrast(const QPalette &palette);

enum class Type { Title, Pane, Head, Body, Second, Badge, Mono };
QFont fontOf(Type type);

namespace space {
constexpr int tiny = 4;
constexpr int small = 8;
constexpr int middle = 12;
constexpr int large = 16;
constexpr int huge = 24;
} // namespace space

constexpr int controlHeight = 28;
constexpr int smallHeight = 24;
constexpr int primaryHeight = 36;

} // namespace window
