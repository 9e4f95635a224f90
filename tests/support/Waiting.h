#pragma once

#include <QByteArray>

#include <functional>

namespace support {

/// Far longer than anything takes that a test waits for, also on a machine that others keep busy: a wait ends
/// with what it waits for, so a long limit costs nothing. Only what must not happen is waited for in vain,
/// and shortly.
inline constexpr int patience = 60000;

/// Serves events until the condition holds; false when it still doesn't after that time. Looks often at
/// first, then more seldom, so that a condition that looks at every process of the system leaves the machine
/// to the tools.
bool waitFor(const std::function<bool()> &condition, int milliseconds = patience);
/// True while a process of that id runs; one that only waits to be reaped does not.
bool runs(qint64 pid);
/// The state letter the system gives ("R", "S", "T", "Z", ...); 0 when there is no such process.
char stateOf(qint64 pid);

} // namespace support
