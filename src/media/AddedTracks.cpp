#include "media/AddedTracks.h"

#include "media/FileNames.h"
#include "media/ProbeReader.h"
#include "media/TrackBuilder.h"
#include "tools/Numbers.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace media {

namespace {

QString typeOf(const QVariant &stream)
{
    return textIn(stream.toMap(), u"codec_type"_s);
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
    setFileFields(*track, url, fileNamesOf(url));
    setKindFields(*track, kind, stream);
    track->setTrackMencoderID(QString::number(countOfKind));
    const QString index = textIn(stream, u"index"_s);
    if (!index.isEmpty())
        track->setTrackFfmpegID(index);
    track->setTrackMp4boxID(QString::number(tools::leadingInteger(index) + 1));
    track->setTrackMkvmergeID(u"0"_s);
    return track;
}

qsizetype countOf(const TrackList &tracks, TrackKind kind)
{
    return std::count_if(tracks.begin(), tracks.end(),
                         [kind](const TrackPointer &track) { return track->trackType() == wordOf(kind); });
}

} // namespace

QString useOf(const QVariantList &streams, const QUrl &url)
{
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

AddedTracks addedTracksIn(const QVariantList &streams, const QUrl &url, Codecs codecs)
{
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
        const QString codec = textIn(stream, u"codec_name"_s);
        if (!setCodecFields(*track, kind, codec, codecs))
            return {{}, u"track not identified"_s, u"\n\nProblem Codec: "_s + codec, codec};
        if (countOf(tracks, kind) > 0)
            return {{}, u"too many tracks"_s};
        setDescription(*track, stream);
        track->setHasCompany(streams.size() > 1);
        tracks.append(track);
    }
    if (tracks.isEmpty())
        return {{}, u"not a video"_s, u""_s};
    nameUntitledTracks(tracks);
    return {tracks, {}};
}

} // namespace media
