#include "app/JobPlan.h"

#include "app/Program.h"
#include "steps/RunAsProcess.h"
#include "tools/PastableText.h"
#include "tools/ToolEnvironment.h"

using namespace Qt::StringLiterals;

namespace app {

namespace {

/// The output of the last step: those before it make what it needs.
QUrl lastOutputOf(const KXJob &job)
{
    QUrl output;
    for (const ConverterPointer &converter : job.stepConverterList()) {
        if (converter && !converter->outputFileURL().toLocalFile().isEmpty())
            output = converter->outputFileURL();
    }
    return output;
}

} // namespace

QString commandOf(const steps::Launch &launch)
{
    const tools::OptionList words = launch.line ? steps::runAsProcess(launch.launched) : launch.launched;
    auto environment = launch.environment;
    if (tools::toolFamily(launch.tool) == tools::ToolFamily::Mkv) // they abort where LANG's is not installed
        environment.append({u"LC_ALL"_s, tools::shellEnvironment(launch.tool).value(u"LC_ALL"_s)});
    return tools::pastableCommand(environment,
                                  QStringList{launch.tool.toLocalFile()} + tools::argumentsOf(words));
}

QStringList commandsBefore(const steps::Launch &launch)
{
    QStringList commands;
    for (const steps::Preparation &preparation : launch.before) {
        const QString command = tools::pastableCommand({}, preparation.words);
        commands.append(preparation.into.isEmpty()
                            ? command
                            : command + u" > "_s +
                                  tools::pastableCommand({}, {preparation.into.toLocalFile()}));
    }
    return commands;
}

QStringList commandsOf(const steps::Launch &launch)
{
    return commandsBefore(launch) << commandOf(launch);
}

/// A queue that never ticks makes them. It asks the program's own registry, so that names which other jobs
/// have spoken for are taken here too.
QList<PlannedJob> plannedJobs(Program &program, const SelectionPointer &selection)
{
    KXQueueController stage(program.contextFor(program.outputs()), program.factory(), nullptr);
    stage.addToQueue(selection);
    QList<PlannedJob> planned;
    for (const JobPointer &job : stage.qJobList()) {
        PlannedJob plan{job->jobFileName(), {}, {}, {}};
        for (const steps::Launch &launch : job->plan())
            plan.commands += commandsOf(launch);
        plan.output = lastOutputOf(*job);
        plan.problem = job->startProblem();
        planned.append(plan);
    }
    return planned;
}

} // namespace app
