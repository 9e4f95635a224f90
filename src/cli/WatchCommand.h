#pragma once

#include "cli/Command.h"

namespace cli {

/// Watches a folder and converts new films in it until it is interrupted.
class WatchCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("watch"); }
    QString summary() const override
    {
        return QStringLiteral("Convert new films in a folder until interrupted.");
    }
    QString arguments() const override
    {
        return QStringLiteral("DIR --track-preset NAME --settings-preset NAME | --status DIR");
    }
    QString example() const override
    {
        return QStringLiteral(
            "tessaray-cli watch ~/Incoming --track-preset \"First Track\" --settings-preset \"For the PS3\"");
    }
    QStringList options() const override
    {
        return {QStringLiteral("track-preset"), QStringLiteral("settings-preset"), QStringLiteral("existing"),
                QStringLiteral("status"),       QStringLiteral("verify"),          QStringLiteral("print"),
                QStringLiteral("exec")};
    }
    ExitStatus execute(Session &session) const override;
};

} // namespace cli
