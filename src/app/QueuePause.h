#pragma once

#include <QObject>
#include <QTimer>

#include <array>
#include <chrono>
#include <memory>

class KXJob;
class KXPreferences;
class KXQueueController;

namespace platform {
class Power;
class Volumes;
} // namespace platform

namespace app {

/// Pauses the running job while something stands against its going on, and lets it go on afterwards: the
/// machine runs on its battery, where the preference asks for that, or the disk is nearly full. What a person
/// paused stays so, and what a person lets go on goes on, until that reason has been gone once. Looks while
/// a job runs, and else not at all. Owned by the program.
class QueuePause final : public QObject
{
    Q_OBJECT

public:
    /// All of it outlives this.
    struct Parts
    {
        KXQueueController &queue;
        const KXPreferences &preferences;
        const platform::Power &power;
        const platform::Volumes &volumes;
    };
    struct Paces
    {
        std::chrono::milliseconds power = std::chrono::seconds(20);
        std::chrono::milliseconds room = std::chrono::seconds(1);
    };

    explicit QueuePause(const Parts &parts);
    QueuePause(const Parts &parts, const Paces &paces);

    /// Room is looked at from now on, at the start of a job and when one is added: where somebody may say
    /// Resume, or nobody waits.
    void followRoom();

    // What the timers do.
    void lookAtPower();
    void lookAtRoom();

Q_SIGNALS:
    /// Jobs need more room than there is: a sentence, before the start.
    void roomIsShort(const QString &sentence);

private:
    enum Cause { Power, Room };
    struct Standing
    {
        QString reason; ///< null while there is none
        bool isOverruled = false;
    };

    void holdAgainstRoom();
    void begin();
    bool isOver();
    void take(Cause cause, const QString &reason);
    void settle();
    void overrule();

    Parts m_parts;
    QTimer m_powerTimer;
    QTimer m_roomTimer;
    std::array<Standing, 2> m_causes; ///< by Cause
    std::weak_ptr<KXJob> m_job;       ///< that was looked at last
    bool m_followsRoom = false;
    bool m_isToHoldAgainstRoom = false;
    bool m_hasPaused = false;
};

} // namespace app
