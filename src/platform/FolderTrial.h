#pragma once

#include <QUrl>

namespace platform {

/// Writes a small hidden file into a folder and removes it. 0 when that went well, else the system's error
/// number.
int errorOfWritingIn(const QUrl &folder);

} // namespace platform
