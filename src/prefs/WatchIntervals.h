#pragma once

namespace prefs {

/// The paces of watch mode, in milliseconds.
struct WatchIntervals
{
    int poll = 5000;  ///< between two looks at the folder
    int toggle = 400; ///< until one window takes the place of the other
    int start = 500;  ///< until what was opened is started
};

} // namespace prefs
