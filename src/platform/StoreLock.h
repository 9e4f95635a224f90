#pragma once

#include "platform/FileLock.h"
#include "platform/HolderFile.h"

#include <QString>

#include <memory>

namespace platform {

/// Keeps programs apart that would write the same file of ours, also where the volume's own locks are good
/// for nothing: a lock of the system, and within it a file that says who is at it. Both are gone with the
/// object, and neither outlives its process for others. Held for moments only.
class StoreLock final
{
public:
    /// Beside the file of that path, under its name with ".lock" and ".holder".
    explicit StoreLock(const QString &path);

    /// Waits so long for another program. A null text, or why it can't be had, to stand in a sentence.
    QString take(int patienceMs);
    /// Whether it is still ours: a machine that slept may find that others went on.
    bool isHeld() const { return m_holder.isHeld(); }

private:
    QString m_holderPath;
    FileLock m_lock;
    HolderFile m_holder;
};

} // namespace platform
