#include "jobs/MuxingTracks.h"

using namespace Qt::StringLiterals;

namespace jobs {

namespace {

void takeOutput(KXVideoTrack &track, const QVariantMap &output)
{
    track.setUserCodec(output.value(u"userCodec"_s).toString());
    track.setUserBitRate(output.value(u"userBitRate"_s).toString());
    track.setUserNumberOfChannels(output.value(u"userNumberOfChannels"_s).toString());
}

TrackList tracksOfOutputs(const TrackPointer &track)
{
    TrackList tracks;
    for (const QVariantMap &output : track->userAudioSettingsDictionaryArray()) {
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
        if (track->trackType() == u"Audio"_s) {
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
