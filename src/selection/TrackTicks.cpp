#include "selection/TrackTicks.h"

#include "media/KXVideoFile.h"
#include "tools/Numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace selection {

namespace {

const QStringList &typesOf(TickedKind kind)
{
    static const QStringList video{u"Video"_s};
    static const QStringList audio{u"Audio"_s};
    static const QStringList subtitle{u"Subtitle"_s, u"External Subtitle"_s};
    if (kind == TickedKind::Subtitle)
        return subtitle;
    return kind == TickedKind::Video ? video : audio;
}

QString countOfKind(const TrackList &tracks, TickedKind kind)
{
    return QString::number(std::count_if(tracks.begin(), tracks.end(), [&](const TrackPointer &track) {
        return typesOf(kind).contains(track->trackType());
    }));
}

void divideTracks(const TrackList &tracks, KXSelection &selection)
{
    TrackList chosen;
    TrackList kept;
    for (const TrackPointer &track : tracks)
        (track->trackSelected() ? chosen : kept).append(track);
    selection.setTrackList(chosen);
    selection.setKeepTracksList(kept);
    selection.setVidCount(countOfKind(chosen, TickedKind::Video));
    selection.setAudCount(countOfKind(chosen, TickedKind::Audio));
    selection.setSubCount(countOfKind(chosen, TickedKind::Subtitle));
}

void numberAudioTracks(const TrackList &tracks)
{
    int number = 0;
    for (const TrackPointer &track : tracks) {
        if (track->trackType() == u"Audio"_s)
            track->setSelectedAudioTrackIndex(QString::number(number++));
    }
}

/// The selection's count of a kind, and the file's.
std::pair<QString, QString> countsOf(TickedKind kind, const KXVideoFile &file, const KXSelection &selection)
{
    switch (kind) {
    case TickedKind::Video:
        return {selection.vidCount(), file.theNumberOfVideoTracks()};
    case TickedKind::Audio:
        return {selection.audCount(), file.theNumberOfAudioTracks()};
    case TickedKind::Subtitle:
        break;
    }
    return {selection.subCount(), file.theNumberOfSubTracks()};
}

} // namespace

void takeTicks(const TrackList &tracks, KXSelection &selection)
{
    divideTracks(tracks, selection);
    selection.addAnyStereoTracks();
    numberAudioTracks(selection.trackList());
}

void toggleTicks(TickedKind kind, const KXVideoFile &file, const KXSelection &selection)
{
    const auto [selected, all] = countsOf(kind, file, selection);
    const bool ticks = tools::leadingInteger(selected) < tools::leadingInteger(all);
    for (const TrackPointer &track : file.trackList()) {
        if (typesOf(kind).contains(track->trackType(), Qt::CaseInsensitive))
            track->setTrackSelected(ticks);
    }
}

} // namespace selection
