#pragma once

#include <QString>

namespace platform {

/// Keeps programs apart that would change the same thing at the same time, by a file that is locked while one
/// is at it and gone afterwards. The system lets go of the lock when its holder ends, however it ends: a file
/// that was left behind, empty or not, blocks no other program.
class FileLock final
{
public:
    explicit FileLock(const QString &path);
    ~FileLock();
    Q_DISABLE_COPY_MOVE(FileLock)

    /// Waits so long for another holder. False when that one still has it, and at once when the file can't be
    /// made or opened.
    bool tryLock(int patienceMs);
    /// Whether tryLock() failed because another holder had it.
    bool wasBusy() const { return m_wasBusy; }

private:
    bool isAtPath() const;
    void close();

    QByteArray m_path;
    int m_descriptor = -1;
    bool m_wasBusy = false;
};

} // namespace platform
