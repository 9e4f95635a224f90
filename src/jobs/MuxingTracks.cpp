#include "jobs/MuxingTracks.h"

#include "selection/ConversionSettings.h"

using namespace Qt::StringLiterals;

namespace jobs {

namespace {

void takeOutput(KXVideoTrack &track, const selection::AudioOutput &output)
{
    track.setUserCodec(output.codec);
    track.setUserBitRate(output.bitRate);
    track.setUserNumberOfChannels(output.channels);
}

TrackList tracksOfOutputs(const TrackPointer &track)
{
    TrackList tracks;
    for (const selection::AudioOutput &output : selection::outputsOf(*track)) {
        const TrackPointer one = tracks.isEmpty() ? track : track->copy();
        if (!tracks.isEmpty())
            one->setIsStereoCopyFlag(true);
        takeOutput(*one, output);
        tracks.append(one);
    }
    return tracks;
}

} // namespace

TrackList tracksForMuxing(const TrackList &tracks)
{
    TrackList all;
    for (const TrackPointer &track : tracks) {
        if (selection::isAudio(*track)) {
            all += tracksOfOutputs(track);
            continue;
        }
        if (track->userCodec() == u"burn"_s)
            track->setUserCodec(u"mux"_s);
        all.append(track);
    }
    return all;
}

} // namespace jobs
