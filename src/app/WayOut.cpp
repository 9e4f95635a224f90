#include "app/WayOut.h"

#include <cstdlib>
#include <utility>

namespace app {

namespace {

WayOut *presentWayOut = nullptr;

/// The process is ended by exit(), with the program as it was.
void leaveAtExit()
{
    if (presentWayOut != nullptr)
        presentWayOut->leave();
}

} // namespace

WayOut::WayOut(std::function<void()> leave)
    : m_leave(std::move(leave))
{
    static const bool isRegistered = std::atexit(leaveAtExit) == 0;
    Q_UNUSED(isRegistered)
    presentWayOut = this;
}

WayOut::~WayOut()
{
    leave();
    presentWayOut = nullptr;
}

void WayOut::leave()
{
    if (const auto once = std::exchange(m_leave, {}))
        once();
}

} // namespace app
