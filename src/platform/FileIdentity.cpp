#include "platform/FileIdentity.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace platform {

namespace {

bool statOf(const QUrl &location, struct stat &result)
{
    return ::stat(QFile::encodeName(location.toLocalFile()).constData(), &result) == 0;
}

} // namespace

QString canonicalKey(const QUrl &location)
{
    const QFileInfo info(location.toLocalFile());
    QString path = info.canonicalFilePath();
    if (path.isEmpty()) {
        const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
        path = (folder.isEmpty() ? info.absolutePath() : folder) + u'/' + info.fileName();
    }
#ifdef Q_OS_MACOS
    return path.toCaseFolded(); // its file systems take "A.m4v" and "a.m4v" for one name
#else
    return path;
#endif
}

bool isSameFile(const QUrl &a, const QUrl &b)
{
    if (canonicalKey(a) == canonicalKey(b))
        return true;
    struct stat first = {};
    struct stat second = {};
    return statOf(a, first) && statOf(b, second) && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

QString placeKey(const QUrl &location)
{
    const QFileInfo info(location.toLocalFile());
    return canonicalKey(QUrl::fromLocalFile(info.absolutePath())) + u'/' + info.fileName();
}

bool isTakenName(const QUrl &location)
{
    const QFileInfo info(location.toLocalFile());
    return info.exists() || info.isSymLink();
}

} // namespace platform
