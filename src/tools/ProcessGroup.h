#pragma once

#include <QtGlobal>

#include <functional>

class QProcess;

namespace tools {

/// Starts a program as the leader of a group of its own, so that a terminal's interrupt reaches only us and
/// we can end, stop and continue all of it. The group ends with us, however we end: our keeper knows it
/// before the program runs. Answers the id of the leader; 0 when none was made. What alsoInChild does must be
/// safe between fork and exec.
qint64 startInOwnGroup(QProcess &process, const QString &program, const QStringList &arguments,
                       const std::function<void()> &alsoInChild = {});

/// Sends a signal to the group that the process belongs to, or, where that is our own group or none,
/// to the process alone. Does nothing for ids below 2.
void signalGroupOf(qint64 pid, int signal);

enum class Leader { Runs, Ended };
/// Kills the whole group that the process leads or led. The process itself only while it runs: the number of one
/// that has ended may be another's.
void killGroupLedBy(qint64 leader, Leader state);

/// True when the id belongs to a process that has ended and only waits to be reaped. One that fell to
/// us when its shell ended is reaped; what a process object started is left to that object.
bool isEndedZombie(qint64 pid);

} // namespace tools
