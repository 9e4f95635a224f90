#pragma once

#include "cli/Command.h"

namespace cli {

/// Shows the tracks and properties of each file.
class ProbeCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("probe"); }
    QString summary() const override
    {
        return QStringLiteral("Show the tracks and properties of each file.");
    }
    QString arguments() const override { return QStringLiteral("FILE..."); }
    QString example() const override { return QStringLiteral("tessaray-cli probe film.mkv --json"); }
    QStringList options() const override { return {QStringLiteral("list")}; }
    ExitStatus execute(Session &session) const override;
};

} // namespace cli
