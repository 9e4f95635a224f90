#pragma once

#include <QtGlobal>

#include <unistd.h>

namespace support {

/// Another user for as long as it lives, where we are root: root is kept out by no permissions. For
/// everybody else it does nothing. Start no programs meanwhile.
class Unprivileged final
{
public:
    Unprivileged()
    {
        if (::geteuid() == 0) // also the real user, whom access() asks
            m_changed = ::setreuid(65534, 0) == 0 && ::seteuid(65534) == 0;
    }
    ~Unprivileged()
    {
        if (m_changed && (::seteuid(0) != 0 || ::setreuid(0, 0) != 0))
            qFatal("can't be root again");
    }
    Q_DISABLE_COPY_MOVE(Unprivileged)

private:
    bool m_changed = false;
};

} // namespace support
