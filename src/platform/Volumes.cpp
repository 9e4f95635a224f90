#include "platform/Volumes.h"

#include <QFileInfo>
#include <QStorageInfo>

namespace platform {

std::optional<qint64> Volumes::freeSize(const QUrl &folder) const
{
    const QFileInfo info(folder.toLocalFile());
    if (!info.isDir())
        return std::nullopt;
    const QStorageInfo storage(info.absoluteFilePath());
    if (!storage.isValid() || !storage.isReady())
        return std::nullopt;
    return storage.bytesAvailable();
}

} // namespace platform
