#pragma once

#include <QString>

class KXPresetSettings;

namespace presets {

/// Fills a new preset in for a device: one pass of H.264 at the original's bit rate and size, stereo sound as
/// AAC, surround sound copied with a stereo version beside it where the device plays AC3, else as AAC stereo,
/// subtitles as tracks. A null text, or a sentence that names the devices when there is none of that name.
QString makeReadyFor(const QString &device, KXPresetSettings &preset);

} // namespace presets
