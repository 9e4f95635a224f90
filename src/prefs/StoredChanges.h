#pragma once

#include <QVariant>

namespace prefs {

/// True when both would be stored as the same value.
bool storedAlike(const QVariant &one, const QVariant &other);

/// What a stored value becomes when only what changed between "loaded" and "now" is done to it:
/// dictionaries key by key, lists entry by entry, everything else as a whole. So what another program
/// stored in between stays.
QVariant merged(const QVariant &stored, const QVariant &loaded, const QVariant &now);

} // namespace prefs
