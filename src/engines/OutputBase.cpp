#include "engines/OutputBase.h"

#include <QFileInfo>

namespace engines {

QString withoutExtension(const QUrl &file)
{
    const QFileInfo info(file.toLocalFile());
    const bool has = !info.suffix().isEmpty() && !info.completeBaseName().isEmpty();
    return has ? file.toLocalFile().chopped(info.suffix().size() + 1) : file.toLocalFile();
}

QString pathInFolder(const QUrl &folder, const QString &name)
{
    const QString path = folder.toLocalFile();
    return path.endsWith(u'/') ? path + name : path + u'/' + name;
}

QUrl folderOf(const QUrl &file)
{
    return QUrl::fromLocalFile(QFileInfo(file.toLocalFile()).absolutePath());
}

QString extensionOf(const QUrl &file)
{
    return QFileInfo(file.toLocalFile()).suffix();
}

} // namespace engines
