#pragma once

#include "cli/Command.h"

namespace cli {

/// Shows and changes the settings that both programs share.
class PrefsCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("prefs"); }
    QString summary() const override { return QStringLiteral("Show or change settings."); }
    QString arguments() const override { return QStringLiteral("list | get KEY | set KEY VALUE"); }
    QString example() const override { return QStringLiteral("tessaray-cli prefs set keepLogsFlag false"); }
    ExitStatus execute(Session &session) const override;

private:
    ExitStatus list(Session &session) const;
    ExitStatus get(Session &session, const QString &key) const;
    ExitStatus set(Session &session, const QString &key, const QString &value) const;
};

} // namespace cli
