#include "engines/ffmpeg/FfmpegFates.h"

#include "engines/Fates.h"
#include "engines/ffmpeg/FfmpegAudioOrder.h"
#include "engines/ffmpeg/FfmpegLaunchRules.h"
#include "engines/ffmpeg/FfmpegSubtitles.h"
#include "selection/KXSelection.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using media::MeantOutput;
using media::TrackFate;

namespace engines {

namespace {

QString pictureCodec(OutputKind kind)
{
    return kind == OutputKind::Avi ? u"mpeg4"_s : u"h264"_s;
}

/// ffmpeg's own choice, where no encoder is named.
QString defaultAudioCodec(OutputKind kind)
{
    switch (kind) {
    case OutputKind::Mp4:
        return u"aac"_s;
    case OutputKind::Mkv:
        return u"vorbis"_s;
    case OutputKind::Avi:
        return u"mp3"_s;
    case OutputKind::Unknown:
        break;
    }
    return {};
}

TrackFate pictureFate(const KXVideoTrack &video, const ConversionRequest &request)
{
    return video.userCodec() == u"passthru"_s
               ? copiedTrack(video, request.output)
               : reencodedTrack(video, pictureCodec(request.kind), request.output);
}

TrackFate soundFate(const AudioOutput &sound, const ConversionRequest &request)
{
    static const QStringList encoders{u"aac"_s, u"ac3"_s, u"mp3"_s};
    if (sound.userCodec == u"passthru"_s)
        return copiedTrack(*sound.track, request.output);
    const QString codec =
        encoders.contains(sound.userCodec) ? sound.userCodec : defaultAudioCodec(request.kind);
    return reencodedTrack(*sound.track, codec, request.output);
}

/// Of a subtitle that is muxed and that the output can hold.
TrackFate muxedSubtitle(const KXVideoTrack &track, const ConversionRequest &request)
{
    if (request.kind == OutputKind::Mp4)
        return reencodedTrack(track, u"mov_text"_s, request.output);
    const bool becomesSrt = request.kind == OutputKind::Mkv && track.trackCodec() == u"ttxt"_s;
    return becomesSrt ? reencodedTrack(track, u"subrip"_s, request.output)
                      : copiedTrack(track, request.output);
}

TrackFate subtitleFate(const KXVideoTrack &track, const KXVideoTrack *drawn, const ConversionRequest &request)
{
    if (&track == drawn)
        return burnedTrack(track, request.output);
    if (track.userCodec().toLower() == u"extract"_s)
        return leftOutTrack(track, u"It gets a file of its own."_s);
    if (track.userCodec() != u"mux"_s)
        return leftOutTrack(track, drawn != nullptr ? u"Another subtitle is drawn into the picture."_s
                                                    : u"It can't be drawn into the picture."_s);
    if (!KXHelpers::isEmpty(request.subToBurn))
        return leftOutTrack(track, u"A subtitle is drawn into the picture, so no other is carried."_s);
    if (request.kind == OutputKind::Avi)
        return leftOutTrack(track, u"An AVI carries no subtitles."_s);
    if (!holdsSubtitle(request.kind, mappedStream(track)))
        return leftOutTrack(track, track.choiceReason().isNull() ? u"The output can't hold it."_s
                                                                 : track.choiceReason());
    return muxedSubtitle(track, request);
}

/// In the order of the output's streams.
class FateList final
{
public:
    void add(TrackFate fate)
    {
        if (fate.became == media::Became::Copied || fate.became == media::Became::Reencoded)
            fate.outputIndex = m_next++;
        m_fates.append(fate);
    }
    const QList<TrackFate> &fates() const { return m_fates; }

private:
    QList<TrackFate> m_fates;
    int m_next = 0;
};

void addPictures(FateList &list, const KXSelection &selection, const ConversionRequest &request)
{
    const TrackList tracks = selection.trackList();
    const TrackPointer video = videoTrackOf(tracks);
    if (video)
        list.add(pictureFate(*video, request));
    for (const TrackPointer &track : tracks) {
        if (selection::isVideo(*track) && track != video)
            list.add(leftOutTrack(*track, u"The output has one picture."_s));
    }
}

void addSound(FateList &list, const KXSelection &selection, const ConversionRequest &request)
{
    const TrackList tracks = selection.trackList();
    for (const AudioOutput &sound : orderedAudioOutputs(tracks))
        list.add(soundFate(sound, request));
    for (const TrackPointer &track : tracks) {
        if (selection::isAudio(*track) && track->userAudioSettingsDictionaryArray().isEmpty())
            list.add(leftOutTrack(*track, u"It was not chosen."_s));
    }
}

void addSubtitles(FateList &list, const KXSelection &selection, const ConversionRequest &request)
{
    const TrackPointer drawn = drawnSubtitle(selection, request.subToBurn);
    for (const TrackPointer &track : selection.trackList()) {
        if (isSubtitle(*track))
            list.add(subtitleFate(*track, drawn.get(), request));
    }
}

/// Whether a text that is carried, or drawn, has styles that ask for fonts.
bool keepsStyles(const KXSelection &selection, const QList<TrackFate> &fates)
{
    for (const TrackPointer &track : selection.trackList()) {
        const bool isStyled = track->trackCodec() == u"ass"_s || track->trackCodec() == u"ssa"_s;
        const auto keepsIt = [&](const TrackFate &fate) {
            return fate.source == track->trackFileURL() && fate.index == track->streamIndex() &&
                   (fate.became == media::Became::Copied || fate.became == media::Became::Burned);
        };
        if (isStyled && isSubtitle(*track) && std::any_of(fates.begin(), fates.end(), keepsIt))
            return true;
    }
    return false;
}

/// Fonts that a text will miss are told to everybody.
QList<TrackFate> missedFonts()
{
    QList<TrackFate> fonts;
    for (const QString &codec : {u"ttf"_s, u"otf"_s}) {
        fonts.append(restLeftOut(u"attachment"_s,
                                 u"A conversion carries no fonts, so styled subtitles may look different."_s,
                                 codec));
        fonts.last().told = media::Told::AsANote;
    }
    return fonts;
}

/// ffmpeg takes chapters over by itself, of the first input that has any; it is told of nothing else.
QList<TrackFate> restOfConversion(OutputKind kind)
{
    QList<TrackFate> rest{restLeftOut(u"attachment"_s, u"A conversion carries no attachments."_s),
                          restLeftOut(u"data"_s, u"A conversion carries no data streams."_s)};
    rest.append(kind == OutputKind::Avi ? restLeftOut(u"chapters"_s, u"An AVI carries no chapters."_s)
                                        : restCopied(u"chapters"_s));
    return rest;
}

} // namespace

MeantOutput conversionOutput(const KXSelection &selection, const ConversionRequest &request)
{
    FateList list;
    addPictures(list, selection, request);
    addSound(list, selection, request);
    addSubtitles(list, selection, request);
    MeantOutput meant;
    meant.output = request.output;
    meant.file = request.output;
    meant.sources = sourcesOf(selection.videoTrackFileURL(), selection.trackList());
    meant.tracks = list.fates() + notChosen(selection.keepTracksList());
    if (keepsStyles(selection, meant.tracks))
        meant.rest = missedFonts();
    meant.rest += restOfConversion(request.kind);
    meant.hasOneSetOfChapters = true;
    return meant;
}

QString singleTrackCodec(const KXVideoTrack &track, OutputKind kind)
{
    if (selection::isVideo(track))
        return u"h264"_s;
    const bool isKnown = track.userCodec() == u"aac"_s || track.userCodec() == u"ac3"_s;
    return isKnown ? track.userCodec() : defaultAudioCodec(kind);
}

/// The list takes the file's first stream, on purpose.
MeantOutput singleTrackOutput(const KXVideoTrack &track, OutputKind kind, const QUrl &output)
{
    const bool isCopy = track.userCodec() == u"passthru"_s;
    TrackFate fate =
        isCopy ? copiedTrack(track, output) : reencodedTrack(track, singleTrackCodec(track, kind), output);
    fate.index = 0;
    fate.outputIndex = 0;
    MeantOutput meant;
    meant.output = output;
    meant.file = output;
    meant.sources = {track.trackFileURL()};
    meant.tracks = {fate};
    meant.rest = restOfConversion(kind);
    return meant;
}

} // namespace engines
