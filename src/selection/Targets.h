#pragma once

#include <QStringList>

namespace selection {

/// The devices whose limits a conversion knows, in the order in which they are offered.
const QStringList &deviceNames();
/// What a target popup offers: "General", the devices, "MKV", "AVI".
const QStringList &targetNames();

} // namespace selection
