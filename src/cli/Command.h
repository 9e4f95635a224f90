#pragma once

#include <QString>
#include <QStringList>

namespace cli {

class Session;

/// How a run of the program ends, as its exit status.
enum class ExitStatus {
    AllWell = 0,
    Warnings = 1,
    Failed = 2,
    WrongUsage = 64,
    Interrupted = 130,
    Unread = 141, ///< the reader of the results has gone away
    Terminated = 143
};

/// Of several files the worst counts.
inline ExitStatus worse(ExitStatus a, ExitStatus b)
{
    return static_cast<int>(a) > static_cast<int>(b) ? a : b;
}

/// One operation of the command line: what it is called, what it takes, and what it does. Help is made
/// from it. Commands hold no state between runs.
class Command
{
public:
    virtual ~Command() = default;
    virtual QString name() const = 0;
    virtual QString summary() const = 0;
    /// As help shows it: "FILE...", "list | get KEY | set KEY VALUE".
    virtual QString arguments() const = 0;
    virtual QString example() const = 0;
    /// The options it takes beside the global ones.
    virtual QStringList options() const { return {}; }
    virtual ExitStatus execute(Session &session) const = 0;
};

} // namespace cli
