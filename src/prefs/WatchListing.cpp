#include "prefs/WatchListing.h"

#include <QByteArrayList>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <dirent.h>
#include <memory>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace prefs {

namespace {

using Folder = std::unique_ptr<DIR, int (*)(DIR *)>;

/// As in a directory entry; not every file system tells it there.
int typeOf(const dirent &entry, const QByteArray &path)
{
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type;
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0)
        return DT_UNKNOWN;
    return S_ISDIR(status.st_mode) ? DT_DIR : S_ISREG(status.st_mode) ? DT_REG : DT_LNK;
}

/// The lower-case extension of a name; empty for names without one.
QByteArray extensionOf(const QByteArray &name)
{
    const qsizetype point = name.lastIndexOf('.');
    return point < 0 ? QByteArray() : name.mid(point + 1).toLower();
}

} // namespace

QString WatchListing::canonicalFolder(const QString &path) const
{
    const QFileInfo info(path);
    return !path.isEmpty() && info.isDir() ? info.canonicalFilePath() : QString();
}

/// Walks by the directory entries alone, without a look at each file: folders can be large. Each folder is
/// read on its own, so that one that vanishes meanwhile takes only its own files along. Files that are still
/// being downloaded end in an extension of their own, so they are no movies; a leading "._" is hidden.
QStringList WatchListing::movies(const QString &folder, const QStringList &extensions) const
{
    QSet<QByteArray> wanted;
    for (const QString &extension : extensions)
        wanted.insert(extension.toUtf8());
    QStringList found;
    QByteArrayList folders{QFile::encodeName(folder)};
    while (!folders.isEmpty()) {
        const QByteArray place = folders.takeLast();
        const Folder entries(::opendir(place.constData()), &::closedir);
        while (const dirent *entry = entries ? ::readdir(entries.get()) : nullptr) {
            const QByteArray name(entry->d_name);
            if (name.startsWith('.'))
                continue;
            const QByteArray path = place.endsWith('/') ? place + name : place + '/' + name;
            const int type = typeOf(*entry, path);
            if (type == DT_DIR)
                folders.append(path);
            else if (type == DT_REG && wanted.contains(extensionOf(name)))
                found.append(QFile::decodeName(path));
        }
    }
    return found;
}

WatchListing::State WatchListing::stateOf(const QString &path) const
{
    const QFileInfo info(path);
    if (!info.exists())
        return {};
    return {info.size(), info.lastModified().toMSecsSinceEpoch()};
}

} // namespace prefs
