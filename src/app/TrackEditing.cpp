#include "app/TrackEditing.h"

#include "media/KXVideoFile.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace app {

namespace {

QString translated(const char *text)
{
    return QCoreApplication::translate("TrackEditing", text);
}

bool isExternal(const TrackPointer &track)
{
    return track->externalTrackFlag();
}

bool isOwn(const TrackPointer &track)
{
    return !track->externalTrackFlag();
}

bool isVideo(const TrackPointer &track)
{
    return track->trackType() == u"Video"_s;
}

TrackList only(const TrackList &tracks, bool (*wanted)(const TrackPointer &))
{
    TrackList chosen;
    std::copy_if(tracks.begin(), tracks.end(), std::back_inserter(chosen), wanted);
    return chosen;
}

bool any(const TrackList &tracks, bool (*wanted)(const TrackPointer &))
{
    return std::any_of(tracks.begin(), tracks.end(), wanted);
}

/// A copy that is muxed as it is, whatever is chosen for a conversion.
TrackPointer passedThrough(const TrackPointer &track)
{
    const TrackPointer copy = track->copy();
    const bool isSubtitle = track->trackType().contains(u"Subtitle"_s);
    copy->setUserCodec(isSubtitle ? u"mux"_s : u"passthru"_s);
    copy->setCreateStereoCopyFlag(false);
    copy->setUserAudioSettingsDictionaryArray({});
    return copy;
}

} // namespace

QString trackEditingProblem(const KXSelection &selection, int editTrackMatrixIndex)
{
    const TrackList tracks = selection.trackList();
    switch (editTrackMatrixIndex) {
    case 0:
        return any(tracks, isOwn)
                   ? QString()
                   : translated("Tick a track of the file itself: added tracks can't be extracted.");
    case 1:
        if (any(tracks, isVideo))
            return translated("A video track can't be removed.");
        return any(tracks, isOwn) ? QString() : translated("Tick the tracks of the file that are to go.");
    case 2:
        return any(tracks, isExternal) ? QString() : translated("Tick a track that was added with Add.");
    default:
        return translated("Choose what is to be done with the tracks.");
    }
}

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
