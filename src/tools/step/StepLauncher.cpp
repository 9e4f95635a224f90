#include "tools/step/StepLauncher.h"

#include "tools/step/OutputGuard.h"

#include <QFile>

namespace step {

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

bool StepLauncher::copyFile(const QUrl &from, const QUrl &to)
{
    QFile::remove(to.toLocalFile());
    return QFile::copy(from.toLocalFile(), to.toLocalFile());
}

QString StepLauncher::makeWay(OutputGuard &guard, const QUrl &output)
{
    return guard.makeWayFor(output);
}

} // namespace step
