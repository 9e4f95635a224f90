#include "engines/mkvtoolnix/MkvTrackNumbers.h"

#include "engines/ffmpeg/FfmpegSubtitles.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engines {

namespace {

QList<int> numbersOfType(const QJsonArray &tracks, const QString &type)
{
    QList<int> numbers;
    for (const QJsonValue &track : tracks) {
        if (track[u"type"_s].toString() == type)
            numbers.append(track[u"id"_s].toInt());
    }
    return numbers;
}

/// mkvmerge's word for the kind.
QString typeOf(const KXVideoTrack &track)
{
    return isSubtitle(track) ? u"subtitles"_s : track.trackType().toLower();
}

TrackList inStreamOrder(TrackList tracks)
{
    std::sort(tracks.begin(), tracks.end(), [](const TrackPointer &one, const TrackPointer &other) {
        return one->streamIndex() < other->streamIndex();
    });
    return tracks;
}

} // namespace

bool needsIdentification(const QUrl &file)
{
    const QString extension = QFileInfo(file.toLocalFile()).suffix().toLower();
    return extension != u"mkv"_s && extension != u"avi"_s;
}

TrackNumbers trackNumbersIn(const QString &identification, const TrackList &tracksOfFile)
{
    const QJsonArray tracks =
        QJsonDocument::fromJson(identification.toUtf8()).object().value(u"tracks"_s).toArray();
    TrackNumbers numbers;
    for (const QString &type : {u"video"_s, u"audio"_s, u"subtitles"_s}) {
        TrackList ours;
        for (const TrackPointer &track : tracksOfFile) {
            if (typeOf(*track) == type)
                ours.append(track);
        }
        const QList<int> theirs = numbersOfType(tracks, type);
        if (theirs.size() != ours.size())
            continue;
        const TrackList ordered = inStreamOrder(ours);
        for (qsizetype i = 0; i < ordered.size(); ++i) {
            const auto known = ordered.at(i)->mkvmergeNumber();
            if (known && *known != theirs.at(i))
                numbers.insert(*known, theirs.at(i));
        }
    }
    return numbers;
}

} // namespace engines
