#include "selection/ConversionSettings.h"

using namespace Qt::StringLiterals;

namespace selection {

namespace {

AudioOutput outputOf(const QVariantMap &words)
{
    return {words.value(u"userCodec"_s).toString(), words.value(u"userNumberOfChannels"_s).toString(),
            words.value(u"userBitRate"_s).toString()};
}

QVariantMap wordsOf(const AudioOutput &output, const KXVideoTrack &track)
{
    return {{u"userCodec"_s, output.codec},
            {u"userBitRate"_s, output.bitRate},
            {u"userNumberOfChannels"_s,
             output.channels.isNull() ? track.trackNumberOfChannels() : output.channels}};
}

void writePicture(KXSelection &selection, Picture picture)
{
    for (const TrackPointer &track : selection.trackList()) {
        if (!isVideo(*track))
            continue;
        track->setUserCodec(picture == Picture::PassThrough ? u"passthru"_s : u"h264"_s);
        selection.setUserPassNumber(picture == Picture::TwoPasses ? u"2"_s : u"1"_s);
    }
}

void writeSubtitles(KXSelection &selection, SubtitleUse use)
{
    for (const TrackPointer &track : selection.trackList()) {
        if (isSubtitle(*track))
            track->setUserCodec(use == SubtitleUse::Burn ? u"burn"_s : u"mux"_s);
    }
}

/// No value for a word that is no choice.
std::optional<Picture> pictureOf(const KXSelection &selection, const KXVideoTrack &video)
{
    if (video.userCodec() == u"passthru"_s)
        return Picture::PassThrough;
    if (video.userCodec() != u"h264"_s)
        return std::nullopt;
    return selection.userPassNumber() == u"2"_s ? Picture::TwoPasses : Picture::OnePass;
}

} // namespace

bool isVideo(const KXVideoTrack &track)
{
    return track.trackType() == u"Video"_s;
}

bool isAudio(const KXVideoTrack &track)
{
    return track.trackType() == u"Audio"_s;
}

bool isSubtitle(const KXVideoTrack &track)
{
    return track.trackType() == u"Subtitle"_s || track.trackType() == u"External Subtitle"_s;
}

bool isBurned(const KXVideoTrack &track)
{
    const QString codec = track.userCodec().toLower();
    return isSubtitle(track) && codec != u"mux"_s && codec != u"extract"_s;
}

AudioOutputs outputsOf(const KXVideoTrack &track)
{
    AudioOutputs outputs;
    for (const QVariantMap &words : track.userAudioSettingsDictionaryArray())
        outputs.append(outputOf(words));
    return outputs;
}

void writeOutputs(KXVideoTrack &track, const AudioOutputs &outputs)
{
    AudioSettingsList settings;
    for (const AudioOutput &output : outputs)
        settings.append(wordsOf(output, track));
    track.setUserAudioSettingsDictionaryArray(settings);
}

/// The first video track that says anything counts, and the first subtitle.
ConversionSettings ConversionSettings::of(const KXSelection &selection)
{
    ConversionSettings settings;
    settings.target = selection.theDevice();
    settings.videoBitRate = selection.userVideoBitRate();
    settings.width = selection.userWidth();
    settings.frameRate = selection.userFPS();
    for (const TrackPointer &track : selection.trackList()) {
        if (isVideo(*track) && !settings.picture)
            settings.picture = pictureOf(selection, *track);
        else if (isSubtitle(*track) && !settings.subtitles)
            settings.subtitles = isBurned(*track) ? SubtitleUse::Burn : SubtitleUse::Mux;
        else if (isAudio(*track))
            settings.audio.insert(track, outputsOf(*track));
    }
    return settings;
}

ConversionSettings ConversionSettings::overlaidBy(const ConversionSettings &other) const
{
    ConversionSettings both = *this;
    const auto take = [](auto &value, const auto &others) {
        if (others)
            value = others;
    };
    take(both.target, other.target);
    take(both.videoBitRate, other.videoBitRate);
    take(both.width, other.width);
    take(both.frameRate, other.frameRate);
    take(both.picture, other.picture);
    take(both.subtitles, other.subtitles);
    both.audio.insert(other.audio);
    return both;
}

void ConversionSettings::writeTo(KXSelection &selection) const
{
    if (target)
        selection.setTheDevice(*target);
    if (videoBitRate)
        selection.setUserVideoBitRate(*videoBitRate);
    if (width)
        selection.setUserWidth(*width);
    if (frameRate)
        selection.setUserFPS(*frameRate);
    if (picture)
        writePicture(selection, *picture);
    if (subtitles)
        writeSubtitles(selection, *subtitles);
    for (auto outputs = audio.cbegin(); outputs != audio.cend(); ++outputs)
        writeOutputs(*outputs.key(), *outputs);
}

} // namespace selection
