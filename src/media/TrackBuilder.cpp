#include "media/TrackBuilder.h"

#include "media/ProbeReader.h"
#include "tools/Languages.h"
#include "tools/Numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace media {

namespace {

std::optional<TrackKind> kindOf(const QVariantMap &stream)
{
    const QString type = textIn(stream, u"codec_type"_s);
    if (type == u"video"_s)
        return TrackKind::Video;
    if (type == u"audio"_s)
        return TrackKind::Audio;
    if (type == u"subtitle"_s)
        return TrackKind::Subtitle;
    return std::nullopt;
}

bool isPicture(const QString &codecName)
{
    static const QStringList pictures{u"png"_s, u"jpeg"_s, u"jpg"_s, u"gif"_s, u"tiff"_s};
    return pictures.contains(codecName.toLower());
}

QString infoOf(const KXVideoTrack &described)
{
    const QString channels = u' ' + described.trackNumberOfChannels() + u"ch."_s;
    return described.trackType() + u": ("_s + described.trackCodec() +
           (described.trackType() == wordOf(TrackKind::Audio) ? channels : QString()) + u')';
}

} // namespace

QString wordOf(TrackKind kind)
{
    switch (kind) {
    case TrackKind::Video:
        return u"Video"_s;
    case TrackKind::Audio:
        return u"Audio"_s;
    case TrackKind::Subtitle:
        break;
    }
    return u"Subtitle"_s;
}

void setFileFields(KXVideoTrack &track, const QUrl &file, const FileNames &names)
{
    track.setTrackFilePath(names.path);
    track.setTrackFileExtension(names.extension);
    track.setTrackFileName(names.name);
    track.setTrackPathToFileFolder(names.folder);
    track.setTrackFileURL(file);
    track.setTrackURLToFileFolder(QUrl::fromLocalFile(names.folder));
}

void setKindFields(KXVideoTrack &track, TrackKind kind, const QVariantMap &stream)
{
    track.setTrackType(wordOf(kind));
    track.setForm(streamFormOf(stream));
    track.setUserCodec(kind == TrackKind::Subtitle ? u"mux"_s : u"passthru"_s);
    if (kind != TrackKind::Audio)
        return;
    const QString channels = textIn(stream, u"channels"_s);
    if (!channels.isEmpty())
        track.setTrackNumberOfChannels(channels);
    track.setUserAudioSettingsDictionaryArray({{{u"userCodec"_s, u"passthru"_s},
                                                {u"userBitRate"_s, u"0"_s},
                                                {u"userNumberOfChannels"_s, track.trackNumberOfChannels()}}});
}

bool setCodecFields(KXVideoTrack &track, TrackKind kind, const QString &codecName, Codecs codecs)
{
    auto match = CodecVocabulary::of(kind).classify(codecName);
    if (!match && codecs == Codecs::NewerToo)
        match = CodecVocabulary::classifyNewer(kind, codecName);
    if (!match)
        return false;
    track.setTrackCodec(match->codec);
    track.setTrackExtension(match->extension);
    track.setTrackInfo(infoOf(track));
    track.setProbedCodecName(codecName);
    return true;
}

void setDescription(KXVideoTrack &track, const QVariantMap &stream)
{
    const QString title = tagIn(stream, u"title"_s);
    if (!title.isEmpty())
        track.setTrackTitle(title);
    const QString language = tagIn(stream, u"language"_s);
    if (!language.isEmpty())
        track.setTrackLanguage(tools::languageNameOf(tools::standardizedCodeOf(language)));
    const QString bitRate = textIn(stream, u"bit_rate"_s);
    if (tools::leadingInteger(bitRate) >= 1001)
        track.setTrackBitRate(bitRate.chopped(3));
}

TrackBuilder::TrackBuilder(const QUrl &file, qsizetype streamCount, Codecs codecs)
    : m_file(file)
    , m_names(fileNamesOf(file))
    , m_streamCount(streamCount)
    , m_codecs(codecs)
{
}

TrackBuilder::Outcome TrackBuilder::add(const QVariantMap &stream, const QString &fallbackCodec)
{
    const auto kind = kindOf(stream);
    if (!kind)
        return Outcome::Skipped;
    const TrackPointer track = newTrack(*kind, stream);
    const QString told = textIn(stream, u"codec_name"_s);
    const QString codecName = told.isEmpty() ? fallbackCodec : told;
    const bool mayBeSkipped = *kind == TrackKind::Video && isPicture(codecName);
    if (!setCodecFields(*track, *kind, codecName, mayBeSkipped ? Codecs::OfVocabulary : m_codecs)) {
        if (mayBeSkipped)
            return Outcome::Skipped;
        m_problemCodec = codecName;
        return Outcome::NotIdentified;
    }
    setDescription(*track, stream);
    const QVariantMap disposition = stream.value(u"disposition"_s).toMap();
    track->setIsCover(*kind == TrackKind::Video && textIn(disposition, u"attached_pic"_s) == u"1"_s);
    m_tracks.append(track);
    return Outcome::Added;
}

TrackPointer TrackBuilder::newTrack(TrackKind kind, const QVariantMap &stream) const
{
    auto track = std::make_shared<KXVideoTrack>();
    setFileFields(*track, m_file, m_names);
    setKindFields(*track, kind, stream);
    track->setTrackMencoderID(QString::number(count(kind)));
    const QString index = textIn(stream, u"index"_s);
    if (!index.isEmpty())
        track->setTrackFfmpegID(index);
    track->setTrackMp4boxID(QString::number(tools::leadingInteger(index) + 1));
    track->setTrackMkvmergeID(mkvmergeID(kind, track->trackFfmpegID()));
    return track;
}

/// How mkvmerge counts: as ffprobe in its own container; in an avi the video is 0 and the audio tracks
/// follow; a lone stream is always 0.
QString TrackBuilder::mkvmergeID(TrackKind kind, const QString &index) const
{
    const QString container = m_names.extension.toLower();
    if (container == u"mkv"_s)
        return index;
    if (container == u"avi"_s)
        return kind == TrackKind::Audio ? QString::number(count(kind) + 1) : u"0"_s;
    return m_streamCount == 1 ? u"0"_s : index;
}

TrackList TrackBuilder::tracksOf(TrackKind kind) const
{
    TrackList tracks;
    std::copy_if(m_tracks.begin(), m_tracks.end(), std::back_inserter(tracks),
                 [&](const TrackPointer &track) { return track->trackType() == wordOf(kind); });
    return tracks;
}

void nameUntitledTracks(const TrackList &tracks)
{
    for (const TrackPointer &track : tracks) {
        if (track->trackTitle().startsWith(u"none"_s))
            track->setTrackTitle(track->trackType() + u" Track"_s);
    }
}

} // namespace media
