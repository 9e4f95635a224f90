#include "steps/LeftOvers.h"

#include "platform/HolderFile.h"
#include "platform/PlainFiles.h"
#include "steps/FreeNames.h"
#include "steps/OutputClaims.h"
#include "steps/PublishList.h"
#include "steps/WorkFolder.h"

#include <QDateTime>
#include <QDir>

using namespace Qt::StringLiterals;

namespace steps {

namespace {

constexpr qint64 daysOfOthers = 7;

QDateTime newestIn(const QFileInfo &folder)
{
    QDateTime newest = folder.lastModified();
    for (const QFileInfo &entry :
         QDir(folder.filePath()).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
        newest = qMax(newest, entry.lastModified());
    return newest;
}

bool isOld(const QDateTime &changed)
{
    return changed.daysTo(QDateTime::currentDateTime()) >= daysOfOthers;
}

/// The next name that is free by now, where somebody took the one that was meant.
void finish(const Publication &publication)
{
    constexpr int mostNames = 1000;
    Publication tried = publication;
    for (int number = 2; !publishFile(tried) && number < mostNames; ++number) {
        if (!platform::fileAt(publication.file))
            return;
        tried = {publication.file, withMark(publication.name, u" (%1)"_s.arg(number)), std::nullopt};
    }
}

void clearFolder(const QFileInfo &folder)
{
    const QUrl location = QUrl::fromLocalFile(folder.filePath());
    const QUrl lock = QUrl::fromLocalFile(folder.filePath() + u'/' + WorkFolder::lockName());
    platform::HolderFile::clearBeside(lock); // of a program that was killed while it took the folder
    if (platform::removeEmptyFolder(location))
        return; // who was about to work in it makes another one
    if (platform::HolderFile::isHolderGone(lock)) {
        for (const Publication &publication : publicationsIn(location).value_or(QList<Publication>()))
            finish(publication);
    } else if (platform::HolderFile::isHolderRunning(lock) || !isOld(newestIn(folder))) {
        return;
    }
    platform::removeFolder(location, WorkFolder::lockName());
}

void clearClaim(const QFileInfo &claim)
{
    const QUrl location = QUrl::fromLocalFile(claim.filePath());
    platform::HolderFile::clearIfGone(location);
    if (isOld(claim.lastModified()) && !platform::HolderFile::isHolderRunning(location))
        platform::removeName(location);
}

} // namespace

void clearLeftOvers(const QUrl &folder)
{
    const QDir::Filters all =
        QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks;
    for (const QFileInfo &entry : QDir(folder.toLocalFile()).entryInfoList({u".tessaray-*"_s}, all)) {
        if (entry.isDir() && WorkFolder::isName(entry.fileName()))
            clearFolder(entry);
        else if (entry.isFile() && OutputClaims::isName(entry.fileName()))
            clearClaim(entry);
    }
}

} // namespace steps
