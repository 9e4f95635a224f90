#pragma once

#include "steps/Outcome.h"

#include <QMap>
#include <QObject>

#include <memory>

class KXJob;
class KXQueueController;

namespace platform {
class Desktop;
}

namespace app {

/// Keeps the machine awake while the queue works, and says once, when the queue has come to its end, how
/// the jobs ended. Owned by the program; it changes nothing in the queue.
class QueueWatch final : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive it.
    QueueWatch(KXQueueController &queue, platform::Desktop &desktop);

    /// While more jobs are about to be added, a queue that has run empty has not come to its end.
    void expectMore(bool more);
    /// "3 done, 1 failed": how the jobs of the last run of the queue ended.
    QString summary() const;

Q_SIGNALS:
    /// The queue has nothing left to do.
    void queueEnded(const QString &summary);

private:
    void look();
    void count(int row);
    bool hasQueuedJob() const;

    KXQueueController &m_queue;
    platform::Desktop &m_desktop;
    QMap<steps::Verdict, int> m_ended;
    std::weak_ptr<KXJob> m_lastEnded;
    bool m_working = false;
    bool m_moreComing = false;
};

} // namespace app
