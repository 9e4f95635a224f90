#include "steps/StepLauncher.h"

#include "steps/OutputGuard.h"

using namespace Qt::StringLiterals;

namespace steps {

tools::ToolProcessPointer StepLauncher::startProcess(const Launch &,
                                                     const tools::ToolProcess::Request &request)
{
    return tools::ToolProcess::start(request);
}

tools::ToolProcessPointer StepLauncher::startLine(const Launch &, const tools::ShellLine &,
                                                  const tools::ToolProcess::Request &request)
{
    return tools::ToolProcess::start(request);
}

bool StepLauncher::copyFile(OutputGuard &guard, const QUrl &from, const QUrl &to)
{
    return guard.files().copy(from, to);
}

QString StepLauncher::makeWay(OutputGuard &guard, const QUrl &output)
{
    return guard.makeWayFor(output);
}

QString StepLauncher::makeLog(OutputGuard &guard, const QUrl &log)
{
    if (!guard.hasClaimed(log))
        return u"The log %1 is not the job's own, so nothing was started."_s.arg(log.toLocalFile());
    const QString problem = guard.files().begin(log);
    if (problem.isNull())
        guard.files().write(log, {});
    return problem;
}

} // namespace steps
