#pragma once

#include "cli/Command.h"

namespace cli {

/// Appends files to one.
class JoinCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("join"); }
    QString summary() const override { return QStringLiteral("Join files into one, in the order given."); }
    QString arguments() const override { return QStringLiteral("FILE FILE..."); }
    QString example() const override { return QStringLiteral("tessaray-cli join part1.mkv part2.mkv"); }
    QStringList options() const override;
    ExitStatus execute(Session &session) const override;
};

} // namespace cli
