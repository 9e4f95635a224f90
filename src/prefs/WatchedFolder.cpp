#include "prefs/WatchedFolder.h"

#include "platform/HolderFile.h"
#include "platform/PlainFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace prefs {

namespace {

QUrl holderIn(const QString &folder)
{
    return QUrl::fromLocalFile(QDir(folder).filePath(WatchedFolder::fileName()));
}

bool isWatched(const QString &folder)
{
    return platform::fileAt(holderIn(folder)) && !platform::HolderFile::isHolderGone(holderIn(folder));
}

QString sentenceFor(const QString &folder)
{
    const QString holder = platform::HolderFile::holderAt(holderIn(folder));
    return u"The folder %1 is watched already%2. If that is not so, remove %3."_s.arg(
        folder, holder.isEmpty() ? QString() : u" by "_s + holder, holderIn(folder).toLocalFile());
}

/// A null text where none is watched.
QString watchedAround(const QString &folder)
{
    for (QDir around(folder); around.cdUp();) {
        if (isWatched(around.path()))
            return around.path();
    }
    return {};
}

QString watchedInside(const QString &folder)
{
    QDirIterator folders(folder, QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks,
                         QDirIterator::Subdirectories);
    while (folders.hasNext()) {
        if (const QString inside = folders.next(); isWatched(inside))
            return inside;
    }
    return {};
}

} // namespace

WatchedFolder::WatchedFolder() = default;
WatchedFolder::~WatchedFolder() = default;

QString WatchedFolder::take(const QString &folder)
{
    release();
    m_holder = std::make_unique<platform::HolderFile>(holderIn(folder));
    if (m_holder->take() == platform::HolderFile::Answer::Taken) {
        m_holder.reset();
        return sentenceFor(folder);
    }
    QString other = watchedAround(folder); // asked last: of two that start at once one sees the other
    if (other.isEmpty())
        other = watchedInside(folder);
    if (other.isEmpty())
        return {};
    release();
    return sentenceFor(other);
}

QString WatchedFolder::watcherOf(const QString &folder)
{
    return isWatched(folder) ? platform::HolderFile::holderAt(holderIn(folder)) : QString();
}

void WatchedFolder::release()
{
    m_holder.reset();
}

} // namespace prefs
