#include "platform/KXNotificationCenter.h"

#include <algorithm>

KXNotificationCenter::Subscription &
KXNotificationCenter::Subscription::operator=(Subscription &&other) noexcept
{
    end();
    m_alive = std::move(other.m_alive);
    return *this;
}

KXNotificationCenter::Subscription::~Subscription()
{
    end();
}

void KXNotificationCenter::Subscription::end()
{
    if (m_alive)
        *m_alive = false;
    m_alive.reset();
}

KXNotificationCenter::Subscription KXNotificationCenter::subscribe(const QString &name, Observer observer)
{
    Subscription subscription;
    subscription.m_alive = std::make_shared<bool>(true);
    auto &entries = m_entries[name];
    std::erase_if(entries, [](const auto &entry) { return entry->alive.expired(); });
    entries.push_back(std::make_shared<Entry>(Entry{subscription.m_alive, std::move(observer)}));
    return subscription;
}

void KXNotificationCenter::post(const QString &name, const QVariant &object, const QVariantMap &userInfo)
{
    auto &entries = m_entries[name];
    std::erase_if(entries, [](const auto &entry) { return entry->alive.expired(); });
    const auto present = entries; // a copy: an observer may subscribe or end while we call
    const KXNotification notification{name, object, userInfo};
    for (const auto &entry : present) {
        const auto alive = entry->alive.lock();
        if (alive && *alive)
            entry->observer(notification);
    }
}
