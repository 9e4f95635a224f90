#include "window/LayoutRules.h"

namespace window {

namespace {

constexpr int wideEnoughForAll = 1120;
constexpr int wideEnoughForRail = 900;
constexpr int wideEnoughForDrawer = 1024;
constexpr int highEnough = 680;
constexpr int narrowInspector = 304;

} // namespace

Arrangement arrangementFor(const QSize &window, bool drawerIsOpen)
{
    Arrangement made;
    made.drawerIsStrip = drawerIsOpen && window.width() < wideEnoughForDrawer;
    const int available = window.width() - (drawerIsOpen && !made.drawerIsStrip ? drawerWidth : 0);
    made.isCompact = window.height() < highEnough;
    if (available >= wideEnoughForAll)
        return made;
    made.allColumns = false;
    made.shortWords = true;
    if (available >= wideEnoughForRail) {
        made.openFiles = Arrangement::OpenFiles::Rail;
        made.inspectorWidth = narrowInspector;
        return made;
    }
    made.openFiles = Arrangement::OpenFiles::Hidden;
    made.inspectorIsPage = true;
    return made;
}

} // namespace window
