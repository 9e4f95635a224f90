#pragma once

#include "jobs/JobRequest.h"
#include "jobs/KXJob.h"

#include <QList>
#include <QString>

namespace cli {

class Session;

/// The jobs of the requests, which nothing starts. They hold on to the registry.
QList<JobPointer> plannedJobs(Session &session, steps::OutputRegistry &outputs,
                              const QList<jobs::JobRequest> &requests);

/// Goes through jobs without running a tool: to print their commands, and to know before anything
/// runs where two of them would write the same file.
class DryRunPrinter final
{
public:
    explicit DryRunPrinter(Session &session);

    /// Prints the commands of the jobs that are asked for; false when a job would refuse to start.
    bool print(const QList<jobs::JobRequest> &requests);
    /// A sentence about two jobs that want one output; a null text when there are none.
    QString clash(const QList<jobs::JobRequest> &requests);

private:
    Session &m_session;
};

} // namespace cli
