#pragma once

#include "media/KXVideoFile.h"
#include "platform/Fields.h"
#include "presets/PresetRecord.h"
#include "selection/BestGuess.h"
#include "selection/ConversionSettings.h"

#include <QVariantMap>

#include <memory>

namespace selection {
struct Playback;
}

class KXPresetSettings;
class KXSelectionController;

using PresetSettingsPointer = std::shared_ptr<KXPresetSettings>;

/// A named bundle of conversion choices: target, video, audio, subtitles. Owned by the presets'
/// controller; user presets are stored as records. It fills in the main window's controls and the outputs
/// of the selected audio tracks, and touches no other track.
class KXPresetSettings final : public QObject
{
    Q_OBJECT
    // Until an initializer or a record fills them, texts are absent and numbers 0. Indices count in the
    // lists of presets/ChoiceLists.h; bit rates in kb/s, the width in pixels.
    KX_FIELD_FOR("stored", QString, pName, setPName, {})
    KX_FIELD_FOR("stored", QString, pDevice, setPDevice, {})
    KX_RULED_FIELD_FOR("stored", int, pVideoActionIndex, setPVideoActionIndex, 0)
    /// Follows from pVideoActionIndex and is not stored: 3 and 4 guess, and leave the video controls alone.
    KX_FIELD(bool, pVideoActionIsBestGuess, setPVideoActionIsBestGuess, false)
    KX_FIELD_FOR("stored", QString, pVideoBitRate, setPVideoBitRate, {})
    KX_FIELD_FOR("stored", int, pVideoBitRateIndex, setPVideoBitRateIndex, 0)
    KX_FIELD_FOR("stored", QString, pWidth, setPWidth, {})
    KX_FIELD_FOR("stored", int, pWidthIndex, setPWidthIndex, 0)
    KX_FIELD_FOR("stored", QString, pFPS, setPFPS, {})
    KX_FIELD_FOR("stored", int, pFPSIndex, setPFPSIndex, 0)
    /// For audio tracks of up to 2 channels.
    KX_FIELD_FOR("stored", int, pStereoActionIndex, setPStereoActionIndex, 0)
    /// "Original" counts as "160", on purpose.
    KX_FIELD_FOR("stored", QString, pStereoBitRate, setPStereoBitRate, {})
    /// For audio tracks of 3 or more channels.
    KX_FIELD_FOR("stored", int, pSurroundActionIndex, setPSurroundActionIndex, 0)
    /// "Original" counts as the track's own.
    KX_FIELD_FOR("stored", QString, pSurroundBitRate, setPSurroundBitRate, {})
    /// Also make AAC stereo of a surround track.
    KX_FIELD_FOR("stored", bool, pAudioAddStereo, setPAudioAddStereo, false)
    /// Also pass the source through. Both act alike, whatever the track's channels.
    KX_FIELD_FOR("stored", bool, pKeepStereoTrack, setPKeepStereoTrack, false)
    KX_FIELD_FOR("stored", bool, pKeepSurroundTrack, setPKeepSurroundTrack, false)
    KX_FIELD_FOR("stored", QString, pSubAction, setPSubAction, {})
    /// User presets only; the others are never stored.
    KX_FIELD_FOR("stored", bool, isEditable, setIsEditable, false)

public:
    /// The current file, whose contents change; the controller must outlive the preset.
    KXPresetSettings(const VideoFilePointer &currentVideoFile, KXSelectionController &selectionController);

    /// The words of a record, in its order.
    static const QStringList &recordWords();
    QVariantMap makeRecord() const;
    /// The same with what a newer version has stored beside it.
    QVariantMap recordToStore() const { return presets::withOthers(makeRecord(), m_otherFields); }
    /// The record is trusted: what it lacks becomes empty, 0 or false.
    void initFromRecord(const QVariantMap &record);

    // Each for an object that was just made. These three set nothing but the name and that they are not
    // editable.
    void initializeAsByID();
    void initializeAsExtract();
    void initializeAsRemove();
    void initializeAsNewUserPreset();

    /// A bit rate scaled to a smaller width, rounded down; for any other width the text as it was given.
    static QString quickBitRateCalcForForNewWidthFromOldWidth(const QString &bitRate, const QString &newWidth,
                                                              const QString &oldWidth);

    /// Fills in the settings. "Manual" changes nothing.
    void makeSettings();

    /// What its guess makes most of; no value where it says itself what becomes of the video.
    std::optional<selection::Aim> aim() const;
    /// What of it holds against its guess, for the selection that it was applied to: custom numbers, what
    /// becomes of subtitles, and of sound, but for sound that it passes through and its device does not play.
    selection::ConversionSettings heldByGuess() const;

private:
    void takeVideoSettings();
    QString widthToEnter() const;
    bool playsOnDevice(const selection::Playback &device, const KXVideoTrack &track) const;
    void takeAudioSettings();
    void takeSubtitleSettings();
    selection::AudioOutput stereoOutput() const;
    selection::AudioOutput surroundOutput(const QString &codec, const KXVideoTrack &track) const;
    selection::AudioOutputs outputsFor(const KXVideoTrack &track) const;
    selection::AudioOutputs stereoOutputs() const;
    selection::AudioOutputs surroundOutputs(const KXVideoTrack &track) const;

    QVariantMap m_otherFields; ///< of its record, of words that are not ours
    VideoFilePointer m_currentVideoFile;
    KXSelectionController &m_selectionController;
};
