#pragma once

#include "media/KXVideoTrack.h"

namespace jobs {

/// The tracks of a job that muxes: each output of an audio track is a track of its own. The first takes
/// codec, bit rate and channels of the first output; for each further one there is a copy that is marked
/// as a stereo copy. Nothing can be burned without a re-encode, so every subtitle is muxed.
TrackList tracksForMuxing(const TrackList &tracks);

} // namespace jobs
