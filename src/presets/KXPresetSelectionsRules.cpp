// How a rule ticks tracks.
#include "presets/KXPresetSelections.h"

#include "presets/TrackFilters.h"
#include "selection/KXSelectionController.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using presets::FilterKind;

namespace {

TrackList tracksOfTypes(const TrackList &tracks, const QStringList &types)
{
    TrackList found;
    std::copy_if(tracks.begin(), tracks.end(), std::back_inserter(found),
                 [&](const TrackPointer &track) { return types.contains(track->trackType()); });
    return found;
}

} // namespace

void KXPresetSelections::makeSelections()
{
    if (pName() == u"Manual"_s || m_currentVideoFile->theFileName() == u"none"_s)
        return;
    const TrackList tracks = m_currentVideoFile->trackList();
    for (const TrackPointer &track : tracks)
        track->setTrackSelected(false);
    if (pSelectedVideoTrack() == u"First Track"_s && !tracks.isEmpty() &&
        tracks.constFirst()->trackType() == u"Video"_s)
        tracks.constFirst()->setTrackSelected(true);
    presets::applyFilters(FilterKind::Audio, pAudioFilterArray(), pAudioFilterMode(),
                          tracksOfTypes(tracks, {u"Audio"_s}));
    presets::applyFilters(FilterKind::Subtitle, pSubtitleFilterArray(), pSubtitleFilterMode(),
                          tracksOfTypes(tracks, {u"Subtitle"_s, u"External Subtitle"_s}));
    m_selectionController.trackTableSelectionChanged(KXSelectionController::Sender::MakeSelections);
}
