#include "engines/ffmpeg/FfmpegAudioOrder.h"

#include "selection/ConversionSettings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engines {

namespace {

int groupOf(const AudioOutput &output)
{
    const QString &channels = output.userNumberOfChannels;
    if (output.userCodec == u"passthru"_s && output.track->trackCodec() == u"aac"_s &&
        (channels == u"2"_s || channels == u"1"_s)) {
        return 0;
    }
    if (output.userCodec == u"aac"_s)
        return channels == u"2"_s ? 0 : 1;
    return output.userCodec == u"ac3"_s ? 2 : 3;
}

} // namespace

QList<AudioOutput> orderedAudioOutputs(const TrackList &tracks)
{
    QList<AudioOutput> outputs;
    for (const TrackPointer &track : tracks) {
        if (!selection::isAudio(*track))
            continue;
        for (const selection::AudioOutput &output : selection::outputsOf(*track))
            outputs.append({track, output.codec, output.bitRate, output.channels});
    }
    std::stable_sort(outputs.begin(), outputs.end(),
                     [](const AudioOutput &a, const AudioOutput &b) { return groupOf(a) < groupOf(b); });
    return outputs;
}

} // namespace engines
