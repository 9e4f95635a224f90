#pragma once

#include "selection/KXSelection.h"
#include "steps/Launch.h"

#include <QStringList>

namespace app {

class Program;

/// A tool's run as a command that can be pasted into a shell.
QString commandOf(const steps::Launch &launch);
/// What must be done before it, as such commands: the lists and copies that it reads.
QStringList commandsBefore(const steps::Launch &launch);
/// Both, in their order.
QStringList commandsOf(const steps::Launch &launch);

/// One job as the queue would make it now: where its result would lie and what would be run.
struct PlannedJob
{
    QString fileName;
    QUrl output; ///< empty where the job has none of its own
    QStringList commands;
    QString problem; ///< why it would not start; null when it would
};

/// The jobs of a selection that carries its job type. Names are those that the queue would give now; nothing
/// is started, and nothing is kept.
QList<PlannedJob> plannedJobs(Program &program, const SelectionPointer &selection);

} // namespace app
