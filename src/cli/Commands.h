#pragma once

#include "cli/Command.h"

#include <memory>
#include <vector>

namespace cli {

/// Every command, in the order in which help lists them.
const std::vector<std::unique_ptr<Command>> &allCommands();
/// Null when there is none of that name.
const Command *commandNamed(const QString &name);

/// Runs a whole command line (without the program's name) and answers how it ended.
ExitStatus run(const QStringList &words);

} // namespace cli
