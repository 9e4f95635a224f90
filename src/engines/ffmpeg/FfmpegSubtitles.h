#pragma once

#include "media/KXVideoTrack.h"
#include "selection/ConversionSettings.h"
#include "selection/Targets.h"
#include "tools/OptionItem.h"

class KXSelection;

namespace engines {

using selection::OutputKind;

/// The files of the tracks that are files of their own, in track order.
QList<QUrl> externalFiles(const TrackList &tracks);
/// What "-map" takes for a track: its stream of the source, or the whole external file.
tools::OptionItem mapArgument(const KXVideoTrack &track, const TrackList &tracks, int videoInput);
using selection::isSubtitle;

/// The arguments of the subtitles that are muxed as streams of their own.
tools::OptionList softSubtitleArguments(const TrackList &tracks, int videoInput, OutputKind kind);
/// Changes a list so that the subtitle is drawn into the picture: a text file by the subtitles filter,
/// a picture subtitle of the source itself by an overlay. Any other file changes nothing.
void burnSubtitle(tools::OptionList &list, const KXSelection &selection, const QUrl &subtitle);
/// The track that burnSubtitle() draws: of a text file the one that was chosen to be drawn, of the source
/// itself its last subtitle. Null when it changes nothing.
TrackPointer drawnSubtitle(const KXSelection &selection, const QUrl &subtitle);

} // namespace engines
