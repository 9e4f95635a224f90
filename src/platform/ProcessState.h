#pragma once

#include <QByteArray>

namespace platform {

/// The state letter of a process ("R", "S", "Z", ...); 0 when it can't be told.
char stateOfProcess(qint64 pid);
/// The start of a process, in whatever unit the system has; empty where it does not tell. It tells a process
/// from another one that has got its number since.
QByteArray startOfProcess(qint64 pid);

} // namespace platform
