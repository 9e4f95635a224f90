#pragma once

#include "cli/Command.h"
#include "selection/KXSelection.h"

#include <functional>

namespace cli {

class Session;

/// Makes the selection of one file; null, with a status, when the file fails.
using SelectionMaker = std::function<SelectionPointer(const QString &path, ExitStatus &status)>;

/// The way of every command that makes one job per file: the save folder is checked, each file gets
/// its selection, clashing outputs are refused before anything runs, then the jobs run (or are only
/// printed). A wrong command line stops everything; a file that fails lets the others go on.
ExitStatus submitEachFile(Session &session, const SelectionMaker &makeSelection);

/// Makes all selections of a command at once.
using SelectionsMaker = std::function<QList<SelectionPointer>(ExitStatus &worst)>;

/// The same way for selections that are not one per file.
ExitStatus submit(Session &session, const SelectionsMaker &makeSelections);

} // namespace cli
