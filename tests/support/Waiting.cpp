#include "support/Waiting.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace support {

bool waitFor(const std::function<bool()> &condition, int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > milliseconds)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThread::msleep(static_cast<unsigned long>(std::clamp<qint64>(clock.elapsed() / 20, 2, 20)));
    }
    return true;
}

bool runs(qint64 pid)
{
    const char state = stateOf(pid);
    return state != 0 && state != 'Z' && state != 'X';
}

char stateOf(qint64 pid)
{
    QFile file(u"/proc/%1/stat"_s.arg(pid));
    if (pid <= 0 || !file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray line = file.readAll();
    const qsizetype afterName = line.lastIndexOf(')');
    return afterName >= 0 && line.size() > afterName + 2 ? line.at(afterName + 2) : 0;
}

} // namespace support
