#pragma once

#include "selection/KXSelectionController.h"
#include "selection/OpenFiles.h"
#include "selection/PresetDriver.h"

#include <functional>

namespace support {

/// Presets that only write down what is asked of them: "selectionMethodIndex 0", "applySettings".
class RecordingPresets final : public PresetDriver
{
public:
    void setSelectionMethodIndex(int index) override;
    int settingMethodIndex() const override { return settingIndex; }
    void setSettingMethodIndex(int index) override;
    bool changingPresetSetting() const override { return changing; }
    void applyCurrentPresetSettings() override;

    QStringList calls;
    int settingIndex = 0;
    bool changing = false;
    /// What else happens when the settings are to be applied.
    std::function<void()> onApply;
};

/// A list of opened files that only writes down: "canOpenQueuePopover true", "close", "store".
class RecordingOpenFiles final : public OpenFiles
{
public:
    int openFileCount() const override { return count; }
    void setCanOpenQueuePopover(bool can) override;
    void closeOpenQ() override;
    void storeCurrent(const VideoFilePointer &file, const SelectionPointer &selection) override;

    QStringList calls;
    int count = 0;
    OpenedFile stored;
};

/// A selection controller with recording neighbours, initialised, on the tab "MKV". Its file is
/// "/v/a.mkv" and has the tracks that are given, none of them ticked.
struct ControllerFixture
{
    explicit ControllerFixture(const TrackList &tracks = {});

    /// Another file takes the place of the current one.
    void setFile(const QString &path, const TrackList &tracks);
    /// All tracks are ticked and taken into the selection; what that recorded is forgotten.
    void selectAll();
    /// One track is ticked or unticked in the table.
    void tick(qsizetype row, bool ticked = true);
    void forgetCalls();

    KXNotificationCenter center;
    VideoFilePointer file;
    SelectionPointer selection;
    RecordingPresets presets;
    RecordingOpenFiles openFiles;
    KXSelectionController controller;
};

/// A file as a probe leaves it: names, tracks and their counts, 1920x1080 at 25 and 3000 kb/s.
void fillFile(KXVideoFile &file, const QString &path, const TrackList &tracks);

// Tracks as a probe leaves them: video and audio pass through, subtitles are muxed, nothing is ticked.
TrackPointer probedVideo();
TrackPointer probedAudio(const QString &codec = QStringLiteral("aac"),
                         const QString &channels = QStringLiteral("2"),
                         const QString &language = QStringLiteral("English"));
TrackPointer probedSubtitle();

/// The outputs of a track as one text: "passthru 6 0, aac 2 160" (codec, channels, kb/s).
QString outputsOf(const KXVideoTrack &track);
void setOutputs(KXVideoTrack &track, const QString &outputs);

} // namespace support
