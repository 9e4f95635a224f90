#include "jobs/QueuedJob.h"

#include "media/KXVideoTrack.h"
#include "selection/SizeEstimate.h"

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

/// What is not encoded anew is as large as its sources.
std::optional<qint64> expectedBytes(JobKind kind, const KXSelection &selection)
{
    if (kind == JobKind::Conversion) {
        const auto estimate = selection::estimateOf(selection, selection.sourceSeconds());
        return estimate ? std::optional(estimate->bytes) : std::nullopt;
    }
    if (kind == JobKind::TrackExtraction || kind == JobKind::SubtitleSending)
        return std::nullopt;
    qint64 sum = 0;
    for (const SourceState &source : statesOf(sourcesOf(selection)))
        sum += source.size;
    return sum;
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
