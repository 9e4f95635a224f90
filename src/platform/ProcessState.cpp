#include "platform/ProcessState.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

/// What follows the name, which itself may hold anything: the state first.
QByteArrayList factsOfProcess(qint64 pid)
{
    QFile file(u"/proc/%1/stat"_s.arg(pid));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray line = file.readAll();
    return line.mid(line.lastIndexOf(')') + 2).split(' ');
}

} // namespace

char stateOfProcess(qint64 pid)
{
    const QByteArray state = factsOfProcess(pid).value(0);
    return state.isEmpty() ? '\0' : state.front();
}

QByteArray startOfProcess(qint64 pid)
{
    constexpr int start = 19;
    return factsOfProcess(pid).value(start);
}

} // namespace platform
