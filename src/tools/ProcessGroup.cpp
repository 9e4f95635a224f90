#include "tools/ProcessGroup.h"

#include <QFile>
#include <QProcess>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace tools {

namespace {

/// The state letter of a process ("R", "S", "Z", ...); 0 when it can't be told.
char stateOf(qint64 pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray line = stat.readAll();
    const qsizetype afterName = line.lastIndexOf(')'); // the name itself may hold anything
    return afterName >= 0 && afterName + 2 < line.size() ? line.at(afterName + 2) : 0;
}

/// Where there is no /proc, only of our own children is known that they wait to be reaped.
bool isChildToReap(pid_t pid)
{
    siginfo_t info = {};
    return ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == pid;
}

} // namespace

void leadOwnGroup(QProcess &process, const std::function<void()> &alsoInChild)
{
    process.setChildProcessModifier([alsoInChild] {
        ::setpgid(0, 0);
        if (alsoInChild)
            alsoInChild();
    });
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

void killGroupLedBy(qint64 leader)
{
    if (leader < 2)
        return;
    ::kill(static_cast<pid_t>(leader), SIGKILL); // it may not lead yet
    ::kill(static_cast<pid_t>(-leader), SIGKILL);
}

bool isEndedZombie(qint64 pid)
{
    const pid_t process = static_cast<pid_t>(pid);
    if (stateOf(pid) != 'Z' && !isChildToReap(process))
        return false;
    // Leaders of a group were started by a process object, which would lose their exit status.
    if (::getpgid(process) != process)
        ::waitpid(process, nullptr, WNOHANG);
    return true;
}

} // namespace tools
