#pragma once

#include "selection/Targets.h"
#include "tools/OptionItem.h"

class KXSelection;

namespace engines {

using selection::OutputKind;

/// A converter's "appName" says which kind it writes: "Pollenta" is MP4, "Tessaray" MKV, "Marbleon" AVI.
/// Unknown for any other text.
OutputKind outputKindNamed(const QString &appName);
/// The converter's word for a target: "MKV" and "AVI" have kinds of their own, everything else is MP4.
QString appNameForDevice(const QString &device);

/// The level arguments of a device; none for any other target.
tools::OptionList levelArguments(const QString &device);
/// Writes the caps of the selection's device into it: "userVideoBitRate" in kb/s and "userWidth" in pixels.
/// They hold for an MP4 whose picture is re-encoded; anything else stays as it was chosen.
void applyDeviceCaps(KXSelection &selection, OutputKind kind);

} // namespace engines
