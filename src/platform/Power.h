#pragma once

#include <QString>

namespace platform {

/// Where the machine has its power from. None: it has no battery. Unreadable: the system does not say.
enum class PowerSource { Mains, Battery, None, Unreadable };

/// What is known of the machine's power. Owned by the program; tests hand in one of their own.
class Power
{
public:
    virtual ~Power() = default;
    virtual PowerSource source() const;
};

/// The same, of a folder in which the system shows its supplies, one folder each.
PowerSource powerSourceIn(const QString &folder);

} // namespace platform
