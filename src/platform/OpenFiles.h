#pragma once

#include <QString>

namespace platform {

/// Whether some program holds the file open for writing. False where the system does not tell: of files of
/// other users, on shares, on macOS.
bool isOpenForWriting(const QString &path);

} // namespace platform
