#include "platform/OpenFiles.h"

#include <QFile>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace platform {

#if defined(F_SETLEASE) && defined(F_SETSIG)
/// A lease for reading is refused exactly while some program has the file open for writing. Who opens it
/// while we hold the lease makes the system signal us, which must be one that does nothing.
bool isOpenForWriting(const QString &path)
{
    const int file =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW);
    if (file < 0)
        return false;
    const bool isRefused =
        ::fcntl(file, F_SETSIG, SIGURG) == 0 && ::fcntl(file, F_SETLEASE, F_RDLCK) != 0 && errno == EAGAIN;
    ::close(file); // gives the lease back
    return isRefused;
}
#else
bool isOpenForWriting(const QString & /*path*/)
{
    return false;
}
#endif

} // namespace platform
