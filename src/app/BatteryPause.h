#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>

class KXPreferences;
class KXQueueController;

namespace platform {
class Power;
}

namespace app {

/// Pauses the running job while the machine runs on its battery, if the preference asks for that, and lets it
/// go on afterwards. What a person paused stays so, and what a person lets go on goes on. Looks while a job
/// runs, and else not at all. Owned by the program.
class BatteryPause final : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds often = std::chrono::seconds(20);

    /// All of it outlives this.
    BatteryPause(KXQueueController &queue, const KXPreferences &preferences, const platform::Power &power,
                 std::chrono::milliseconds pace = often);

    /// What the timer does.
    void look();

private:
    void begin();
    bool isOnBattery() const;

    KXQueueController &m_queue;
    const KXPreferences &m_preferences;
    const platform::Power &m_power;
    QTimer m_timer;
    bool m_hasPaused = false;
    bool m_isOverruled = false; ///< until there are mains again
};

} // namespace app
