#pragma once

#include <QtGlobal>

#include <functional>

class QProcess;

namespace tools {

/// Makes the process the leader of a group of its own before it runs its program, so that a
/// terminal's interrupt reaches only us and we can end, stop and continue all of it.
/// What alsoInChild does must be safe between fork and exec.
void leadOwnGroup(QProcess &process, const std::function<void()> &alsoInChild = {});

/// Sends a signal to the group that the process belongs to, or, where that is our own group or none,
/// to the process alone. Does nothing for ids below 2.
void signalGroupOf(qint64 pid, int signal);

/// Kills the whole group that the process leads or led, and the process itself.
void killGroupLedBy(qint64 leader);

/// True when the id belongs to a process that has ended and only waits to be reaped. One that fell to
/// us when its shell ended is reaped; what a process object started is left to that object.
bool isEndedZombie(qint64 pid);

} // namespace tools
