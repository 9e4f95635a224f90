#pragma once

#include "cli/Command.h"

namespace cli {

/// Shows what a conversion of each file would do, and does nothing.
class PlanCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("plan"); }
    QString summary() const override
    {
        return QStringLiteral("Show what convert would do with each track, and why.");
    }
    QString arguments() const override { return QStringLiteral("FILE|DIR..."); }
    QString example() const override;
    QStringList options() const override;
    ExitStatus execute(Session &session) const override;
};

} // namespace cli
