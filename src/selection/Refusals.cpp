#include "selection/Refusals.h"

#include "selection/Targets.h"
#include "tools/Numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using tools::leadingInteger;

namespace selection {

namespace {

constexpr qsizetype fewestToJoin = 2;

qsizetype countOf(const KXSelection &selection, bool (*isIt)(const KXVideoTrack &))
{
    const TrackList tracks = selection.trackList();
    return std::count_if(tracks.begin(), tracks.end(),
                         [&](const TrackPointer &track) { return isIt(*track); });
}

bool isAdded(const KXVideoTrack &track)
{
    return track.externalTrackFlag();
}

bool isOwn(const KXVideoTrack &track)
{
    return !track.externalTrackFlag();
}

bool isMkv(const QString &extension)
{
    return extension.toLower() == u"mkv"_s;
}

bool isReencoded(const KXVideoTrack &track)
{
    return isVideo(track) && track.userCodec() != u"passthru"_s;
}

/// What is copied into such a file makes ffmpeg fail, or can't be played from it. A word that ends in "_"
/// stands for all codecs that begin so.
struct Unheld
{
    OutputKind kind;
    QStringView container;
    QStringList codecs;
};

/// Forms of PCM and its kin that no file but their own holds.
const QStringList oddSounds{u"pcm_s8"_s,    u"pcm_f32be"_s, u"pcm_f64be"_s,   u"pcm_u16le"_s,
                            u"pcm_u24le"_s, u"pcm_u32le"_s, u"adpcm_ima_qt"_s};

const QList<Unheld> &unheld()
{
    static const QList<Unheld> table{
        {OutputKind::Mp4, u"MP4", {u"flv1"_s,   u"h263"_s,    u"msmpeg4v2"_s, u"msmpeg4v3"_s, u"wmv1"_s,
                                   u"wmv2"_s,   u"dvvideo"_s, u"pcm_"_s,      u"adpcm_"_s,    u"wmav1"_s,
                                   u"wmav2"_s,  u"wavpack"_s, u"flac"_s,      u"truehd"_s,    u"vp8"_s,
                                   u"theora"_s, u"prores"_s,  u"ffv1"_s,      u"amr_nb"_s,    u"amr_wb"_s}},
        // Whatever is copied into an AVI is marked as XviD.
        {OutputKind::Avi, u"AVI",
         oddSounds +
             QStringList{u"h264"_s,      u"flv1"_s,      u"h263"_s,    u"msmpeg4v2"_s,  u"msmpeg4v3"_s,
                         u"wmv1"_s,      u"wmv2"_s,      u"dvvideo"_s, u"mpeg2video"_s, u"mjpeg"_s,
                         u"hevc"_s,      u"av1"_s,       u"vp8"_s,     u"vp9"_s,        u"prores"_s,
                         u"theora"_s,    u"ffv1"_s,      u"opus"_s,    u"alac"_s,       u"pcm_s16be"_s,
                         u"pcm_s24be"_s, u"pcm_s32be"_s, u"wavpack"_s, u"flac"_s,       u"truehd"_s}},
        {OutputKind::Mkv, u"MKV", oddSounds},
    };
    return table;
}

/// ffmpeg writes these into MP4 where it may be experimental, as it may be beside an AAC encoder.
bool isExperimental(const QString &codec)
{
    return codec == u"flac"_s || codec == u"truehd"_s;
}

bool isHeld(const Unheld &row, const QString &codec)
{
    return std::none_of(row.codecs.begin(), row.codecs.end(), [&](const QString &word) {
        return word.endsWith(u'_') ? codec.startsWith(word) : codec == word;
    });
}

bool hasAudioOutput(const KXVideoTrack &track, const QString &userCodec)
{
    const auto outputs = track.userAudioSettingsDictionaryArray();
    return std::any_of(outputs.begin(), outputs.end(), [&](const QVariantMap &output) {
        return output.value(u"userCodec"_s).toString() == userCodec;
    });
}

bool isCopied(const KXVideoTrack &track)
{
    const QString copied = u"passthru"_s;
    return isAudio(track) ? hasAudioOutput(track, copied) : isVideo(track) && track.userCodec() == copied;
}

/// "FLAC can't be in MP4: re-encode it or choose MKV."
QString sentenceOf(const QString &codec, const Unheld &row)
{
    const QString other = row.kind == OutputKind::Mkv ? QString() : u" or choose MKV"_s;
    return u"%1 can't be in %2: re-encode it%3."_s.arg(codec, row.container, other);
}

QString refusalOfContainer(const KXSelection &selection)
{
    const TrackList tracks = selection.trackList();
    const bool encodesAac = std::any_of(tracks.begin(), tracks.end(), [](const TrackPointer &track) {
        return isAudio(*track) && hasAudioOutput(*track, u"aac"_s);
    });
    const OutputKind kind = outputKindFor(selection.theDevice());
    for (const Unheld &row : unheld()) {
        for (const TrackPointer &track : tracks) {
            const QString codec = track->probedCodecName();
            const bool isExcused = kind == OutputKind::Mp4 && encodesAac && isExperimental(codec);
            if (row.kind == kind && isCopied(*track) && !isExcused && !isHeld(row, codec))
                return sentenceOf(codec.toUpper(), row);
        }
    }
    return {};
}

QString needsReencode()
{
    return u"A subtitle can only be burned into a video that is re-encoded."_s;
}

QString refusalOfVideoRemoval(const KXSelection &selection)
{
    return countOf(selection, isVideo) > 0 ? u"A video track can't be removed."_s : QString();
}

QString refusalOfNumbers(const KXSelection &selection)
{
    const QString rate = selection.userVideoBitRate();
    const QString width = selection.userWidth();
    if (!tools::isAllDigits(rate))
        return u"The video bit rate \"%1\" is not a number of kb/s, so the video can't be re-encoded."_s.arg(
            rate);
    if (selection.userPassNumber() == u"2"_s && leadingInteger(rate) == 0)
        return u"Two passes need a video bit rate above 0."_s;
    const bool isTooSmall = leadingInteger(width) < 2 && leadingInteger(selection.videoTrackWidth()) > 0;
    if (!tools::isAllDigits(width) || isTooSmall)
        return u"The width \"%1\" is not a number of pixels, so the video can't be re-encoded."_s.arg(width);
    return {};
}

} // namespace

QString refusalOfVideos(qsizetype count)
{
    return count == 1 ? QString()
                      : u"A conversion needs exactly one video track; %1 are chosen."_s.arg(count);
}

QString refusalToConvert(const KXSelection &selection, const ConversionSettings &asked)
{
    const QString ofVideos = refusalOfVideos(countOf(selection, isVideo));
    if (!ofVideos.isNull())
        return ofVideos;
    if (const QString ofContainer = refusalOfContainer(selection); !ofContainer.isNull())
        return ofContainer;
    if (asked.subtitles != SubtitleUse::Burn && countOf(selection, isBurned) == 0)
        return {};
    const qsizetype subtitles = countOf(selection, isSubtitle);
    if (subtitles != 1)
        return u"Burning needs exactly one chosen subtitle track; %1 are chosen."_s.arg(subtitles);
    return countOf(selection, isReencoded) == 0 ? needsReencode() : QString();
}

QString refusalToEncode(const KXSelection &selection)
{
    const TrackList tracks = selection.trackList();
    const auto video =
        std::find_if(tracks.begin(), tracks.end(), [](const TrackPointer &track) { return isVideo(*track); });
    if (const QString ofContainer = refusalOfContainer(selection); !ofContainer.isNull())
        return ofContainer;
    if (video == tracks.end())
        return {};
    if (isReencoded(**video))
        return refusalOfNumbers(selection);
    return countOf(selection, isBurned) > 0 ? needsReencode() : QString();
}

bool canEditTracks(const QString &fileExtension, const KXSelection &selection)
{
    return isMkv(fileExtension) && !selection.trackList().isEmpty();
}

QString refusalToExtract(const KXSelection &selection)
{
    return canEditTracks(selection.videoTrackFileExtension(), selection)
               ? QString()
               : u"Tracks can only be extracted from an MKV file of which at least one track is chosen."_s;
}

QString refusalToRemove(const KXSelection &selection)
{
    return isMkv(selection.videoTrackFileExtension()) ? refusalOfVideoRemoval(selection)
                                                      : u"Tracks can only be removed from MKV files."_s;
}

QString refusalToEdit(const KXSelection &selection, std::optional<TrackEdit> edit)
{
    if (!edit)
        return u"Choose what is to be done with the tracks."_s;
    const bool takesOwn = countOf(selection, isOwn) > 0;
    switch (*edit) {
    case TrackEdit::Extract:
        return takesOwn ? QString() : u"Tick a track of the file itself: added tracks can't be extracted."_s;
    case TrackEdit::Remove:
        if (const QString ofVideo = refusalOfVideoRemoval(selection); !ofVideo.isNull())
            return ofVideo;
        return takesOwn ? QString() : u"Tick the tracks of the file that are to go."_s;
    case TrackEdit::Add:
        break;
    }
    return countOf(selection, isAdded) > 0 ? QString() : u"Tick a track that was added with Add."_s;
}

QString refusalToJoin(qsizetype fileCount)
{
    if (fileCount == 0)
        return u"There are no files to join."_s;
    return fileCount < fewestToJoin ? u"A join needs at least two files."_s : QString();
}

bool endsBehindStart(const KXSelection &selection)
{
    return leadingInteger(selection.splitStartTimeSeconds()) <
           leadingInteger(selection.splitEndTimeSeconds());
}

QString refusalToSplit(const KXSelection &selection)
{
    const QStringList ways{u"time"_s, u"size"_s, u"duration"_s};
    return ways.contains(selection.splitType())
               ? QString()
               : u"There is no way to split by \"%1\", so nothing was started."_s.arg(selection.splitType());
}

QString refusalToSend(const KXSelection &selection)
{
    return countOf(selection, isSubtitle) > 0 ? QString() : u"There is no subtitle to send."_s;
}

} // namespace selection
