#pragma once

#include "engines/ffmpeg/FfmpegArguments.h"

class KXVideoTrack;

namespace engines {

/// The lists of the conversion of one track into a file of its own. They are joined into one shell
/// line that starts ffmpeg in the background, so several items hold two words.
ConversionLists singleTrackLists(const KXSelection &selection, const KXVideoTrack &track, const QUrl &output,
                                 const QUrl &log);

/// ".added" for a stereo copy, else empty: stands before the output's extension.
QString singleTrackSuffix(const KXVideoTrack &track);

} // namespace engines
