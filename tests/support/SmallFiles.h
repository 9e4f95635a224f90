#pragma once

#include <QtGlobal>

#include <csignal>
#include <sys/resource.h>

namespace support {

/// As long as it lives no file of this process may grow beyond so many bytes: like a full volume, for every
/// user.
class SmallFiles final
{
public:
    explicit SmallFiles(rlim_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0)
            qFatal("can't limit the size of files");
    }
    ~SmallFiles()
    {
        if (::setrlimit(RLIMIT_FSIZE, &m_before) != 0)
            qFatal("can't lift the limit on the size of files");
        std::signal(SIGXFSZ, m_handler);
    }
    Q_DISABLE_COPY_MOVE(SmallFiles)

private:
    void (*m_handler)(int);
    rlimit m_before = {};
};

} // namespace support
