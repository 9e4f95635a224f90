#pragma once

#include <QObject>
#include <QVariant>

#include <functional>
#include <map>
#include <memory>

/// One process-wide announcement: its name, what it is about, and further values by key.
struct KXNotification
{
    QString name;
    QVariant object;
    QVariantMap userInfo;
};

/// Carries the few process-wide announcements by name. One per program, made by it and handed in.
/// Main thread only; an observer subscribes with a handle and is gone when the handle is gone.
class KXNotificationCenter final
{
public:
    using Observer = std::function<void(const KXNotification &)>;

    /// Ends its subscription when it is destroyed. Safe to outlive the centre.
    class Subscription final
    {
    public:
        Subscription() = default;
        Subscription(Subscription &&) noexcept = default;
        Subscription &operator=(Subscription &&other) noexcept;
        ~Subscription();
        void end();

    private:
        friend class KXNotificationCenter;
        std::shared_ptr<bool> m_alive;
    };

    [[nodiscard]] Subscription subscribe(const QString &name, Observer observer);
    /// Calls the observers of that name in the order in which they subscribed. An observer that is
    /// ended while this runs is not called any more; one that is added is called from the next time on.
    void post(const QString &name, const QVariant &object = {}, const QVariantMap &userInfo = {});

private:
    struct Entry
    {
        std::weak_ptr<bool> alive;
        Observer observer;
    };
    std::map<QString, std::vector<std::shared_ptr<Entry>>> m_entries;
};
