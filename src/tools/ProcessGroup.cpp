#include "tools/ProcessGroup.h"

#include "platform/Keeper.h"
#include "platform/ProcessState.h"

#include <QProcess>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace tools {

namespace {

/// Where states can't be told, only of our own children is known that they wait to be reaped.
bool isChildToReap(pid_t pid)
{
    siginfo_t info = {};
    return ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == pid;
}

} // namespace

qint64 startInOwnGroup(QProcess &process, const QString &program, const QStringList &arguments,
                       const std::function<void()> &alsoInChild)
{
    qint64 leader = 0;
    {
        platform::keeper::Start start;
        process.setChildProcessModifier([alsoInChild, &start] {
            ::setpgid(0, 0);
            start.tellInChild();
            if (alsoInChild)
                alsoInChild();
        });
        process.start(program, arguments);
        leader = process.processId();
        start.started(leader);
        process.setChildProcessModifier({});
    }
    const auto tellEnd = [leader](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning)
            platform::keeper::groupEnded(leader);
    };
    QObject::connect(&process, &QProcess::stateChanged, &process, tellEnd);
    tellEnd(process.state());
    return leader;
}

void signalGroupOf(qint64 pid, int signal)
{
    if (pid < 2)
        return;
    const pid_t process = static_cast<pid_t>(pid);
    const pid_t group = ::getpgid(process);
    if (group > 1 && group != ::getpgrp())
        ::kill(-group, signal);
    else
        ::kill(process, signal);
}

void killGroupLedBy(qint64 leader, Leader state)
{
    if (leader < 2)
        return;
    if (state == Leader::Runs)
        ::kill(static_cast<pid_t>(leader), SIGKILL); // it may not lead yet
    ::kill(static_cast<pid_t>(-leader), SIGKILL);
}

bool isEndedZombie(qint64 pid)
{
    const pid_t process = static_cast<pid_t>(pid);
    if (platform::stateOfProcess(pid) != 'Z' && !isChildToReap(process))
        return false;
    // Leaders of a group were started by a process object, which would lose their exit status.
    if (::getpgid(process) != process)
        ::waitpid(process, nullptr, WNOHANG);
    return true;
}

} // namespace tools
