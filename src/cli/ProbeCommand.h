#pragma once

#include "cli/Command.h"

namespace cli {

/// Shows what each file holds.
class ProbeCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("probe"); }
    QString summary() const override { return QStringLiteral("Show what each file holds."); }
    QString arguments() const override { return QStringLiteral("FILE..."); }
    QString example() const override { return QStringLiteral("tessaray-cli probe film.mkv --json"); }
    ExitStatus execute(Session &session) const override;
};

} // namespace cli
