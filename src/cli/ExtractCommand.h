#pragma once

#include "cli/Command.h"

namespace cli {

/// Writes tracks of each file into files of their own.
class ExtractCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("extract"); }
    QString summary() const override { return QStringLiteral("Write tracks to separate files."); }
    QString arguments() const override { return QStringLiteral("FILE..."); }
    QString example() const override { return QStringLiteral("tessaray-cli extract film.mkv --tracks 1,2"); }
    QStringList options() const override;
    ExitStatus execute(Session &session) const override;
};

} // namespace cli
