#pragma once

#include <QtGlobal>

class QProcess;

namespace tools
{

/// Makes the process the leader of a group of its own before it runs its program, so that a
/// terminal's interrupt reaches only us and we can end, stop and continue all of it.
void leadOwnGroup(QProcess &process);

/// Sends a signal to the group that the process belongs to, or, where that is our own group or none,
/// to the process alone. Does nothing for ids below 2.
void signalGroupOf(qint64 pid, int signal);

/// True when the id belongs to a process that has ended and only waits to be reaped; ours are reaped.
bool isEndedZombie(qint64 pid);

} // namespace tools
