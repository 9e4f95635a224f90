#pragma once

#include "selection/KXSelection.h"

class KXVideoFile;

namespace selection {

/// Makes the ticked tracks the selection's: its two lists, their counts, the stereo copies to make, and the
/// numbers by which the audio controls find a track.
void takeTicks(const TrackList &tracks, KXSelection &selection);

/// What one button ticks; "External Subtitle" counts as a subtitle.
enum class TickedKind { Video, Audio, Subtitle };
/// Ticks all tracks of the kind, or unticks them when all were selected.
void toggleTicks(TickedKind kind, const KXVideoFile &file, const KXSelection &selection);

} // namespace selection
