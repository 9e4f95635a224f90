#include "platform/Pipe.h"

#include <QtGlobal>

#include <fcntl.h>
#include <unistd.h>

namespace platform {

bool makePipe(int (&ends)[2])
{
#ifdef Q_OS_LINUX
    return ::pipe2(ends, O_CLOEXEC) == 0; // at once: another thread may start a program right now
#else
    return ::pipe(ends) == 0 && ::fcntl(ends[0], F_SETFD, FD_CLOEXEC) == 0 &&
           ::fcntl(ends[1], F_SETFD, FD_CLOEXEC) == 0;
#endif
}

} // namespace platform
