#include "media/TracksBeside.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace media {

namespace {

bool belongsTo(const QString &name, const QString &stem)
{
    return name.startsWith(stem + u'.');
}

} // namespace

QList<QUrl> tracksBeside(const QUrl &film)
{
    static const QStringList subtitles{u"srt"_s, u"ass"_s, u"ssa"_s, u"ttxt"_s};
    const QFileInfo file(film.toLocalFile());
    const QString stem = file.completeBaseName();
    QFileInfoList named = file.dir().entryInfoList(QDir::Files | QDir::NoSymLinks, QDir::Name);
    named.removeIf([&](const QFileInfo &one) { return !belongsTo(one.fileName(), stem); });
    QList<QUrl> tracks;
    for (const QFileInfo &one : std::as_const(named)) {
        const bool isOthers = std::any_of(named.begin(), named.end(), [&](const QFileInfo &other) {
            return other.completeBaseName() != stem && !subtitles.contains(other.suffix().toLower()) &&
                   belongsTo(one.fileName(), other.completeBaseName());
        });
        if (subtitles.contains(one.suffix().toLower()) && !isOthers)
            tracks.append(QUrl::fromLocalFile(one.absoluteFilePath()));
    }
    return tracks;
}

} // namespace media
