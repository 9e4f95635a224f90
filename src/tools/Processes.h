#pragma once

#include <QString>

namespace tools {

// Processes by the id that a shell printed. What is not a whole number other than 0 is no id: to the system 0
// is our own group.

/// Whether a process has this id, to the letter. One that has ended and only waits to be reaped does not run.
bool processRuns(const QString &pid);

enum class ProcessSignal { Kill, Stop, Continue };
/// Sends it to that process alone; one that is gone does not matter. False, and nothing done, for what is no
/// id.
bool signalProcess(const QString &pid, ProcessSignal signal);

} // namespace tools
