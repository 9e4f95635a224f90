#pragma once

class QWidget;

namespace platform {
class DefaultsStore;
}

namespace window {

/// Where a window stood and what it showed, as it is remembered under a key of its own.
struct WindowLayout
{
    bool showsOpenFiles = true;
};

/// Puts the window where it was; a place that is on no screen any more is dropped.
WindowLayout restorePlace(QWidget &window, const platform::DefaultsStore &store);
void rememberPlace(const QWidget &window, const WindowLayout &layout, platform::DefaultsStore &store);

} // namespace window
