#pragma once

#include "jobs/JobRequest.h"

#include <QStringList>

namespace cli {

/// The request for a job that works on whole files.
jobs::JobRequest requestForFiles(jobs::JobKind kind, const QStringList &paths);

/// Why a path can't be worked on; a null text when it can.
QString refusalOfFile(const QString &path);

} // namespace cli
