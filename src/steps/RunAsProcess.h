#pragma once

#include "tools/OptionItem.h"

namespace steps {

/// The launch rule "run as a process": the words of a line that a shell would leave in its background, for a
/// process object that runs them in the foreground. Such a line has no exit status, and what it starts
/// outlives us. The redirection into the log and all behind it goes: the process object keeps the log.
tools::OptionList runAsProcess(const tools::OptionList &line);

} // namespace steps
