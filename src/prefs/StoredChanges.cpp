#include "prefs/StoredChanges.h"

#include "platform/StoredForm.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QSet>

namespace prefs {

namespace {

/// Equal for entries that are stored alike, so that long lists are compared quickly.
QByteArray storedForm(const QVariant &entry)
{
    return QJsonDocument(QJsonArray{QJsonValue::fromVariant(entry)}).toJson(QJsonDocument::Compact);
}

QSet<QByteArray> storedForms(const QVariantList &list)
{
    QSet<QByteArray> forms;
    for (const QVariant &entry : list)
        forms.insert(storedForm(entry));
    return forms;
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
    const QSet<QByteArray> inStored = storedForms(stored);
    const QSet<QByteArray> inLoaded = storedForms(loaded);
    const QSet<QByteArray> inNow = storedForms(now);
    QVariantList result;
    for (const QVariant &entry : now) {
        const QByteArray form = storedForm(entry);
        if (inStored.contains(form) || !inLoaded.contains(form))
            result.append(entry);
    }
    for (const QVariant &entry : stored) {
        const QByteArray form = storedForm(entry);
        if (!inLoaded.contains(form) && !inNow.contains(form))
            result.append(entry);
    }
    return result;
}

} // namespace

bool storedAlike(const QVariant &one, const QVariant &other)
{
    return platform::isSameValue(one, other) ||
           QJsonValue::fromVariant(one) == QJsonValue::fromVariant(other);
}

QVariant merged(const QVariant &stored, const QVariant &loaded, const QVariant &now)
{
    if (platform::isSameValue(stored, loaded)) // the usual case: no other program wrote
        return now;
    if (now.typeId() == QMetaType::QVariantMap)
        return mergedMap(stored.toMap(), loaded.toMap(), now.toMap());
    if (now.typeId() == QMetaType::QVariantList)
        return mergedList(stored.toList(), loaded.toList(), now.toList());
    return storedAlike(loaded, now) ? stored : now;
}

} // namespace prefs
