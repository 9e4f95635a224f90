#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

/// Writes a file of our own whole or not at all: beside its name, brought to the disk, held against its size,
/// renamed. Never through a link, and never over anything but a plain file that may be written to. One writer
/// at a time. A null text, or why it was not possible, to stand in a sentence; nothing has changed then.
QString replaceSafely(const QString &path, const QByteArray &content);

/// Where the new content lies until it gets the name; a kill in between leaves it, the next writer clears it.
QString besideOf(const QString &path);

} // namespace platform
