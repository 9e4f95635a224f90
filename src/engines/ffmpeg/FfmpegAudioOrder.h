#pragma once

#include "media/KXVideoTrack.h"

namespace engines {

/// One output audio stream: a source track and one of its settings.
struct AudioOutput
{
    TrackPointer track;
    QString userCodec;
    QString userBitRate; ///< kb/s
    QString userNumberOfChannels;
};

/// The output audio streams in their order: stereo AAC first, then other AAC, then AC-3, then the rest,
/// each in track order, so that the first audio stream is one that every player knows.
QList<AudioOutput> orderedAudioOutputs(const TrackList &tracks);

} // namespace engines
