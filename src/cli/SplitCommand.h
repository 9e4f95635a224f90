#pragma once

#include "cli/Command.h"

namespace cli {

/// Cuts each file into parts, or one part out of it.
class SplitCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("split"); }
    QString summary() const override { return QStringLiteral("Split files by time, size or duration."); }
    QString arguments() const override
    {
        return QStringLiteral("FILE... --time START-END | --size MB | --duration HH:MM:SS");
    }
    QString example() const override
    {
        return QStringLiteral("tessaray-cli split film.mkv --time 00:10:00-00:20:00");
    }
    QStringList options() const override;
    ExitStatus execute(Session &session) const override;
};

} // namespace cli
