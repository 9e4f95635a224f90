#pragma once

#include <QSize>

namespace window {

/// Where the areas of the main window stand at a size.
struct Arrangement
{
    enum class OpenFiles { List, Rail, Hidden };

    OpenFiles openFiles = OpenFiles::List;
    int inspectorWidth = 328;
    bool inspectorIsPage = false; ///< it takes turns with the tracks
    bool allColumns = true;       ///< of the track table
    bool shortWords = false;      ///< buttons show only their drawings where they can
    bool isCompact = false;       ///< low heads and bars
    bool drawerIsStrip = false;

    bool operator==(const Arrangement &) const = default;
};

constexpr int drawerWidth = 356;
constexpr QSize smallestWindow{800, 600};
constexpr QSize wantedWindow{1280, 800};

/// Of a window of that size; the drawer is wanted or not.
Arrangement arrangementFor(const QSize &window, bool drawerIsOpen);

} // namespace window
