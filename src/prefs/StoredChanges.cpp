#include "prefs/StoredChanges.h"

#include <QJsonValue>

#include <algorithm>

namespace prefs {

namespace {

bool holds(const QVariantList &list, const QVariant &wanted)
{
    return std::any_of(list.cbegin(), list.cend(),
                       [&](const QVariant &entry) { return storedAlike(entry, wanted); });
}

QVariantMap mergedMap(QVariantMap result, const QVariantMap &loaded, const QVariantMap &now)
{
    for (auto item = now.cbegin(); item != now.cend(); ++item) {
        if (!loaded.contains(item.key()) || !storedAlike(loaded.value(item.key()), item.value()))
            result.insert(item.key(), item.value());
    }
    for (auto item = loaded.cbegin(); item != loaded.cend(); ++item) {
        if (!now.contains(item.key()))
            result.remove(item.key());
    }
    return result;
}

/// Our order, without what the other one removed, and behind it what the other one added.
QVariantList mergedList(const QVariantList &stored, const QVariantList &loaded, const QVariantList &now)
{
    QVariantList result;
    for (const QVariant &entry : now) {
        if (holds(stored, entry) || !holds(loaded, entry))
            result.append(entry);
    }
    for (const QVariant &entry : stored) {
        if (!holds(loaded, entry) && !holds(now, entry))
            result.append(entry);
    }
    return result;
}

} // namespace

bool storedAlike(const QVariant &one, const QVariant &other)
{
    return QJsonValue::fromVariant(one) == QJsonValue::fromVariant(other);
}

QVariant merged(const QVariant &stored, const QVariant &loaded, const QVariant &now)
{
    if (now.typeId() == QMetaType::QVariantMap)
        return mergedMap(stored.toMap(), loaded.toMap(), now.toMap());
    if (now.typeId() == QMetaType::QVariantList)
        return mergedList(stored.toList(), loaded.toList(), now.toList());
    return storedAlike(loaded, now) ? stored : now;
}

} // namespace prefs
