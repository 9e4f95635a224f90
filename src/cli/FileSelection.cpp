#include "cli/FileSelection.h"

#include "cli/Session.h"
#include "engines/FfmpegSubtitles.h"
#include "media/KXVideoFile.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

/// The first track when it is video, and the first audio track and subtitle.
QStringList firstOfEachKind(const TrackList &tracks)
{
    QStringList indexes;
    bool hasAudio = false;
    bool hasSubtitle = false;
    for (qsizetype i = 0; i < tracks.size(); ++i) {
        const KXVideoTrack &track = *tracks.at(i);
        bool takes = i == 0 && track.trackType() == u"Video"_s;
        if (track.trackType() == u"Audio"_s && !hasAudio)
            takes = hasAudio = true;
        if (engines::isSubtitle(track) && !hasSubtitle)
            takes = hasSubtitle = true;
        if (takes)
            indexes.append(track.trackFfmpegID());
    }
    return indexes;
}

void count(KXSelection &selection)
{
    qsizetype videos = 0;
    qsizetype audios = 0;
    qsizetype subtitles = 0;
    for (const TrackPointer &track : selection.trackList()) {
        videos += track->trackType() == u"Video"_s ? 1 : 0;
        audios += track->trackType() == u"Audio"_s ? 1 : 0;
        subtitles += engines::isSubtitle(*track) ? 1 : 0;
    }
    selection.setVidCount(QString::number(videos));
    selection.setAudCount(QString::number(audios));
    selection.setSubCount(QString::number(subtitles));
}

void divide(KXSelection &selection, const TrackList &tracks, const std::optional<QStringList> &taken)
{
    TrackList chosen;
    TrackList kept;
    for (const TrackPointer &track : tracks) {
        track->setTrackSelected(!taken || taken->contains(track->trackFfmpegID()));
        (track->trackSelected() ? chosen : kept).append(track);
    }
    selection.setTrackList(chosen);
    selection.setKeepTracksList(kept);
    count(selection);
}

} // namespace

std::shared_ptr<KXVideoFile> probed(Session &session, const QString &path, QString &status)
{
    const auto file = std::make_shared<KXVideoFile>(&session.program().preferences());
    file->setStopFlag(session.interrupts().flag());
    status = file->initializeForURL(QUrl::fromLocalFile(path));
    return file;
}

FileSelection selectFile(Session &session, const QString &path, const std::optional<QStringList> &tracks,
                         DefaultTracks otherwise)
{
    FileSelection result;
    result.path = path;
    const auto file = probed(session, path, result.status);
    if (result.status != u"OK"_s)
        return result;
    result.selection = std::make_shared<KXSelection>();
    result.selection->initialize();
    result.selection->initializeFrom(*file);
    std::optional<QStringList> taken = tracks;
    if (!taken && otherwise == DefaultTracks::FirstOfEachKind)
        taken = firstOfEachKind(file->trackList());
    divide(*result.selection, file->trackList(), taken);
    return result;
}

QStringList missingTracks(const KXSelection &selection, const std::optional<QStringList> &tracks)
{
    QStringList missing = tracks.value_or(QStringList());
    for (const TrackPointer &track : selection.trackList())
        missing.removeAll(track->trackFfmpegID());
    return missing;
}

void leaveOutSubtitles(KXSelection &selection)
{
    TrackList chosen = selection.trackList();
    chosen.removeIf([](const TrackPointer &track) { return engines::isSubtitle(*track); });
    selection.setTrackList(chosen);
    count(selection);
}

} // namespace cli
