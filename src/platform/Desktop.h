#pragma once

#include <QString>

namespace platform {

/// What a desktop does for a program that works unattended. This one does nothing, as a terminal or a
/// desktop without such services; the window hands in one that does. Owned by the code that makes it.
class Desktop
{
public:
    virtual ~Desktop() = default;
    /// Keeps the machine from sleeping until allowSleep(); asked again, nothing more happens.
    virtual void keepAwake(const QString & /*reason*/) {}
    virtual void allowSleep() {}
    /// Sends the machine to sleep.
    virtual void sleep() {}
    /// Tells the person once, wherever they are.
    virtual void tell(const QString & /*title*/, const QString & /*text*/) {}
};

} // namespace platform
