#include "platform/StoreLock.h"

#include "platform/PlainFiles.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QThread>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

constexpr unsigned long holderPauseMs = 10;
constexpr int mostFailures = 20; ///< it can be taken and let go of between two looks
constexpr qint64 secondsOfForgotten = 600;

const QString busy = u"they are locked by another program"_s;

QString impossible()
{
    return errno != 0 ? qt_error_string(errno) : u"no lock can be made beside them"_s;
}

/// Whether another machine, or a process that was cut off, left it: nobody is at it for so long.
bool isForgotten(const QString &path)
{
    const QDateTime changed = QFileInfo(path).lastModified();
    return changed.isValid() && changed.secsTo(QDateTime::currentDateTime()) > secondsOfForgotten;
}

} // namespace

StoreLock::StoreLock(const QString &path)
    : m_holderPath(path + u".holder"_s)
    , m_lock(path + u".lock"_s)
    , m_holder(QUrl::fromLocalFile(m_holderPath))
{
}

QString StoreLock::take(int patienceMs)
{
    QElapsedTimer clock;
    clock.start();
    errno = 0;
    if (!m_lock.tryLock(patienceMs))
        return m_lock.wasBusy() ? busy : impossible();
    for (int failures = 0;;) {
        errno = 0;
        const HolderFile::Answer answer = m_holder.take();
        if (answer == HolderFile::Answer::Held) {
            HolderFile::clearBeside(QUrl::fromLocalFile(m_holderPath));
            return {};
        }
        if (answer == HolderFile::Answer::Impossible && ++failures == mostFailures)
            return impossible();
        if (isForgotten(m_holderPath))
            removeName(QUrl::fromLocalFile(m_holderPath));
        else if (clock.elapsed() >= patienceMs)
            return busy;
        else
            QThread::msleep(holderPauseMs);
    }
}

} // namespace platform
