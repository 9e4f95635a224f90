#pragma once

#include "cli/Command.h"
#include "jobs/JobRequest.h"

namespace cli {

class Choices;
struct TrackChoice;

/// Converts each file for a target.
class ConvertCommand final : public Command
{
public:
    QString name() const override { return QStringLiteral("convert"); }
    QString summary() const override
    {
        return QStringLiteral("Convert files for a device, or into MKV or AVI.");
    }
    QString arguments() const override { return QStringLiteral("FILE..."); }
    QString example() const override;
    QStringList options() const override;
    ExitStatus execute(Session &session) const override;

private:
    /// The request for the file, with the choices in its selection. None when the file fails; the status
    /// says whether the command line was wrong for it.
    std::optional<jobs::JobRequest> prepared(Session &session, const QString &path, const Choices &choices,
                                             const TrackChoice &tracks, ExitStatus &status) const;
};

} // namespace cli
