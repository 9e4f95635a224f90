// How KXVideoFile takes separate files in: what they are good for, and the track that they hold.
#include "media/KXVideoFile.h"

#include "media/FileNames.h"
#include "media/ProbeReader.h"
#include "media/TrackBuilder.h"
#include "tools/Numbers.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using media::AddedTracks;
using media::TrackKind;

namespace {

QString typeOf(const QVariant &stream)
{
    return media::textIn(stream.toMap(), u"codec_type"_s);
}

bool isSubtitleName(const QUrl &url)
{
    static const QStringList extensions{u"ssa"_s, u"ass"_s, u"srt"_s, u"ttxt"_s};
    return extensions.contains(QFileInfo(url.toLocalFile()).suffix().toLower());
}

/// The added file is a container of its own, so mkvmerge counts from 0 and mp4box from 1.
TrackPointer addedTrack(TrackKind kind, const QVariantMap &stream, const QUrl &url, qsizetype countOfKind)
{
    auto track = std::make_shared<KXVideoTrack>();
    media::setFileFields(*track, url, media::fileNamesOf(url));
    media::setKindFields(*track, kind, stream);
    track->setTrackMencoderID(QString::number(countOfKind));
    const QString index = media::textIn(stream, u"index"_s);
    if (!index.isEmpty())
        track->setTrackFfmpegID(index);
    track->setTrackMp4boxID(QString::number(tools::leadingInteger(index) + 1));
    track->setTrackMkvmergeID(u"0"_s);
    return track;
}

qsizetype countOf(const TrackList &tracks, TrackKind kind)
{
    return std::count_if(tracks.begin(), tracks.end(), [kind](const TrackPointer &track) {
        return track->trackType() == media::wordOf(kind);
    });
}

} // namespace

QString KXVideoFile::whatToDoWithFile(const QUrl &url) const
{
    if (trackList().isEmpty())
        return u"replace file"_s;
    const QVariantList streams = createFfprobeResultsDictionaryArrayForURL(url);
    if (streams == QVariantList{notAVideo})
        return u"replace file"_s; // loading it then says what is wrong
    int videos = 0;
    int others = 0;
    for (const QVariant &stream : streams) {
        const QString type = typeOf(stream);
        videos += type == u"video"_s ? 1 : 0;
        others += type == u"audio"_s || type == u"subtitle"_s ? 1 : 0;
    }
    if (videos == 0 && others == 1)
        return u"add file"_s;
    if (videos + others == 0) // whatever else it holds is nothing to us
        return isSubtitleName(url) ? u"add file"_s : u"not a video file"_s;
    return u"replace file"_s;
}

AddedTracks KXVideoFile::createAddedTrackForURL(const QUrl &url) const
{
    const QVariantList streams = createFfprobeResultsDictionaryArrayForURL(url);
    if (streams == QVariantList{notAVideo})
        return {{}, notAVideo};
    TrackList tracks;
    for (const QVariant &value : streams) {
        const QVariantMap stream = value.toMap();
        const QString type = typeOf(value);
        if (type == u"video"_s)
            return {{}, u"video track"_s};
        if (type != u"audio"_s && type != u"subtitle"_s)
            continue;
        const TrackKind kind = type == u"audio"_s ? TrackKind::Audio : TrackKind::Subtitle;
        const TrackPointer track = addedTrack(kind, stream, url, countOf(tracks, kind));
        const QString codec = media::textIn(stream, u"codec_name"_s);
        if (!media::setCodecFields(*track, kind, codec))
            return {{}, refuseAdded(url, u"\n\nProblem Codec: "_s + codec)};
        if (countOf(tracks, kind) > 0)
            return {{}, u"too many tracks"_s};
        media::setDescription(*track, stream);
        track->setHasCompany(streams.size() > 1);
        tracks.append(track);
    }
    if (tracks.isEmpty())
        return {{}, refuseAdded(url, {})};
    media::nameUntitledTracks(tracks);
    return {tracks, {}};
}

/// Leaves a fresh probe, and the codec that was the problem, beside the file. Answers the refusal.
QString KXVideoFile::refuseAdded(const QUrl &url, const QString &reason) const
{
    const QString output = probeOf(url);
    if (isStopped())
        return notAVideo;
    media::writeErrorFile(url, output + reason);
    return reason.isNull() ? notAVideo : u"track not identified"_s;
}

QString KXVideoFile::addTrack(const QUrl &url)
{
    const AddedTracks added = createAddedTrackForURL(url);
    if (added.refusal == u"video track"_s)
        return u"adding video track"_s;
    if (!added.refusal.isNull())
        return added.refusal;
    if (added.tracks.size() > 1)
        return u"too many tracks"_s;
    const TrackPointer &track = added.tracks.constFirst();
    track->setExternalTrackFlag(true);
    setTrackList(trackList() << track);
    countTracksAnew();
    return u"OK"_s;
}

void KXVideoFile::takeFlagsOfSource() const
{
    for (const QVariant &value : ffprobeResultsDictionaryArray()) {
        const QVariantMap stream = value.toMap();
        const QVariantMap flags = stream.value(u"disposition"_s).toMap();
        for (const TrackPointer &track : trackList()) {
            if (track->externalTrackFlag() || track->trackFfmpegID() != media::textIn(stream, u"index"_s))
                continue;
            track->setTrackDefaultFlag(media::textIn(flags, u"default"_s) == u"1"_s);
            track->setTrackForcedFlag(media::textIn(flags, u"forced"_s) == u"1"_s);
        }
    }
}

bool KXVideoFile::checkForHeaderRemovalFor(const QUrl &url) const
{
    if (places() == nullptr || !media::isRegularFile(url))
        return false;
    return doShellScriptForWithOptions(urlOfApp(u"mkvinfo"_s), {url}).contains(u"header removal"_s);
}

void KXVideoFile::countTracksAnew()
{
    int videos = 0;
    int audios = 0;
    int subtitles = 0;
    for (const TrackPointer &track : trackList()) {
        const QString type = track->trackType();
        if (type == u"Video"_s)
            track->setTrackIndex(QString::number(++videos));
        else if (type == u"Audio"_s)
            track->setTrackIndex(QString::number(++audios));
        else if (type == u"Subtitle"_s || type == u"External Subtitle"_s)
            track->setTrackIndex(QString::number(++subtitles));
    }
    setTheNumberOfVideoTracks(QString::number(videos));
    setTheNumberOfAudioTracks(QString::number(audios));
    setTheNumberOfSubTracks(QString::number(subtitles));
}
