#pragma once

#include "engines/ffmpeg/FfmpegArguments.h"
#include "media/TrackFate.h"

class KXVideoTrack;

namespace engines {

/// What the lists of a whole-file conversion write, once they are launched: what the container can't hold is
/// left out of it.
media::MeantOutput conversionOutput(const KXSelection &selection, const ConversionRequest &request);

/// What those of a single track write.
media::MeantOutput singleTrackOutput(const KXVideoTrack &track, OutputKind kind, const QUrl &output);
/// The probe's word of the codec that a single track is re-encoded to.
QString singleTrackCodec(const KXVideoTrack &track, OutputKind kind);

} // namespace engines
