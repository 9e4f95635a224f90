#include "app/TrackEditing.h"

#include "media/KXVideoFile.h"
#include "selection/ConversionSettings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace app {

namespace {

bool isOwn(const TrackPointer &track)
{
    return !track->externalTrackFlag();
}

TrackList only(const TrackList &tracks, bool (*wanted)(const TrackPointer &))
{
    TrackList chosen;
    std::copy_if(tracks.begin(), tracks.end(), std::back_inserter(chosen), wanted);
    return chosen;
}

/// A copy that is muxed as it is, whatever is chosen for a conversion.
TrackPointer passedThrough(const TrackPointer &track)
{
    const TrackPointer copy = track->copy();
    copy->setUserCodec(selection::isSubtitle(*track) ? u"mux"_s : u"passthru"_s);
    copy->setCreateStereoCopyFlag(false);
    copy->setUserAudioSettingsDictionaryArray({});
    return copy;
}

} // namespace

SelectionPointer selectionForRemoval(const KXSelection &selection)
{
    const SelectionPointer job = selection.copy();
    job->setTrackList(only(selection.trackList(), isOwn));
    job->setKeepTracksList(only(selection.keepTracksList(), isOwn));
    job->setAddedAudioTrackList({});
    job->setJobType(u"MKV Track Removal"_s);
    return job;
}

SelectionPointer selectionForAdding(const KXVideoFile &file, const KXSelection &selection)
{
    TrackList tracks;
    for (const TrackPointer &track : file.trackList()) {
        if (isOwn(track) || selection.trackList().contains(track))
            tracks.append(passedThrough(track));
    }
    const SelectionPointer job = selection.copy();
    job->setTrackList(tracks);
    job->setKeepTracksList({});
    job->setAddedAudioTrackList({});
    job->setJobType(u"MKV Conversion"_s);
    return job;
}

} // namespace app
