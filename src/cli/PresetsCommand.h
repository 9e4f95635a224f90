#pragma once

#include "cli/Command.h"

namespace cli {

/// Shows the stored presets and moves them between users.
class PresetsCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("presets"); }
    QString summary() const override
    {
        return QStringLiteral("Show presets, export them to a file, import them from one.");
    }
    QString arguments() const override
    {
        return QStringLiteral("list | show NAME | export [FILE] | import FILE");
    }
    QString example() const override { return QStringLiteral("tessaray-cli presets export mine.json"); }
    ExitStatus execute(Session &session) const override;

private:
    ExitStatus list(Session &session) const;
    ExitStatus show(Session &session, const QString &name) const;
    ExitStatus exportTo(Session &session, const QString &path) const;
    ExitStatus importFrom(Session &session, const QString &path) const;
};

} // namespace cli
