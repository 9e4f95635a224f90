#pragma once

#include "app/Interrupts.h"
#include "app/Program.h"
#include "cli/Command.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "cli/ConsoleAlerts.h"
#include "prefs/SaveFolder.h"

#include <memory>

namespace cli {

/// One run of the program: its command line, its streams, its signals, and the program behind it,
/// which is made when the first command asks for it.
class Session final
{
public:
    explicit Session(const CommandLine &line);

    const CommandLine &line() const { return m_line; }
    /// As if they had been named on the command line.
    void addArguments(const QStringList &arguments) { m_line.addArguments(arguments); }
    Console &console() { return m_console; }
    platform::AlertPresenter &alerts() { return m_alerts; }
    app::Interrupts &interrupts() { return m_interrupts; }
    app::Program &program();
    /// Said on standard error; answers WrongUsage.
    ExitStatus wrongUsage(const QString &sentence);
    /// Said on standard error; answers Failed.
    ExitStatus failed(const QString &sentence);
    /// What an interrupt makes of a status.
    ExitStatus unlessInterrupted(ExitStatus status) const;
    /// The same for settings that could not be read, or had to be mended.
    ExitStatus unlessUnsettled(ExitStatus status) const
    {
        return m_isUnsettled ? worse(status, ExitStatus::Warnings) : status;
    }
    /// Waits until everything that was printed has been read.
    void flush();
    bool isInterrupted() const { return m_interrupts.signalNumber() != 0; }
    prefs::SaveFolder saveFolder() { return prefs::SaveFolder(program().preferences()); }

private:
    void applyOptions();
    void sayUnsettled(const QString &sentence);

    CommandLine m_line;
    Console m_console;
    ConsoleAlerts m_alerts;
    app::Interrupts m_interrupts;
    std::unique_ptr<app::Program> m_program;
    bool m_isUnsettled = false;
};

/// A path of the command line made absolute, without "." and ".."; an empty one stays empty.
QString absolutePath(const QString &path);

} // namespace cli
