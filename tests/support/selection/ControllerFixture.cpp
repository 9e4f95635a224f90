#include "support/selection/ControllerFixture.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace support {

namespace {

QString numberOf(const TrackList &tracks, const QString &type)
{
    return QString::number(std::count_if(tracks.begin(), tracks.end(), [&](const TrackPointer &track) {
        return track->trackType().endsWith(type);
    }));
}

TrackPointer probed(const QString &type, const QString &codec)
{
    auto track = std::make_shared<KXVideoTrack>();
    track->setTrackType(type);
    track->setTrackCodec(codec);
    track->setTrackLanguage(u"English"_s);
    return track;
}

} // namespace

void RecordingPresets::setSelectionMethodIndex(int index)
{
    calls.append(u"selectionMethodIndex "_s + QString::number(index));
}

void RecordingPresets::setSettingMethodIndex(int index)
{
    settingIndex = index;
    calls.append(u"settingMethodIndex "_s + QString::number(index));
}

void RecordingPresets::applyCurrentPresetSettings()
{
    calls.append(u"applySettings"_s);
    if (onApply)
        onApply();
}

void RecordingOpenFiles::setCanOpenQueuePopover(bool can)
{
    calls.append(can ? u"canOpenQueuePopover true"_s : u"canOpenQueuePopover false"_s);
}

void RecordingOpenFiles::closeOpenQ()
{
    calls.append(u"close"_s);
}

void RecordingOpenFiles::storeCurrent(const VideoFilePointer &file, const SelectionPointer &selection)
{
    calls.append(u"store"_s);
    stored = {file, selection, file->theFileName()};
}

ControllerFixture::ControllerFixture(const TrackList &tracks)
    : file(std::make_shared<KXVideoFile>(nullptr))
    , selection(std::make_shared<KXSelection>())
    , controller(center, file, selection)
{
    selection->initialize();
    controller.initialize();
    fillFile(*file, u"/v/a.mkv"_s, tracks);
    controller.setCurrentTab(u"MKV"_s);
    controller.setPresetsController(&presets);
    controller.setOpenFiles(&openFiles);
}

void ControllerFixture::setFile(const QString &path, const TrackList &tracks)
{
    fillFile(*file, path, tracks);
}

void ControllerFixture::selectAll()
{
    for (const TrackPointer &track : file->trackList())
        track->setTrackSelected(true);
    controller.trackTableSelectionChanged(KXSelectionController::Sender::Other);
    forgetCalls();
}

void ControllerFixture::tick(qsizetype row, bool ticked)
{
    file->trackList().at(row)->setTrackSelected(ticked);
    controller.trackTableSelectionChanged(KXSelectionController::Sender::TrackTable);
}

void ControllerFixture::forgetCalls()
{
    presets.calls.clear();
    openFiles.calls.clear();
}

void fillFile(KXVideoFile &file, const QString &path, const TrackList &tracks)
{
    const QFileInfo info(path);
    file.setTheFilePath(path);
    file.setTheFileURL(QUrl::fromLocalFile(path));
    file.setTheFileName(info.fileName());
    file.setTheFileExtension(info.suffix());
    file.setTheFileShortName(info.completeBaseName());
    file.setTrackList(tracks);
    file.setTheNumberOfVideoTracks(numberOf(tracks, u"Video"_s));
    file.setTheNumberOfAudioTracks(numberOf(tracks, u"Audio"_s));
    file.setTheNumberOfSubTracks(numberOf(tracks, u"Subtitle"_s));
    file.setTheWidth(u"1920"_s);
    file.setTheHeight(u"1080"_s);
    file.setTheFPS(u"25.000000"_s);
    file.setTheVideoBitRate(u"3000"_s);
}

TrackPointer probedVideo()
{
    const auto track = probed(u"Video"_s, u"h264"_s);
    track->setUserCodec(u"passthru"_s);
    return track;
}

TrackPointer probedAudio(const QString &codec, const QString &channels, const QString &language)
{
    const auto track = probed(u"Audio"_s, codec);
    track->setTrackNumberOfChannels(channels);
    track->setTrackLanguage(language);
    track->setUserCodec(u"passthru"_s);
    setOutputs(*track, u"passthru %1 0"_s.arg(channels));
    return track;
}

TrackPointer probedSubtitle()
{
    const auto track = probed(u"Subtitle"_s, u"srt"_s);
    track->setUserCodec(u"mux"_s);
    return track;
}

QString outputsOf(const KXVideoTrack &track)
{
    QStringList outputs;
    for (const QVariantMap &entry : track.userAudioSettingsDictionaryArray()) {
        outputs.append(entry.value(u"userCodec"_s).toString() + u' ' +
                       entry.value(u"userNumberOfChannels"_s).toString() + u' ' +
                       entry.value(u"userBitRate"_s).toString());
    }
    return outputs.join(u", "_s);
}

void setOutputs(KXVideoTrack &track, const QString &outputs)
{
    AudioSettingsList settings;
    for (const QString &output : outputs.split(u", "_s, Qt::SkipEmptyParts)) {
        const QStringList values = output.split(u' ');
        settings.append({{u"userCodec"_s, values.value(0)},
                         {u"userNumberOfChannels"_s, values.value(1)},
                         {u"userBitRate"_s, values.value(2)}});
    }
    track.setUserAudioSettingsDictionaryArray(settings);
}

} // namespace support
