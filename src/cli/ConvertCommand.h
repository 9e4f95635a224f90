#pragma once

#include "cli/Command.h"

namespace cli {

/// Converts each file for a target.
class ConvertCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("convert"); }
    QString summary() const override
    {
        return QStringLiteral("Convert files for a device, or into MKV or AVI.");
    }
    QString arguments() const override { return QStringLiteral("FILE|DIR..."); }
    QString example() const override;
    QStringList options() const override;
    ExitStatus execute(Session &session) const override;
};

} // namespace cli
