#include "prefs/WatchedFolder.h"

#include "platform/HolderFile.h"
#include "platform/PlainFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QUrl>

#include <algorithm>

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

/// What was taken before lies in a folder that is not there now.
void WatchedFolder::setAside()
{
    if (m_holder && !m_holder->isHeld())
        m_aside.push_back(std::move(m_holder));
    if (m_aside.size() > mostAside)
        m_aside.erase(m_aside.begin());
}

bool WatchedFolder::isBack(const QString &folder)
{
    const auto back =
        std::find_if(m_aside.begin(), m_aside.end(), [](const auto &holder) { return holder->isHeld(); });
    if (folder != m_folder || back == m_aside.end())
        return false;
    m_holder = std::move(*back);
    m_aside.erase(back);
    return true;
}

QString WatchedFolder::take(const QString &folder)
{
    if (folder == m_folder)
        setAside();
    m_holder.reset();
    if (isBack(folder))
        return {};
    m_folder = folder;
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
    m_holder.reset();
    return sentenceFor(other);
}

QString WatchedFolder::watcherOf(const QString &folder)
{
    return isWatched(folder) ? platform::HolderFile::holderAt(holderIn(folder)) : QString();
}

void WatchedFolder::release()
{
    m_holder.reset();
    m_aside.clear();
    m_folder.clear();
}

} // namespace prefs
