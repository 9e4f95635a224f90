#pragma once

#include "tools/OptionItem.h"

#include <QString>

class KXSelection;

namespace engines {

/// The kind of file a conversion writes.
enum class OutputKind {
    Pollenta, ///< MP4 / M4V
    Tessaray, ///< MKV
    Marbleon, ///< AVI
    Unknown
};

/// From the kind's name; Unknown for any other text.
OutputKind outputKindNamed(const QString &appName);
/// The kind's name for a target: "MKV" and "AVI" have kinds of their own, everything else is MP4.
QString appNameForDevice(const QString &device);

/// The level arguments of a device (none for others), and its caps written into the selection:
/// "userVideoBitRate" in kb/s and "userWidth" in pixels.
tools::OptionList applyDeviceRule(KXSelection &selection);

} // namespace engines
