#pragma once

#include "cli/Command.h"

namespace cli {

/// Writes a file without some of its tracks.
class RemoveCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("remove"); }
    QString summary() const override
    {
        return QStringLiteral("Write an MKV file without the listed tracks.");
    }
    QString arguments() const override { return QStringLiteral("FILE --tracks LIST"); }
    QString example() const override { return QStringLiteral("tessaray-cli remove film.mkv --tracks 2,4"); }
    QStringList options() const override;
    ExitStatus execute(Session &session) const override;
};

} // namespace cli
