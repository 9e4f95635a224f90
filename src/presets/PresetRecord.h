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

/// Whether a name can be a user's preset's: not empty, and no built-in's.
bool isFreeName(const QString &name);

} // namespace presets
