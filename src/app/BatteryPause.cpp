#include "app/BatteryPause.h"

#include "jobs/KXQueueController.h"
#include "platform/Power.h"
#include "prefs/KXPreferences.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace app {

BatteryPause::BatteryPause(KXQueueController &queue, const KXPreferences &preferences,
                           const platform::Power &power, std::chrono::milliseconds pace)
    : m_queue(queue)
    , m_preferences(preferences)
    , m_power(power)
{
    m_timer.setInterval(pace);
    connect(&m_timer, &QTimer::timeout, this, &BatteryPause::look);
    connect(&queue, &KXQueueController::jobChanged, this, &BatteryPause::begin);
}

/// A job that has just begun is paused at once, where that is wanted.
void BatteryPause::begin()
{
    if (m_queue.qJobIsRunning() && !m_timer.isActive()) {
        m_timer.start();
        QMetaObject::invokeMethod(this, &BatteryPause::look, Qt::QueuedConnection);
    }
}

/// What the system does not say is taken for mains.
bool BatteryPause::isOnBattery() const
{
    return m_preferences.panelFlag(u"pauseOnBatteryFlag"_s) &&
           m_power.source() == platform::PowerSource::Battery;
}

void BatteryPause::look()
{
    if (!m_queue.qJobIsRunning()) {
        m_timer.stop();
        m_hasPaused = false;
        return;
    }
    const bool isPaused = m_queue.pauseButtonTitle() == u"Resume"_s;
    if (m_hasPaused && !isPaused) {
        m_hasPaused = false;
        m_isOverruled = true;
    }
    const bool onBattery = isOnBattery();
    if (onBattery && !isPaused && !m_isOverruled) {
        m_hasPaused = true;
        m_queue.pauseQueueButton(u"Pause"_s);
    } else if (!onBattery) {
        m_isOverruled = false;
        if (std::exchange(m_hasPaused, false))
            m_queue.pauseQueueButton(u"Resume"_s);
    }
}

} // namespace app
