#pragma once

#include "platform/HolderFile.h"

#include <QString>

#include <memory>

namespace platform {

/// A folder for what is needed for a while, private to its user (0700) and locked as long as this object
/// lives. It goes with the object, with the keeper where we are gone without a word, and where that is gone
/// too, at the next start.
class TemporaryFolder final
{
public:
    /// Makes it at once, under a name of its own.
    explicit TemporaryFolder(const QString &parent);
    ~TemporaryFolder();
    Q_DISABLE_COPY_MOVE(TemporaryFolder)

    bool isValid() const { return m_lock != nullptr; }
    QString path() const { return m_path; }

    /// Removes such folders of this user whose holders are gone.
    static void clearLeft(const QString &parent);

private:
    bool makeAt(const QString &path);

    QString m_path;
    std::unique_ptr<HolderFile> m_lock;
};

/// So many small letters and digits, for names that nobody else has.
QString randomLetters(int count);

} // namespace platform
