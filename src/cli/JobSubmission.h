#pragma once

#include "cli/Command.h"
#include "jobs/JobRequest.h"

#include <functional>
#include <optional>

namespace cli {

class Session;

/// None when the file fails.
using MaybeRequest = std::optional<jobs::JobRequest>;
/// Makes the request for one file, or a status that says how it failed.
using RequestMaker = std::function<MaybeRequest(const QString &path, ExitStatus &status)>;

/// The way of every command that makes one job per file: the save folder is checked, each file gets
/// its request, clashing outputs are refused before anything runs, then the jobs run (or are only
/// printed). A wrong command line stops everything; a file that fails lets the others go on.
ExitStatus submitEachFile(Session &session, const RequestMaker &makeRequest);

/// Makes all requests of a command at once.
using RequestsMaker = std::function<QList<jobs::JobRequest>(ExitStatus &worst)>;

/// The same way for requests that are not one per file.
ExitStatus submit(Session &session, const RequestsMaker &makeRequests);

} // namespace cli
