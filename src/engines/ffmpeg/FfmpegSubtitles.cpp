#include "engines/ffmpeg/FfmpegSubtitles.h"

#include "engines/ffmpeg/FfmpegArguments.h"
#include "engines/ffmpeg/FfmpegDevices.h"
#include "engines/ffmpeg/FilterText.h"
#include "selection/KXSelection.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using tools::OptionItem;
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

/// Before the scaling, where there is one.
void drawText(OptionList &list, const KXSelection &selection, const QString &path)
{
    const qsizetype filter = positionOf(list, u"-vf"_s);
    FilterText text;
    text << u"subtitles=";
    text.addPath(path);
    if (filter >= 0 && filter + 1 < list.size())
        list[filter + 1] = (text << u"," << scaleFilter(selection)).item();
    else
        list << u"-vf" << text.item();
}

/// By its type alone, on purpose; null when there is none.
TrackPointer lastSubtitle(const TrackList &tracks)
{
    TrackPointer last;
    for (const TrackPointer &track : tracks) {
        if (track->trackType() == u"Subtitle"_s)
            last = track;
    }
    return last;
}

FilterText lastSubtitleStream(const TrackList &tracks)
{
    const TrackPointer last = lastSubtitle(tracks);
    return last ? FilterText() << last->streamIndex() : FilterText();
}

bool isDrawnAsText(const QUrl &subtitle)
{
    const QString extension = QFileInfo(subtitle.toLocalFile()).suffix().toLower();
    return QStringList{u"srt"_s, u"ssa"_s, u"ass"_s, u"ttxt"_s}.contains(extension);
}

/// The graph that lays the picture subtitle over the video; takes a scaling out of the list into it.
FilterText overlayGraph(OptionList &list, const KXSelection &selection)
{
    FilterText graph;
    graph << u"[0:" << lastSubtitleStream(selection.trackList()) << u"]scale="
          << pixelsIn(selection.videoTrackWidth()) << u":" << pixelsIn(selection.videoTrackHeight());
    const qsizetype filter = positionOf(list, u"-vf"_s);
    if (filter < 0)
        return graph << u"[sub];[0:v][sub]overlay[outv]";
    list.remove(filter, 2);
    const FilterText scale = scaleFilter(selection);
    return graph << u"[subInitialize];[subInitialize]" << scale << u"[sub];[0:v]" << scale
                 << u"[vid];[vid][sub]overlay[outv]";
}

void overlayPicture(OptionList &list, const KXSelection &selection)
{
    const FilterText graph = overlayGraph(list, selection);
    const qsizetype map = positionOf(list, u"-map"_s);
    if (map < 0)
        return;
    list.remove(map, 2);
    for (const OptionItem &item :
         {OptionItem(u"[outv]"), OptionItem(u"-map"), graph.item(), OptionItem(u"-filter_complex")})
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

OptionItem mapArgument(const KXVideoTrack &track, const TrackList &tracks, int videoInput)
{
    if (!track.externalTrackFlag())
        return OptionItem::ofNumber(videoInput).with(u":").with(track.streamIndex());
    return OptionItem::ofNumber(externalFiles(tracks).indexOf(track.trackFileURL()) + 1);
}

OptionList softSubtitleArguments(const TrackList &tracks, int videoInput, OutputKind kind)
{
    OptionList list;
    int number = 0;
    for (const TrackPointer &track : tracks) {
        if (!isSubtitle(*track) || track->userCodec() != u"mux"_s)
            continue;
        const OptionItem metadata = OptionItem(u"-metadata:s:s:").with(number);
        list << u"-map" << mapArgument(*track, tracks, videoInput);
        list << OptionItem(u"-codec:s:").with(number);
        list << (kind == OutputKind::Mp4 ? OptionItem(u"mov_text") : OptionItem(u"copy"));
        const QString language = KXHelpers::language3CodeFor(track->trackLanguage());
        list << metadata << OptionItem(u"language=").withData(language);
        list << metadata << OptionItem(u"title=").withTitle(track->trackTitle());
        ++number;
    }
    return list;
}

void burnSubtitle(OptionList &list, const KXSelection &selection, const QUrl &subtitle)
{
    if (subtitle == selection.videoTrackFileURL())
        return overlayPicture(list, selection);
    if (isDrawnAsText(subtitle))
        drawText(list, selection, subtitle.toLocalFile());
}

TrackPointer drawnSubtitle(const KXSelection &selection, const QUrl &subtitle)
{
    const TrackList tracks = selection.trackList();
    if (subtitle.toLocalFile().isEmpty())
        return nullptr;
    if (subtitle == selection.videoTrackFileURL())
        return videoTrackOf(tracks) ? lastSubtitle(tracks) : nullptr;
    const auto chosen = std::find_if(tracks.begin(), tracks.end(),
                                     [](const TrackPointer &track) { return selection::isBurned(*track); });
    return isDrawnAsText(subtitle) && chosen != tracks.end() ? *chosen : nullptr;
}

} // namespace engines
