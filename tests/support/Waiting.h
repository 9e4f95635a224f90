#pragma once

#include <QByteArray>

#include <functional>

namespace support {

/// Serves events until the condition holds; false when it still doesn't after that time.
bool waitFor(const std::function<bool()> &condition, int milliseconds = 5000);
/// True while a process of that id runs; one that only waits to be reaped does not.
bool runs(qint64 pid);
/// The state letter the system gives ("R", "S", "T", "Z", ...); 0 when there is no such process.
char stateOf(qint64 pid);

} // namespace support
