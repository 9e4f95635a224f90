#pragma once

#include <QUrl>

namespace engines {

/// The path without its last extension; a name that is all extension (".mkv") stays.
QString withoutExtension(const QUrl &file);
/// A folder's path and a name in it.
QString pathInFolder(const QUrl &folder, const QString &name);
QUrl folderOf(const QUrl &file);
QString extensionOf(const QUrl &file);

} // namespace engines
