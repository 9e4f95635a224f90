#include "jobs/QueuedJob.h"

#include "media/KXVideoTrack.h"

#include <QDateTime>
#include <QFileInfo>
#include <QHash>

using namespace Qt::StringLiterals;

namespace jobs {

namespace {

SourceState stateOf(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return {path, 0, 0};
    return {path, info.size(), info.lastModified().toMSecsSinceEpoch()};
}

} // namespace

SelectionPointer independentCopy(const KXSelection &selection)
{
    QHash<const KXVideoTrack *, TrackPointer> copies;
    const auto isolated = [&](const TrackList &tracks) {
        TrackList own;
        for (const TrackPointer &track : tracks) {
            TrackPointer &copy = copies[track.get()];
            if (!copy)
                copy = track->copy();
            own.append(copy);
        }
        return own;
    };
    const SelectionPointer copy = selection.copy();
    copy->setTrackList(isolated(copy->trackList()));
    copy->setKeepTracksList(isolated(copy->keepTracksList()));
    copy->setAddedAudioTrackList(isolated(copy->addedAudioTrackList()));
    return copy;
}

QList<QUrl> sourcesOf(const KXSelection &selection)
{
    QList<QUrl> sources{selection.videoTrackFileURL()};
    sources += selection.editFilesURLsList();
    for (const TrackList &tracks :
         {selection.trackList(), selection.addedAudioTrackList(), selection.keepTracksList()}) {
        for (const TrackPointer &track : tracks)
            sources.append(track->trackFileURL());
    }
    sources.removeIf([](const QUrl &url) { return url.toLocalFile().isEmpty(); });
    return sources;
}

QList<SourceState> statesOf(const QList<QUrl> &sources)
{
    QList<SourceState> states;
    QStringList seen;
    for (const QUrl &source : sources) {
        const QString path = source.toLocalFile();
        if (seen.contains(path))
            continue;
        seen.append(path);
        states.append(stateOf(path));
    }
    return states;
}

QString changeOf(const QList<SourceState> &sources)
{
    for (const SourceState &source : sources) {
        if (stateOf(source.path) == source)
            continue;
        return QFileInfo::exists(source.path) ? u"%1 has changed since the job was added."_s.arg(source.path)
                                              : u"%1 is not there any more."_s.arg(source.path);
    }
    return {};
}

} // namespace jobs
