#pragma once

#include "media/KXVideoTrack.h"
#include "media/TrackFate.h"

namespace engines {

/// What the extraction of a track writes. The tracks that nobody wants are told with each.
media::MeantOutput extractionMeant(const KXVideoTrack &track, const TrackList &notWanted, const QUrl &output);
/// Of one that no tool here can write.
media::MeantOutput impossibleExtraction(const KXVideoTrack &track, const TrackList &notWanted);

} // namespace engines
