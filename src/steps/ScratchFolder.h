#pragma once

#include "platform/TemporaryFolder.h"

#include <QString>

#include <memory>

namespace steps {

/// The temporary-files folder of this process, private to its user (0700), with one folder per job in
/// it. Made on first use, gone with the object. Owned by the program.
class ScratchFolder final
{
public:
    /// A new folder for one job; the path ends in "/". An empty text when none can be made.
    QString makeJobFolder();
    /// Removes a folder made by makeJobFolder() with all that is in it; other paths are left alone.
    void removeJobFolder(const QString &folder);
    /// Removes the temporary-files folders of programs that are gone.
    static void clearLeftOvers();

private:
    std::unique_ptr<platform::TemporaryFolder> m_folder;
    int m_jobs = 0;
};

} // namespace steps
