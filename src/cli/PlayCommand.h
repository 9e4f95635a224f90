#pragma once

#include "cli/Command.h"

namespace cli {

/// Shows a file in the player, with the chosen tracks, and does not wait for it.
class PlayCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("play"); }
    QString summary() const override { return QStringLiteral("Play a file with the chosen tracks."); }
    QString arguments() const override { return QStringLiteral("FILE"); }
    QString example() const override { return QStringLiteral("tessaray-cli play film.mkv --tracks 0,2"); }
    QStringList options() const override { return {QStringLiteral("tracks")}; }
    ExitStatus execute(Session &session) const override;
};

} // namespace cli
