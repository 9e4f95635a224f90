#include "engines/FfmpegSubtitles.h"

#include "engines/FfmpegArguments.h"
#include "engines/FfmpegDevices.h"
#include "selection/KXSelection.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using tools::OptionList;

namespace engines {

namespace {

/// Whole string items only: a file may be called "-map".
qsizetype positionOf(const OptionList &list, const QString &option)
{
    for (qsizetype i = 0; i < list.size(); ++i) {
        if (!list.at(i).isFile() && list.at(i).text() == option)
            return i;
    }
    return -1;
}

void drawText(OptionList &list, const QString &path)
{
    const qsizetype filter = positionOf(list, u"-vf"_s);
    if (filter >= 0 && filter + 1 < list.size()) // before the scaling
        list[filter + 1] = QString(u"subtitles=%1,"_s.arg(path) + list.at(filter + 1).text());
    else
        list << u"-vf"_s << QString(u"subtitles="_s + path);
}

QString lastSubtitleStream(const TrackList &tracks)
{
    QString stream;
    for (const TrackPointer &track : tracks) {
        if (track->trackType() == u"Subtitle"_s)
            stream = track->trackFfmpegID();
    }
    return stream;
}

/// The graph that lays the picture subtitle over the video; takes a scaling out of the list into it.
QString overlayGraph(OptionList &list, const KXSelection &selection)
{
    const QString stream = lastSubtitleStream(selection.trackList());
    const QString width = selection.videoTrackWidth();
    const QString height = selection.videoTrackHeight();
    const qsizetype filter = positionOf(list, u"-vf"_s);
    if (filter < 0)
        return u"[0:%1]scale=%2:%3[sub];[0:v][sub]overlay[outv]"_s.arg(stream, width, height);
    list.remove(filter, 2);
    const QString scale = scaleFilter(selection);
    return u"[0:%1]scale=%2:%3[subInitialize];[subInitialize]%4[sub];[0:v]%5[vid];[vid][sub]overlay[outv]"_s
        .arg(stream, width, height, scale, scale);
}

void overlayPicture(OptionList &list, const KXSelection &selection)
{
    const QString graph = overlayGraph(list, selection);
    const qsizetype map = positionOf(list, u"-map"_s);
    if (map < 0)
        return;
    list.remove(map, 2);
    for (const QString &item : {u"[outv]"_s, u"-map"_s, graph, u"-filter_complex"_s})
        list.insert(map, item);
}

} // namespace

QList<QUrl> externalFiles(const TrackList &tracks)
{
    QList<QUrl> files;
    for (const TrackPointer &track : tracks) {
        if (track->externalTrackFlag())
            files.append(track->trackFileURL());
    }
    return files;
}

QString mapArgument(const KXVideoTrack &track, const TrackList &tracks, int videoInput)
{
    if (!track.externalTrackFlag())
        return u"%1:%2"_s.arg(QString::number(videoInput), track.trackFfmpegID());
    return QString::number(externalFiles(tracks).indexOf(track.trackFileURL()) + 1);
}

bool isSubtitle(const KXVideoTrack &track)
{
    return track.trackType() == u"Subtitle"_s || track.trackType() == u"External Subtitle"_s;
}

OptionList softSubtitleArguments(const TrackList &tracks, int videoInput, OutputKind kind)
{
    OptionList list;
    int number = 0;
    for (const TrackPointer &track : tracks) {
        if (!isSubtitle(*track) || track->userCodec() != u"mux"_s)
            continue;
        const QString index = QString::number(number++);
        list << u"-map"_s << mapArgument(*track, tracks, videoInput);
        list << QString(u"-codec:s:"_s + index) << (kind == OutputKind::Pollenta ? u"mov_text"_s : u"copy"_s);
        const QString language = KXHelpers::language3CodeFor(track->trackLanguage());
        list << QString(u"-metadata:s:s:"_s + index) << QString(u"language="_s + language);
        list << QString(u"-metadata:s:s:"_s + index) << QString(u"title="_s + track->trackTitle());
    }
    return list;
}

void burnSubtitle(OptionList &list, const KXSelection &selection, const QUrl &subtitle)
{
    if (subtitle == selection.videoTrackFileURL())
        return overlayPicture(list, selection);
    const QString extension = QFileInfo(subtitle.toLocalFile()).suffix().toLower();
    if (QStringList{u"srt"_s, u"ssa"_s, u"ass"_s, u"ttxt"_s}.contains(extension))
        drawText(list, subtitle.toLocalFile());
}

bool filterCanTake(const QString &path)
{
    return std::none_of(path.begin(), path.end(), [](QChar c) { return u"':,;\\=[]"_s.contains(c); });
}

} // namespace engines
