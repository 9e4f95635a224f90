#include "media/SourceStreams.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace media {

namespace {

const QString chaptersKind = u"chapters"_s;

QString kindOfStream(const QJsonObject &stream)
{
    const QString type = stream[u"codec_type"_s].toString();
    if (type == u"video"_s)
        return stream[u"disposition"_s][u"attached_pic"_s].toInt() == 1 ? u"cover"_s : type;
    static const QStringList known{u"audio"_s, u"subtitle"_s, u"attachment"_s};
    return known.contains(type) ? type : u"data"_s;
}

/// The texts of chapters in MP4 and MOV, by ffprobe's word for them.
bool isChapterText(const SourceStream &stream)
{
    return stream.kind == u"data"_s && stream.codec == u"bin_data"_s;
}

bool isNamed(const QList<TrackFate> &tracks, const QUrl &source, const SourceStream &stream)
{
    return std::any_of(tracks.begin(), tracks.end(), [&](const TrackFate &track) {
        const bool isChapters = stream.kind == chaptersKind && track.kind == chaptersKind;
        return track.source == source && (isChapters || (stream.index >= 0 && track.index == stream.index));
    });
}

bool fits(const TrackFate &pattern, const QUrl &source, const SourceStream &stream)
{
    return pattern.kind == stream.kind && (pattern.codec.isNull() || pattern.codec == stream.codec) &&
           (pattern.source.isEmpty() || pattern.source == source);
}

TrackFate fateOf(const MeantOutput &meant, const QUrl &source, const SourceStream &stream)
{
    TrackFate fate;
    fate.became = Became::LeftOut;
    fate.reason = u"It was not chosen."_s;
    const auto found = std::find_if(meant.rest.begin(), meant.rest.end(),
                                    [&](const TrackFate &pattern) { return fits(pattern, source, stream); });
    if (found != meant.rest.end())
        fate = *found;
    fate.source = source;
    fate.index = stream.index;
    fate.kind = stream.kind;
    fate.codec = stream.codec;
    fate.output = fate.became == Became::LeftOut ? QUrl() : meant.output;
    return fate;
}

/// The codecs of tracks that were planned without being probed.
void fillIn(QList<TrackFate> &tracks, const QUrl &source, const SourceStream &stream)
{
    for (TrackFate &track : tracks) {
        if (track.source == source && track.index == stream.index && track.codec.isNull())
            track.codec = stream.codec;
    }
}

/// Of several sources with chapters only the first one's are taken.
void leaveOutFurtherChapters(QList<TrackFate> &tracks)
{
    QUrl first;
    for (TrackFate &track : tracks) {
        if (track.kind != chaptersKind || track.became == Became::LeftOut)
            continue;
        if (first.isEmpty())
            first = track.source;
        if (track.source == first)
            continue;
        track.became = Became::LeftOut;
        track.reason = u"The chapters of %1 are taken."_s.arg(first.fileName());
        track.output = QUrl();
    }
}

} // namespace

SourceStreams withChapters(const SourceStreams &streams, bool hasChapters)
{
    SourceStreams all = streams;
    if (!hasChapters)
        return all;
    const auto text = std::find_if(all.begin(), all.end(), isChapterText);
    if (text == all.end())
        all.append({-1, chaptersKind, QString()});
    else
        text->kind = chaptersKind;
    return all;
}

SourceStreams sourceStreamsIn(const QByteArray &json)
{
    const QJsonObject document = QJsonDocument::fromJson(json).object();
    SourceStreams streams;
    for (const QJsonValue &value : document[u"streams"_s].toArray()) {
        const QJsonObject stream = value.toObject();
        const QString codec = stream[u"codec_name"_s].toString();
        streams.append(
            {stream[u"index"_s].toInt(-1), kindOfStream(stream), codec.isEmpty() ? QString() : codec});
    }
    return withChapters(streams, !document[u"chapters"_s].toArray().isEmpty());
}

MeantOutput completed(const MeantOutput &meant, const QHash<QUrl, SourceStreams> &sources)
{
    MeantOutput complete = meant;
    for (const QUrl &source : meant.sources) {
        for (const SourceStream &stream : sources.value(source)) {
            if (isNamed(meant.tracks, source, stream))
                fillIn(complete.tracks, source, stream);
            else
                complete.tracks.append(fateOf(meant, source, stream));
        }
    }
    if (meant.hasOneSetOfChapters)
        leaveOutFurtherChapters(complete.tracks);
    return complete;
}

} // namespace media
