#pragma once

#include "selection/KXSelection.h"

class KXVideoFile;

namespace selection {

/// What may be done with the ticked tracks of a file.
struct TrackPossibilities
{
    bool convert = false; ///< exactly one video track
    bool editTracks = false;
    bool hasSubtitle = false;
    bool hasOneSubtitle = false; ///< only one can be burned
};
TrackPossibilities possibilitiesOf(const KXVideoFile &file, const KXSelection &selection);

/// Whether the selection's "splitType" has all it needs; two of its words are shown in fields.
bool isSplitComplete(const KXSelection &selection, const QString &splitSize, const QString &splitDuration);

/// Whether an audio track can pass through into the usual kinds of file.
bool canPassThrough(const KXVideoTrack &audio);
/// Whether it has so many channels that a stereo copy is of use.
bool isSurround(const KXVideoTrack &audio);
/// The steps of a conversion: a video that passes through keeps a profile level that can be edited.
QStringList stepsOfConversion(bool reencodesVideo);

} // namespace selection
