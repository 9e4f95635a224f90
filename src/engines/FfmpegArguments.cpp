#include "engines/FfmpegArguments.h"

#include "engines/FfmpegAudioOrder.h"
#include "engines/FfmpegDevices.h"
#include "engines/FfmpegSubtitles.h"
#include "media/KXVideoTrack.h"
#include "selection/KXSelection.h"
#include "tools/KXHelpers.h"
#include "tools/Numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using tools::OptionList;

namespace engines {

namespace {

constexpr qsizetype passPosition = 2; // behind the first input, before any further one: meant

OptionList inputArguments(const KXSelection &selection)
{
    OptionList list{u"-i"_s, selection.videoTrackFileURL()};
    for (const QUrl &file : externalFiles(selection.trackList()))
        list << u"-i"_s << file;
    return list;
}

TrackPointer videoTrackOf(const TrackList &tracks)
{
    const auto found = std::find_if(tracks.begin(), tracks.end(), [](const TrackPointer &track) {
        return track->trackType() == u"Video"_s;
    });
    return found == tracks.end() ? nullptr : *found;
}

/// The position of the video track's file among the inputs; 0 in practice.
int videoInputIndex(const KXSelection &selection, const KXVideoTrack &video)
{
    QList<QUrl> inputs{selection.videoTrackFileURL()};
    inputs += externalFiles(selection.trackList());
    return static_cast<int>(std::max<qsizetype>(0, inputs.indexOf(video.trackFileURL())));
}

OptionList pictureArguments(KXSelection &selection, OutputKind kind)
{
    OptionList list;
    if (kind == OutputKind::Pollenta || kind == OutputKind::Tessaray)
        list << u"-vcodec"_s << u"libx264"_s;
    else if (kind == OutputKind::Marbleon)
        list << u"-vcodec"_s << u"mpeg4"_s;
    if (kind == OutputKind::Pollenta) {
        for (const QString &argument : applyDeviceRule(selection))
            list << argument;
    }
    const QString scale = scaleFilter(selection);
    if (!scale.isNull())
        list << u"-vf"_s << scale;
    list << u"-b:v"_s << QString(selection.userVideoBitRate() + u'k');
    return list;
}

OptionList videoArguments(KXSelection &selection, OutputKind kind, const KXVideoTrack &video, int input)
{
    OptionList list{u"-map"_s, u"%1:%2"_s.arg(QString::number(input), video.trackFfmpegID())};
    if (video.userCodec() == u"passthru"_s)
        list << u"-vcodec"_s << u"copy"_s;
    else
        list += pictureArguments(selection, kind);
    list << u"-metadata:s:v"_s
         << QString(u"language="_s + KXHelpers::language3CodeFor(video.trackLanguage()));
    list << u"-metadata:s:v"_s << QString(u"title="_s + video.trackTitle());
    return list;
}

OptionList encodingArguments(const AudioOutput &output, const QString &index, bool useDplii)
{
    OptionList list;
    if (output.userCodec == u"aac"_s)
        list << QString(u"-codec:a:"_s + index) << u"aac"_s << u"-strict"_s << u"experimental"_s;
    else if (output.userCodec == u"ac3"_s)
        list << QString(u"-codec:a:"_s + index) << u"ac3"_s;
    else if (output.userCodec == u"mp3"_s)
        list << QString(u"-codec:a:"_s + index) << u"libmp3lame"_s;
    list << QString(u"-ab:a:"_s + index) << QString(output.userBitRate + u'k');
    list << QString(u"-ac:a:"_s + index) << output.userNumberOfChannels;
    list << QString(u"-ar:a:"_s + index) << u"48000"_s;
    const bool isSurround = tools::leadingInteger(output.track->trackNumberOfChannels()) > 2;
    // The option holds for all audio outputs of the run; it is used as it stands.
    if (!output.track->externalTrackFlag() && output.userNumberOfChannels == u"2"_s && isSurround && useDplii)
        list << u"-af"_s << u"aresample=matrix_encoding=dplii"_s;
    return list;
}

OptionList audioArguments(const TrackList &tracks, int videoInput, bool useDplii)
{
    OptionList list;
    int number = 0;
    for (const AudioOutput &output : orderedAudioOutputs(tracks)) {
        const QString index = QString::number(number++);
        list << u"-map"_s << mapArgument(*output.track, tracks, videoInput);
        if (output.userCodec == u"passthru"_s)
            list << QString(u"-codec:a:"_s + index) << u"copy"_s;
        else
            list += encodingArguments(output, index, useDplii);
        const QString language = KXHelpers::language3CodeFor(output.track->trackLanguage());
        list << QString(u"-metadata:s:a:"_s + index) << QString(u"language="_s + language);
        list << QString(u"-metadata:s:a:"_s + index) << QString(u"title="_s + output.track->trackTitle());
    }
    return list;
}

/// The format stands in the first list only; pass 2 takes it from the output's extension: meant.
void addContainer(ConversionLists &lists, OptionList &target, const ConversionRequest &request)
{
    switch (request.kind) {
    case OutputKind::Pollenta:
        if (request.moovInFront)
            target << u"-movflags"_s << u"faststart"_s;
        lists.first << u"-f"_s << u"mp4"_s;
        break;
    case OutputKind::Tessaray:
        lists.first << u"-f"_s << u"matroska"_s;
        break;
    case OutputKind::Marbleon:
        lists.first << u"-vtag"_s << u"xvid"_s << u"-f"_s << u"avi"_s;
        break;
    case OutputKind::Unknown:
        break;
    }
}

void addTail(ConversionLists &lists, const ConversionRequest &request)
{
    if (lists.currentPass == 0) {
        lists.first << u"-y"_s << request.output;
        return;
    }
    lists.first << u"-passlogfile"_s << request.passlogfile << u"-y"_s << u"/dev/null"_s;
    lists.second << u"-passlogfile"_s << request.passlogfile << u"-y"_s << request.output;
}

void splitIntoPasses(ConversionLists &lists)
{
    lists.second = lists.first;
    lists.first.insert(passPosition, u"1"_s);
    lists.first.insert(passPosition, u"-pass"_s);
    lists.second.insert(passPosition, u"2"_s);
    lists.second.insert(passPosition, u"-pass"_s);
    lists.currentPass = 1;
}

} // namespace

QUrl outputForBase(const QString &base, OutputKind kind, const QString &device)
{
    switch (kind) {
    case OutputKind::Pollenta:
        return QUrl::fromLocalFile(base + (device == u"Xbox"_s ? u".mp4"_s : u".m4v"_s));
    case OutputKind::Tessaray:
        return QUrl::fromLocalFile(base + u".mkv"_s);
    case OutputKind::Marbleon:
        return QUrl::fromLocalFile(base + u".avi"_s);
    case OutputKind::Unknown:
        break;
    }
    return QUrl::fromLocalFile(QString());
}

QString scaleFilter(const KXSelection &selection)
{
    const QString wanted = selection.userWidth();
    const QString source = selection.videoTrackWidth();
    if (tools::leadingInteger(wanted) >= tools::leadingInteger(source))
        return {};
    return u"scale=trunc(%1/%2*iw/2)*2:trunc(ow/a/2)*2"_s.arg(wanted, source);
}

ConversionLists conversionLists(KXSelection &selection, const ConversionRequest &request)
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
    } else if (request.kind != OutputKind::Marbleon) {
        if (twoPasses)
            lists.first << u"-sn"_s;
        target += softSubtitleArguments(tracks, videoInput, request.kind);
    }
    addContainer(lists, target, request);
    addTail(lists, request);
    return lists;
}

} // namespace engines
