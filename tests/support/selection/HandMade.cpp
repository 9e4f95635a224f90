#include "support/selection/HandMade.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace support {

namespace {

TrackPointer sourceTrack(const QString &type, const QString &stream, const QString &codec)
{
    const auto track = std::make_shared<KXVideoTrack>();
    track->setTrackType(type);
    track->setTrackFfmpegID(stream);
    track->setTrackMkvmergeID(stream);
    track->setTrackCodec(codec);
    track->setTrackExtension(codec);
    track->setTrackLanguage(u"English"_s);
    track->setTrackTitle(type + stream); // no blank, so that a list can be written as a line
    track->setTrackFileURL(QUrl::fromLocalFile(u"/v/a.mkv"_s));
    track->setTrackFileExtension(u"mkv"_s);
    return track;
}

} // namespace

TrackPointer videoTrack(const QString &userCodec)
{
    const auto track = sourceTrack(u"Video"_s, u"0"_s, u"h264"_s);
    track->setUserCodec(userCodec);
    return track;
}

TrackPointer audioTrack(const QString &stream, const QString &codec, const QString &channels,
                        const QVariantMap &settings)
{
    const auto track = sourceTrack(u"Audio"_s, stream, codec);
    track->setTrackNumberOfChannels(channels);
    track->setUserAudioSettingsDictionaryArray({settings});
    return track;
}

TrackPointer surroundSound(const QString &codec)
{
    return audioTrack(u"1"_s, codec, u"6"_s, {});
}

TrackPointer subtitleTrack(const QString &stream, const QString &codec, const QString &userCodec)
{
    const auto track = sourceTrack(u"Subtitle"_s, stream, codec);
    track->setUserCodec(userCodec);
    return track;
}

TrackPointer external(const TrackPointer &track, const QString &path)
{
    track->setExternalTrackFlag(true);
    track->setTrackFfmpegID(u"0"_s);
    track->setTrackFileURL(QUrl::fromLocalFile(path));
    track->setTrackFileExtension(QFileInfo(path).suffix());
    return track;
}

QVariantMap audioSettings(const QString &codec, const QString &channels, const QString &rate)
{
    return {{u"userCodec"_s, codec}, {u"userNumberOfChannels"_s, channels}, {u"userBitRate"_s, rate}};
}

SelectionPointer handMadeSelection(const QString &device, const TrackList &tracks, const QString &passes)
{
    const auto selection = std::make_shared<KXSelection>();
    selection->initialize();
    selection->setVideoTrackFileURL(QUrl::fromLocalFile(u"/v/a.mkv"_s));
    selection->setVideoTrackFileName(u"a.mkv"_s);
    selection->setVideoTrackWidth(u"1920"_s);
    selection->setVideoTrackHeight(u"1080"_s);
    selection->setUserWidth(u"1920"_s);
    selection->setUserVideoBitRate(u"2500"_s);
    selection->setUserPassNumber(passes);
    selection->setTheDevice(device);
    selection->setTrackList(tracks);
    int subtitles = 0;
    for (const TrackPointer &track : tracks)
        subtitles += track->trackType().endsWith(u"Subtitle"_s) ? 1 : 0;
    selection->setSubCount(QString::number(subtitles));
    return selection;
}

QString itemsOf(const tools::OptionList &list)
{
    return tools::textsOf(list).join(u'|');
}

} // namespace support
