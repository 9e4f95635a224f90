#pragma once

#include "cli/Command.h"

namespace cli {

/// Shows each tool: where it is, its version, and what is off without it.
class ToolsCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("tools"); }
    QString summary() const override
    {
        return QStringLiteral("Show the tools, and what does not work without a missing one.");
    }
    QString arguments() const override { return {}; }
    QString example() const override { return QStringLiteral("tessaray-cli tools"); }
    QStringList options() const override { return {QStringLiteral("report")}; }
    ExitStatus execute(Session &session) const override;
};

} // namespace cli
