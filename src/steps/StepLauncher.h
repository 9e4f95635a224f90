#pragma once

#include "tools/ShellLine.h"
#include "tools/ToolProcess.h"

#include <QString>
#include <QUrl>

namespace steps {

class OutputGuard;

/// One tool run of a step, as it is about to be launched.
struct Launch
{
    QString stepName;
    int pass = 0; ///< 0: the only one
    QUrl tool;
    QUrl output;
    QUrl log;
    tools::OptionList meant;                        ///< the list as its rules have it
    tools::OptionList launched;                     ///< its launch form
    QList<std::pair<QString, QString>> environment; ///< what is added to ours
};

/// Starts what the converters want started, in the one place for it. A dry run takes its place when
/// only the commands are wanted. Owned by the program.
class StepLauncher
{
public:
    virtual ~StepLauncher() = default;
    virtual tools::ToolProcessPointer startProcess(const Launch &launch,
                                                   const tools::ToolProcess::Request &request);
    /// The words of a shell line, as a process object.
    virtual tools::ToolProcessPointer startLine(const Launch &launch, const tools::ShellLine &line,
                                                const tools::ToolProcess::Request &request);
    /// Copies a file to a name of the job, over an old copy of it. False when that failed.
    virtual bool copyFile(OutputGuard &guard, const QUrl &from, const QUrl &to);
    /// Moves a file that is to be replaced out of the way, and takes the name for the job's own; null, or
    /// why that was not possible.
    virtual QString makeWay(OutputGuard &guard, const QUrl &output);
    /// An empty log for a step that is followed by what stands in it; null, or why that was not possible.
    virtual QString makeLog(OutputGuard &guard, const QUrl &log);
    /// True when nothing is really run.
    virtual bool isDryRun() const { return false; }
};

} // namespace steps
