#pragma once

#include "cli/Command.h"

namespace cli {

/// Hands a file's first subtitle to the subtitle application.
class SendCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("send"); }
    QString summary() const override
    {
        return QStringLiteral("Extract the first subtitle and open it in Lintwick.");
    }
    QString arguments() const override { return QStringLiteral("FILE"); }
    QString example() const override { return QStringLiteral("tessaray-cli send film.mkv"); }
    QStringList options() const override;
    ExitStatus execute(Session &session) const override;
};

} // namespace cli
