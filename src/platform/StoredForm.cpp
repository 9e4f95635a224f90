#include "platform/StoredForm.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>

#include <algorithm>

namespace platform {

namespace {

/// A document is an object or a list, so a value is written as the only entry of one.
QByteArray textOfValue(const QVariant &value)
{
    const QByteArray list =
        QJsonDocument(QJsonArray{QJsonValue::fromVariant(value)}).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2);
}

bool isSameMap(const QVariantMap &one, const QVariantMap &other)
{
    if (one.isSharedWith(other))
        return true;
    return one.size() == other.size() && std::equal(one.keyValueBegin(), one.keyValueEnd(),
                                                    other.keyValueBegin(), [](const auto &a, const auto &b) {
                                                        return a.first == b.first &&
                                                               isSameValue(a.second, b.second);
                                                    });
}

} // namespace

bool isSameValue(const QVariant &one, const QVariant &other)
{
    if (one.typeId() != other.typeId())
        return false;
    if (one.typeId() == QMetaType::QVariantMap)
        return isSameMap(one.toMap(), other.toMap());
    if (one.typeId() != QMetaType::QVariantList)
        return one == other;
    const QVariantList list = one.toList();
    const QVariantList otherList = other.toList();
    return list.isSharedWith(otherList) ||
           std::equal(list.begin(), list.end(), otherList.begin(), otherList.end(), isSameValue);
}

QByteArray StoredForm::textOf(const QString &key, const QVariantList &list)
{
    Entries &last = m_lists[key];
    QByteArrayList texts;
    texts.reserve(list.size());
    for (qsizetype i = 0; i < list.size(); ++i) {
        const bool isAsBefore = i < last.values.size() && isSameValue(last.values.at(i), list.at(i));
        texts.append(isAsBefore ? last.texts.at(i) : textOfValue(list.at(i)));
    }
    last = {list, texts};
    return texts.isEmpty() ? QByteArray("[]") : "[\n        " + texts.join(",\n        ") + "\n    ]";
}

QByteArray StoredForm::bytesOf(const QVariantMap &values)
{
    QByteArrayList lines;
    for (auto value = values.cbegin(); value != values.cend(); ++value) {
        const bool isList = value->typeId() == QMetaType::QVariantList;
        lines.append("    " + textOfValue(value.key()) + ": " +
                     (isList ? textOf(value.key(), value->toList()) : textOfValue(*value)));
    }
    return "{\n" + lines.join(",\n") + "\n}\n";
}

} // namespace platform
