#include "app/QueuePause.h"

#include "app/RoomForJobs.h"
#include "jobs/KXQueueController.h"
#include "platform/Power.h"
#include "prefs/KXPreferences.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace app {

QueuePause::QueuePause(const Parts &parts)
    : QueuePause(parts, Paces())
{
}

QueuePause::QueuePause(const Parts &parts, const Paces &paces)
    : m_parts(parts)
{
    m_powerTimer.setInterval(paces.power);
    m_roomTimer.setInterval(paces.room);
    connect(&m_powerTimer, &QTimer::timeout, this, &QueuePause::lookAtPower);
    connect(&m_roomTimer, &QTimer::timeout, this, &QueuePause::lookAtRoom);
    connect(&parts.queue, &KXQueueController::jobChanged, this, &QueuePause::begin);
    // At once, so that no look takes it for a pause of a person.
    connect(&parts.queue, &KXQueueController::pauseReasonChanged, this, [this](const QString &reason) {
        if (reason.isNull())
            overrule();
    });
}

void QueuePause::followRoom()
{
    m_followsRoom = true;
    connect(&m_parts.queue, &KXQueueController::jobAdded, this, [this] {
        if (!std::exchange(m_isToHoldAgainstRoom, true))
            QMetaObject::invokeMethod(this, &QueuePause::holdAgainstRoom, Qt::QueuedConnection);
    });
}

/// Once for all jobs that are added together, and before the first of them starts.
void QueuePause::holdAgainstRoom()
{
    m_isToHoldAgainstRoom = false;
    const QString sentence = shortageBefore(m_parts.queue.qJobList(), m_parts.volumes);
    if (!sentence.isNull())
        Q_EMIT roomIsShort(sentence);
}

/// A job that has just begun is paused at once, where that is wanted. Who let another one fill the disk has
/// not spoken for this one.
void QueuePause::begin()
{
    const JobPointer job = m_parts.queue.currentJob();
    if (!m_parts.queue.qJobIsRunning() || m_job.lock() == job)
        return;
    m_job = job;
    m_causes.at(Room) = {};
    m_powerTimer.start();
    QMetaObject::invokeMethod(this, &QueuePause::lookAtPower, Qt::QueuedConnection);
    if (!m_followsRoom)
        return;
    m_roomTimer.start();
    QMetaObject::invokeMethod(this, &QueuePause::lookAtRoom, Qt::QueuedConnection);
}

bool QueuePause::isOver()
{
    if (m_parts.queue.qJobIsRunning())
        return false;
    m_powerTimer.stop();
    m_roomTimer.stop();
    m_causes = {};
    m_hasPaused = false;
    m_job.reset();
    return true;
}

/// What the system does not say is taken for mains.
void QueuePause::lookAtPower()
{
    if (isOver())
        return;
    const bool isMeant = m_parts.preferences.panelFlag(u"pauseOnBatteryFlag"_s);
    const bool onBattery = isMeant && m_parts.power.source() == platform::PowerSource::Battery;
    take(Power, onBattery ? tr("The machine runs on its battery.") : QString());
}

void QueuePause::lookAtRoom()
{
    if (!isOver() && m_followsRoom)
        take(Room, shortageOf(*m_parts.queue.currentJob(), m_parts.volumes));
}

/// The words stay as they were when the reason arose: figures that change would be told anew each time.
void QueuePause::take(Cause cause, const QString &reason)
{
    Standing &standing = m_causes.at(cause);
    if (reason.isNull())
        standing = {};
    else if (standing.reason.isNull())
        standing.reason = reason;
    settle();
}

void QueuePause::settle()
{
    QStringList reasons;
    for (const Standing &standing : m_causes) {
        if (!standing.reason.isNull() && !standing.isOverruled)
            reasons.append(standing.reason);
    }
    if (!reasons.isEmpty()) {
        m_parts.queue.pauseFor(reasons.join(u' '));
        m_hasPaused = !m_parts.queue.pauseReason().isNull();
    } else if (m_hasPaused) {
        m_hasPaused = false; // before it goes on, which is nobody's word then
        m_parts.queue.pauseQueueButton(u"Resume"_s);
    }
}

/// A person let the job go on, or paused it too.
void QueuePause::overrule()
{
    const bool goesOn = m_parts.queue.pauseButtonTitle() != u"Resume"_s;
    if (!m_hasPaused)
        return;
    m_hasPaused = false;
    for (Standing &standing : m_causes)
        standing.isOverruled = goesOn && m_parts.queue.qJobIsRunning() && !standing.reason.isNull();
}

} // namespace app
