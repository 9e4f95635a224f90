#pragma once

#include <QString>
#include <QUrl>

namespace platform {

/// True when both locations lead to the same file: by canonical path, or by device and inode (a hard
/// link counts). A file that does not exist is compared by its canonical folder and its name.
bool isSameFile(const QUrl &a, const QUrl &b);

/// A text that is equal for two spellings of one path (links in folders resolved), for look-ups.
QString canonicalKey(const QUrl &location);

/// The same for a name itself: a link that stands there is not followed.
QString placeKey(const QUrl &location);

/// True when anything stands at that name, a dangling link included.
bool isTakenName(const QUrl &location);

} // namespace platform
