#include "Memory.h"

#include <QFile>

#include <sys/resource.h>

namespace bench {

namespace {

constexpr qint64 kilobyte = 1024;

} // namespace

qint64 peakResidentBytes()
{
    QFile status(QStringLiteral("/proc/self/status")); // the other count includes what our parent had
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("VmHWM:"))
                return line.simplified().split(' ').value(1).toLongLong() * kilobyte;
        }
    }
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss; // bytes where there is no /proc
}

} // namespace bench
