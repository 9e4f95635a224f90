#pragma once

#include <QByteArray>
#include <QHash>
#include <QVariantMap>

namespace platform {

/// True for values of one kind that are equal in all they hold. Quick where both share their data.
bool isSameValue(const QVariant &one, const QVariant &other);

/// The JSON text of a store, one line a value and one an entry of a list. It keeps the texts of the last
/// time, so that a store of many entries of which one has changed is not made anew.
class StoredForm final
{
public:
    QByteArray bytesOf(const QVariantMap &values);

private:
    struct Entries
    {
        QVariantList values;
        QByteArrayList texts;
    };
    QByteArray textOf(const QString &key, const QVariantList &list);

    QHash<QString, Entries> m_lists; ///< by key
};

} // namespace platform
