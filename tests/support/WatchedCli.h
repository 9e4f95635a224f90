#pragma once

#include "support/Canaries.h"
#include "support/CliFixture.h"
#include "support/Listing.h"

#include <memory>

namespace support {

/// The command-line program under watch: every program that is started is recorded, canaries lie beside its
/// folders, and after a run all of its base is compared with what it was. Player and application for
/// subtitles are stand-ins that are recorded too. Its probes can be made to say what a test wants.
class WatchedCli final
{
public:
    WatchedCli();

    CliFixture &cli() { return m_cli; }
    const Canaries &canaries() const { return *m_canaries; }
    QString path(const QString &name = {}) const { return m_cli.scratch().path(name); }

    /// From now on whatever probes a file of that name gets this text, not ffprobe's.
    void answerProbesOf(const QString &name, const QByteArray &text);
    /// The lines of the shell that do so in front of an ffprobe.
    QString answeringScript() const;
    /// Remembers how everything looks. To be called when all files of a run are in place.
    void begin();
    /// What happened since that should not: a canary touched, a program started, a file changed that is not
    /// a result beside a film, a process left. Null when there was nothing.
    QString offence();
    bool hasStarted(const QString &program) const;
    /// Makes everything fit for the next run.
    void clean();

private:
    QString processOffence() const;
    QString startedOffence() const;
    QString changesOffence() const;

    CliFixture m_cli;
    std::unique_ptr<Canaries> m_canaries;
    std::unique_ptr<Listing> m_before;
};

} // namespace support
