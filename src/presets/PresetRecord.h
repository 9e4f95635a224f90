#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace presets {

/// The object's values of these words.
QVariantMap recordOf(const QObject &object, const QStringList &words);
/// Writes the record's values of these words into the object. What the record lacks becomes an empty
/// text, 0, false or an empty list.
void takeRecord(QObject &object, const QVariantMap &record, const QStringList &words);

/// What a record holds beside those words.
QVariantMap otherFields(QVariantMap record, const QStringList &words);
/// A record with such fields put back; the record's own count where both have one.
QVariantMap withOthers(QVariantMap record, const QVariantMap &others);

/// Whether a name can be a user's preset's: not empty, and no built-in's.
bool isFreeName(const QString &name);

} // namespace presets
