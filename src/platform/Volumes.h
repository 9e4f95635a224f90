#pragma once

#include <QUrl>

#include <optional>

namespace platform {

/// Asks about the volumes behind folders. Owned by the program; replaced in tests.
class Volumes
{
public:
    virtual ~Volumes() = default;
    /// Free bytes for this user on the volume that holds the folder; no value when it can't be read.
    virtual std::optional<qint64> freeSize(const QUrl &folder) const;
};

} // namespace platform
