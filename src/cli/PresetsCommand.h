#pragma once

#include "cli/Command.h"

namespace cli {

/// Shows, makes and changes presets, and moves them between users.
class PresetsCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("presets"); }
    QString summary() const override
    {
        return QStringLiteral("Show, make and change presets, export them to a file, import them from one.");
    }
    QString arguments() const override
    {
        return QStringLiteral("list | show NAME | add tracks|settings NAME [FIELD=VALUE...] | "
                              "set NAME FIELD=VALUE... | rename NAME NEW | remove NAME | export [FILE] | "
                              "import FILE");
    }
    QString example() const override
    {
        return QStringLiteral("tessaray-cli presets add settings Tablet --for \"iPad (3 and Later)\"");
    }
    QStringList options() const override { return {QStringLiteral("for")}; }
    ExitStatus execute(Session &session) const override;

private:
    ExitStatus list(Session &session) const;
    ExitStatus show(Session &session, const QStringList &words) const;
    ExitStatus exportTo(Session &session, const QString &path) const;
    ExitStatus importFrom(Session &session, const QString &path) const;
};

} // namespace cli
