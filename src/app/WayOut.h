#pragma once

#include <QtGlobal>

#include <functional>

namespace app {

/// Calls one function once, on whatever way the program ends that it notices: quitting, a signal that was
/// heard, and the loss of the display, on which Qt ends the process from within. Everything is still there
/// then. What must outlive the program is stored in that function. One per program; main thread only.
class WayOut final
{
public:
    explicit WayOut(std::function<void()> leave);
    /// Where nobody has called it before.
    ~WayOut();
    Q_DISABLE_COPY_MOVE(WayOut)

    void leave();

private:
    std::function<void()> m_leave;
};

} // namespace app
