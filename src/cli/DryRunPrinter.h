#pragma once

#include "selection/KXSelection.h"

#include <QList>
#include <QString>

namespace cli {

class Session;

/// Goes through jobs without running a tool: to print their commands, and to know before anything
/// runs where two of them would write the same file.
class DryRunPrinter final
{
public:
    explicit DryRunPrinter(Session &session);

    /// Prints the commands of these selections' jobs; false when a job would refuse to start.
    bool print(const QList<SelectionPointer> &selections);
    /// A sentence about two jobs that want one output; a null text when there are none.
    QString clash(const QList<SelectionPointer> &selections);

private:
    Session &m_session;
};

} // namespace cli
