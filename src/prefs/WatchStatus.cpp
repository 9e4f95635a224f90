#include "prefs/WatchStatus.h"

#include "prefs/WatchJournal.h"
#include "prefs/WatchedFolder.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace prefs {

namespace {

int countOf(const WatchJournal &journal, WatchJournal::Why why)
{
    const QList<WatchJournal::Film> films = journal.films(why);
    return static_cast<int>(std::count_if(films.begin(), films.end(), [](const WatchJournal::Film &film) {
        return QFileInfo::exists(film.path);
    }));
}

} // namespace

QString WatchStatus::sentence() const
{
    return u"%1: %2; %3 waiting, %4 refused, %5 known, %6 outputs."_s
        .arg(folder, isWatched() ? u"watched by "_s + watcher : u"not watched"_s)
        .arg(waiting)
        .arg(refused)
        .arg(known)
        .arg(outputs);
}

WatchStatus watchStatusOf(const QString &folder, const QString &otherFolder)
{
    using Why = WatchJournal::Why;
    const QString real = QFileInfo(folder).canonicalFilePath();
    WatchJournal journal;
    journal.read(real, otherFolder);
    return {real,
            WatchedFolder::watcherOf(real),
            countOf(journal, Why::Waiting),
            countOf(journal, Why::Refused),
            countOf(journal, Why::Known),
            countOf(journal, Why::Output)};
}

} // namespace prefs
