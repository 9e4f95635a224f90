#include "prefs/WatchListing.h"

#include "media/DeclaredBytes.h"
#include "platform/OpenFiles.h"

#include <QByteArrayList>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QUrl>

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

bool isUtf8(const QByteArray &path)
{
    return QUtf8StringView(path).isValidUtf8();
}

/// As QFileInfo tells it, without a second look at the file.
qint64 changeOf(const struct stat &status)
{
#ifdef Q_OS_DARWIN
    const timespec &time = status.st_mtimespec;
#else
    const timespec &time = status.st_mtim;
#endif
    return qint64(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
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
QList<WatchListing::Entry> WatchListing::entries(const QString &folder, const QStringList &extensions) const
{
    QSet<QByteArray> wanted;
    for (const QString &extension : extensions)
        wanted.insert(extension.toUtf8());
    QList<Entry> found;
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
                found.append({QFile::decodeName(path), entry->d_ino, isUtf8(path)});
        }
    }
    return found;
}

QStringList WatchListing::movies(const QString &folder, const QStringList &extensions) const
{
    QStringList paths;
    for (const Entry &entry : entries(folder, extensions))
        paths.append(entry.path);
    return paths;
}

WatchListing::State WatchListing::stateOf(const QString &path) const
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return {status.st_size, changeOf(status), status.st_ino};
}

WatchListing::Wholeness WatchListing::wholenessOf(const QString &path) const
{
    if (platform::isOpenForWriting(path))
        return Wholeness::IsBeingWritten;
    const auto declared = media::declaredBytesOf(QUrl::fromLocalFile(path));
    return declared && *declared > QFileInfo(path).size() ? Wholeness::IsShorterThanItSays : Wholeness::Whole;
}

} // namespace prefs
