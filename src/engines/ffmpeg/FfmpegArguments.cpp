#include "engines/ffmpeg/FfmpegArguments.h"

#include "engines/ffmpeg/FfmpegAudioOrder.h"
#include "engines/ffmpeg/FfmpegDevices.h"
#include "engines/ffmpeg/FfmpegSubtitles.h"
#include "media/KXVideoTrack.h"
#include "selection/KXSelection.h"
#include "tools/KXHelpers.h"
#include "tools/Numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using tools::OptionItem;
using tools::OptionList;

namespace engines {

namespace {

OptionList inputArguments(const KXSelection &selection)
{
    OptionList list{u"-i", selection.videoTrackFileURL()};
    for (const QUrl &file : externalFiles(selection.trackList()))
        list << u"-i" << file;
    return list;
}

OptionItem kilobits(const QString &rate)
{
    return OptionItem::ofData(rate).with(u"k");
}

/// The position of the video track's file among the inputs; 0 in practice.
int videoInputIndex(const KXSelection &selection, const KXVideoTrack &video)
{
    QList<QUrl> inputs{selection.videoTrackFileURL()};
    inputs += externalFiles(selection.trackList());
    return static_cast<int>(std::max<qsizetype>(0, inputs.indexOf(video.trackFileURL())));
}

OptionList pictureArguments(const KXSelection &selection, OutputKind kind)
{
    OptionList list;
    if (kind == OutputKind::Mp4 || kind == OutputKind::Mkv)
        list << u"-vcodec" << u"libx264";
    else if (kind == OutputKind::Avi)
        list << u"-vcodec" << u"mpeg4";
    if (kind == OutputKind::Mp4)
        list << levelArguments(selection.theDevice());
    const FilterText scale = scaleFilter(selection);
    if (!scale.isEmpty())
        list << u"-vf" << scale.item();
    return list << u"-b:v" << kilobits(selection.userVideoBitRate());
}

OptionList videoArguments(const KXSelection &selection, OutputKind kind, const KXVideoTrack &video, int input)
{
    OptionList list{u"-map", OptionItem::ofNumber(input).with(u":").with(video.streamIndex())};
    if (video.userCodec() == u"passthru"_s)
        list << u"-vcodec" << u"copy";
    else
        list += pictureArguments(selection, kind);
    const QString language = KXHelpers::language3CodeFor(video.trackLanguage());
    list << u"-metadata:s:v" << OptionItem(u"language=").withData(language);
    list << u"-metadata:s:v" << OptionItem(u"title=").withTitle(video.trackTitle());
    return list;
}

OptionList encodingArguments(const AudioOutput &output, int number, bool useDplii)
{
    OptionList list;
    const OptionItem codec = OptionItem(u"-codec:a:").with(number);
    if (output.userCodec == u"aac"_s)
        list << codec << u"aac" << u"-strict" << u"experimental";
    else if (output.userCodec == u"ac3"_s)
        list << codec << u"ac3";
    else if (output.userCodec == u"mp3"_s)
        list << codec << u"libmp3lame";
    list << OptionItem(u"-ab:a:").with(number) << kilobits(output.userBitRate);
    list << OptionItem(u"-ac:a:").with(number) << OptionItem::ofData(output.userNumberOfChannels);
    list << OptionItem(u"-ar:a:").with(number) << u"48000";
    const bool isSurround = tools::leadingInteger(output.track->trackNumberOfChannels()) > 2;
    // The option holds for all audio outputs of the run; it is used as it stands.
    if (!output.track->externalTrackFlag() && output.userNumberOfChannels == u"2"_s && isSurround && useDplii)
        list << u"-af" << (FilterText() << u"aresample=matrix_encoding=dplii").item();
    return list;
}

OptionList audioArguments(const TrackList &tracks, int videoInput, bool useDplii)
{
    OptionList list;
    int number = 0;
    for (const AudioOutput &output : orderedAudioOutputs(tracks)) {
        const OptionItem metadata = OptionItem(u"-metadata:s:a:").with(number);
        list << u"-map" << mapArgument(*output.track, tracks, videoInput);
        if (output.userCodec == u"passthru"_s)
            list << OptionItem(u"-codec:a:").with(number) << u"copy";
        else
            list += encodingArguments(output, number, useDplii);
        const QString language = KXHelpers::language3CodeFor(output.track->trackLanguage());
        list << metadata << OptionItem(u"language=").withData(language);
        list << metadata << OptionItem(u"title=").withTitle(output.track->trackTitle());
        ++number;
    }
    return list;
}

/// The format stands in the first list only; pass 2 takes it from the output's extension: meant.
void addContainer(ConversionLists &lists, OptionList &target, const ConversionRequest &request)
{
    switch (request.kind) {
    case OutputKind::Mp4:
        if (request.moovInFront)
            target << u"-movflags" << u"faststart";
        lists.first << u"-f" << u"mp4";
        break;
    case OutputKind::Mkv:
        lists.first << u"-f" << u"matroska";
        break;
    case OutputKind::Avi:
        lists.first << u"-vtag" << u"xvid" << u"-f" << u"avi";
        break;
    case OutputKind::Unknown:
        break;
    }
}

void addTail(ConversionLists &lists, const ConversionRequest &request)
{
    if (lists.currentPass == 0) {
        lists.first << u"-y" << request.output;
        return;
    }
    lists.first << u"-passlogfile" << OptionItem::ofData(request.passlogfile) << u"-y" << u"/dev/null";
    lists.second << u"-passlogfile" << OptionItem::ofData(request.passlogfile) << u"-y" << request.output;
}

void splitIntoPasses(ConversionLists &lists)
{
    lists.second = lists.first;
    lists.first.insert(passPosition, u"1");
    lists.first.insert(passPosition, u"-pass");
    lists.second.insert(passPosition, u"2");
    lists.second.insert(passPosition, u"-pass");
    lists.currentPass = 1;
}

} // namespace

QUrl outputForBase(const QString &base, OutputKind kind, const QString &device)
{
    const selection::Target *target = selection::targetNamed(device);
    switch (kind) {
    case OutputKind::Mp4:
        return QUrl::fromLocalFile(
            base + (target != nullptr && target->kind == kind ? u'.' + target->extension : u".m4v"_s));
    case OutputKind::Mkv:
        return QUrl::fromLocalFile(base + u".mkv"_s);
    case OutputKind::Avi:
        return QUrl::fromLocalFile(base + u".avi"_s);
    case OutputKind::Unknown:
        break;
    }
    return QUrl::fromLocalFile(QString());
}

TrackPointer videoTrackOf(const TrackList &tracks)
{
    const auto found = std::find_if(tracks.begin(), tracks.end(), [](const TrackPointer &track) {
        return track->trackType() == u"Video"_s;
    });
    return found == tracks.end() ? nullptr : *found;
}

qint64 pixelsIn(const QString &text)
{
    return tools::leadingInteger(text);
}

FilterText scaleFilter(const KXSelection &selection)
{
    const qint64 wanted = pixelsIn(selection.userWidth());
    const qint64 source = pixelsIn(selection.videoTrackWidth());
    FilterText filter;
    if (wanted < source)
        filter << u"scale=trunc(" << wanted << u"/" << source << u"*iw/2)*2:trunc(ow/a/2)*2";
    return filter;
}

ConversionLists conversionLists(const KXSelection &selection, const ConversionRequest &request)
{
    ConversionLists lists;
    const TrackList tracks = selection.trackList();
    const TrackPointer video = videoTrackOf(tracks);
    const int videoInput = video ? videoInputIndex(selection, *video) : 0;
    lists.first = inputArguments(selection);
    if (video)
        lists.first += videoArguments(selection, request.kind, *video, videoInput);
    const bool twoPasses = selection.userPassNumber() == u"2"_s;
    if (twoPasses)
        splitIntoPasses(lists);
    const OptionList audio = audioArguments(tracks, videoInput, request.useDplii);
    lists.first += audio;
    if (twoPasses)
        lists.second += audio;
    OptionList &target = twoPasses ? lists.second : lists.first;
    if (!KXHelpers::isEmpty(request.subToBurn)) {
        burnSubtitle(target, selection, request.subToBurn);
    } else if (request.kind != OutputKind::Avi) {
        if (twoPasses)
            lists.first << u"-sn";
        target += softSubtitleArguments(tracks, videoInput, request.kind);
    }
    addContainer(lists, target, request);
    addTail(lists, request);
    return lists;
}

} // namespace engines
