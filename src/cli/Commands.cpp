#include "cli/Commands.h"

#include "cli/ConvertCommand.h"
#include "cli/ExtractCommand.h"
#include "cli/FinishedFiles.h"
#include "cli/Help.h"
#include "cli/JoinCommand.h"
#include "cli/ListedFiles.h"
#include "cli/NearestWord.h"
#include "cli/PlanCommand.h"
#include "cli/PlayCommand.h"
#include "cli/PrefsCommand.h"
#include "cli/PresetsCommand.h"
#include "cli/ProbeCommand.h"
#include "cli/RemoveCommand.h"
#include "cli/RemuxCommand.h"
#include "cli/SendCommand.h"
#include "cli/Session.h"
#include "cli/SplitCommand.h"
#include "cli/ToolsCommand.h"
#include "cli/WatchCommand.h"

using namespace Qt::StringLiterals;

namespace cli {

namespace {

QString problemWithOptions(const CommandLine &line, const Command &command)
{
    for (const OptionSpec &option : allOptions()) {
        const bool isAllowed = option.isGlobal || command.options().contains(option.name);
        if (line.has(option.name) && !isAllowed)
            return u"The command %1 takes no option --%2."_s.arg(command.name(), option.name);
    }
    if (line.has(u"keep-logs"_s) && line.has(u"no-keep-logs"_s))
        return u"--keep-logs and --no-keep-logs exclude each other."_s;
    return {};
}

} // namespace

const std::vector<std::unique_ptr<Command>> &allCommands()
{
    static const auto commands = [] {
        std::vector<std::unique_ptr<Command>> list;
        list.push_back(std::make_unique<ProbeCommand>());
        list.push_back(std::make_unique<ConvertCommand>());
        list.push_back(std::make_unique<PlanCommand>());
        list.push_back(std::make_unique<ExtractCommand>());
        list.push_back(std::make_unique<JoinCommand>());
        list.push_back(std::make_unique<SplitCommand>());
        list.push_back(std::make_unique<RemuxCommand>());
        list.push_back(std::make_unique<RemoveCommand>());
        list.push_back(std::make_unique<SendCommand>());
        list.push_back(std::make_unique<WatchCommand>());
        list.push_back(std::make_unique<PlayCommand>());
        list.push_back(std::make_unique<PresetsCommand>());
        list.push_back(std::make_unique<PrefsCommand>());
        list.push_back(std::make_unique<ToolsCommand>());
        return list;
    }();
    return commands;
}

const Command *commandNamed(const QString &name)
{
    for (const auto &command : allCommands()) {
        if (command->name() == name)
            return command.get();
    }
    return nullptr;
}

namespace {

QString nearestCommand(const CommandLine &line)
{
    QStringList names;
    for (const auto &command : allCommands())
        names.append(command->name());
    return didYouMean(line.command(), names);
}

ExitStatus explained(Session &session)
{
    session.console().explain(shortHelp().chopped(1));
    return ExitStatus::WrongUsage;
}

/// A null text, or why the settings that were named can be none.
QString problemWithDefaults(const CommandLine &line)
{
    return line.has(u"defaults"_s)
               ? platform::JsonDefaultsStore::problemWith(absolutePath(line.value(u"defaults"_s)))
               : QString();
}

ExitStatus execute(Session &session, const CommandLine &line)
{
    if (!line.error().isNull())
        return session.wrongUsage(line.error());
    if (line.has(u"version"_s)) {
        session.console().print(versionText() + u'\n');
        return ExitStatus::AllWell;
    }
    const bool isHelp = line.command() == u"help"_s;
    const Command *command = commandNamed(isHelp ? line.arguments().value(0) : line.command());
    if (line.has(u"help"_s) || isHelp) {
        session.console().print(command != nullptr ? helpFor(*command) : generalHelp());
        return ExitStatus::AllWell;
    }
    if (line.command().isNull())
        return explained(session);
    if (command == nullptr)
        return session.wrongUsage(u"There is no command \"%1\".%2 See tessaray-cli --help."_s.arg(
            line.command(), nearestCommand(line)));
    for (const QString &problem :
         {problemWithOptions(line, *command), FinishedFiles::problemWith(line), problemWithDefaults(line)}) {
        if (!problem.isNull())
            return session.wrongUsage(problem);
    }
    if (line.has(u"list"_s)) {
        const ListedFiles listed = readList(session, line.value(u"list"_s));
        if (session.isInterrupted())
            return ExitStatus::Interrupted;
        if (!listed.problem.isNull())
            return session.failed(listed.problem);
        session.addArguments(listed.paths);
    }
    return session.unlessUnsettled(command->execute(session));
}

} // namespace

ExitStatus run(const QStringList &words)
{
    const CommandLine line(words);
    Session session(line);
    const ExitStatus end = execute(session, line);
    session.flush();
    const ExitStatus status = session.unlessInterrupted(end);
    return session.console().lostOutput() ? worse(status, ExitStatus::Failed) : status;
}

} // namespace cli
