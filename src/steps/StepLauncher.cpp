#include "steps/StepLauncher.h"

#include "steps/OutputGuard.h"

using namespace Qt::StringLiterals;

namespace steps {

tools::ToolProcessPointer StepLauncher::startProcess(const Launch &,
                                                     const tools::ToolProcess::Request &request)
{
    return tools::ToolProcess::start(request);
}

QString StepLauncher::startShellLine(const Launch &, const tools::ShellLine &,
                                     const std::function<QString()> &run)
{
    return run();
}

bool StepLauncher::copyFile(OutputGuard &guard, const QUrl &from, const QUrl &to)
{
    return guard.files().copy(from, to);
}

QString StepLauncher::makeWay(OutputGuard &guard, const QUrl &output)
{
    return guard.makeWayFor(output);
}

/// Made here, so that the shell never writes through what somebody put at its name meanwhile. Where it can't
/// be made for another reason, the shell says why.
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
