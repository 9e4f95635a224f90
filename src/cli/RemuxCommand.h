#pragma once

#include "cli/Command.h"

namespace cli {

/// Rewrites each file without header-removal compression.
class RemuxCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("remux"); }
    QString summary() const override
    {
        return QStringLiteral("Rewrite MKV files so that simple players can read them.");
    }
    QString arguments() const override { return QStringLiteral("FILE..."); }
    QString example() const override { return QStringLiteral("tessaray-cli remux film.mkv"); }
    QStringList options() const override;
    ExitStatus execute(Session &session) const override;
};

} // namespace cli
