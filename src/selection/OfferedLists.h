#pragma once

#include <QStringList>

// What the main window's controls offer and say; none of it depends on a file.
namespace selection {

/// "128 kbps"
const QStringList &offeredAudioBitRates();
const QStringList &offeredFrameRates();
/// The names that stand in the program's texts; what a popup offers is targetNames().
const QStringList &devicesInTexts();
/// What the track edit of that index does; null for an index of none.
QString textOfTrackEdit(int index);

} // namespace selection
