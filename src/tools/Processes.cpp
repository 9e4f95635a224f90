#include "tools/Processes.h"

#include "tools/Numbers.h"
#include "tools/ProcessGroup.h"

#include <cerrno>
#include <csignal>
#include <limits>

namespace tools {

namespace {

bool isProcessId(const QString &pid)
{
    return isAllDigits(pid) && leadingInteger(pid) != 0;
}

/// False where no process can have such an id.
bool send(const QString &pid, int signal)
{
    const qint64 number = leadingInteger(pid);
    if (number > std::numeric_limits<pid_t>::max())
        return false;
    return ::kill(static_cast<pid_t>(number), signal) == 0 || errno == EPERM;
}

int numberOf(ProcessSignal signal)
{
    switch (signal) {
    case ProcessSignal::Kill:
        return SIGKILL;
    case ProcessSignal::Stop:
        return SIGSTOP;
    case ProcessSignal::Continue:
        return SIGCONT;
    }
    return 0;
}

} // namespace

bool processRuns(const QString &pid)
{
    if (!isProcessId(pid) || pid != QString::number(leadingInteger(pid)))
        return false;
    return send(pid, 0) && !isEndedZombie(leadingInteger(pid));
}

bool signalProcess(const QString &pid, ProcessSignal signal)
{
    if (!isProcessId(pid))
        return false;
    send(pid, numberOf(signal));
    return true;
}

} // namespace tools
