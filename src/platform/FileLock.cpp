#include "platform/FileLock.h"

#include <QElapsedTimer>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

constexpr useconds_t pause = 20000; // microseconds

/// A volume that knows no locks can't keep programs apart; that must not keep the only one from its work.
bool lockNow(int descriptor)
{
    return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 || (errno != EWOULDBLOCK && errno != EINTR);
}

} // namespace

FileLock::FileLock(const QString &path)
    : m_path(QFile::encodeName(path))
{
}

/// The file goes before the lock does: who waits at it finds that it is no longer there, and makes a new one.
FileLock::~FileLock()
{
    if (m_descriptor >= 0)
        ::unlink(m_path.constData());
    close();
}

void FileLock::close()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

bool FileLock::tryLock(int patienceMs)
{
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        m_descriptor = ::open(m_path.constData(),
                              O_RDONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
        if (m_descriptor < 0) {
            m_wasBusy = false;
            return false;
        }
        if (lockNow(m_descriptor) && isAtPath())
            return true;
        close();
        m_wasBusy = true;
        if (clock.elapsed() >= patienceMs)
            return false;
        ::usleep(pause);
    }
}

bool FileLock::isAtPath() const
{
    struct stat here = {};
    struct stat there = {};
    return ::fstat(m_descriptor, &here) == 0 && ::lstat(m_path.constData(), &there) == 0 &&
           here.st_dev == there.st_dev && here.st_ino == there.st_ino;
}

} // namespace platform
