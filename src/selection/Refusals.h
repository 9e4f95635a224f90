#pragma once

#include "selection/ConversionSettings.h"

/// What can't be done with what is chosen, said once for the window, the command line, watch mode and the
/// jobs. Each answers a sentence for the user, or a null text when nothing is in the way.
namespace selection {

/// A conversion takes one video track.
QString refusalOfVideos(qsizetype count);
// Both of a conversion name a track that is to be copied and that its file can't hold.
/// Of a conversion that was just chosen. A subtitle that was to be burned may be missing in the selection,
/// so what was asked for counts too.
QString refusalToConvert(const KXSelection &selection, const ConversionSettings &asked);
/// Of a conversion as ffmpeg would be told: choices with which it could only fail.
QString refusalToEncode(const KXSelection &selection);

/// Extraction, when a preset asks for it.
QString refusalToExtract(const KXSelection &selection);
/// Of the command line's removal.
QString refusalToRemove(const KXSelection &selection);

/// What the Go button does with the ticked tracks.
enum class TrackEdit { Extract, Remove, Add };
/// No value for an edit stands for none that is known.
QString refusalToEdit(const KXSelection &selection, std::optional<TrackEdit> edit);

/// Whether tracks of the file can be edited: an MKV of which one is chosen.
bool canEditTracks(const QString &fileExtension, const KXSelection &selection);

QString refusalToJoin(qsizetype fileCount);
/// A time split needs its end behind its start.
bool endsBehindStart(const KXSelection &selection);
/// Of a way to split that there is not.
QString refusalToSplit(const KXSelection &selection);
/// Of the hand-over of a subtitle.
QString refusalToSend(const KXSelection &selection);

} // namespace selection
