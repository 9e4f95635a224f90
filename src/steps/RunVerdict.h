#pragma once

#include "steps/Outcome.h"
#include "tools/ToolProcess.h"

#include <QList>
#include <QUrl>

#include <functional>

namespace steps {

class FailureCause;

/// How a run of a tool ended, by its exit status; the tool's words only say why. Without a process it was not
/// started.
Outcome outcomeOfRun(const tools::ToolProcess *run, const QUrl &tool, const FailureCause &cause);

/// What is wrong with the outputs of a run that ended well, or a null text. Where none is there, the wanted
/// one is named. Another function says where each of them lies.
QString problemWithOutputs(const QUrl &tool, const QList<QUrl> &outputs, const QUrl &wanted,
                           const std::function<QUrl(const QUrl &)> &fileOf);

} // namespace steps
