#include "presets/KXPresetSettings.h"

#include "selection/KXSelectionController.h"
#include "selection/Playback.h"
#include "selection/Possibilities.h"
#include "tools/Numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using selection::AudioOutput;
using selection::AudioOutputs;
using tools::leadingInteger;

namespace {

constexpr int firstGuess = 3;  // this action and those behind it leave the video controls alone
constexpr int custom = 1;      // as opposed to the original's value
constexpr int makesStereo = 1; // "AAC (2-Ch.)", in both action lists
const QString original = u"Original"_s;

const AudioOutput copied{u"passthru"_s, {}, u"0"_s};

} // namespace

KXPresetSettings::KXPresetSettings(const VideoFilePointer &currentVideoFile,
                                   KXSelectionController &selectionController)
    : m_currentVideoFile(currentVideoFile)
    , m_selectionController(selectionController)
{
}

const QStringList &KXPresetSettings::recordWords()
{
    static const QStringList words = platform::fieldsFor(staticMetaObject, u"stored"_s);
    return words;
}

QVariantMap KXPresetSettings::makeRecord() const
{
    return presets::recordOf(*this, recordWords());
}

void KXPresetSettings::initFromRecord(const QVariantMap &record)
{
    presets::takeRecord(*this, record, recordWords());
    m_otherFields = presets::otherFields(record, recordWords());
}

void KXPresetSettings::initializeAsByID()
{
    setPName(u"Manual"_s);
    setIsEditable(false);
}

void KXPresetSettings::initializeAsExtract()
{
    setPName(u"Extract Tracks"_s);
    setIsEditable(false);
}

void KXPresetSettings::initializeAsRemove()
{
    setPName(u"Remove Tracks"_s);
    setIsEditable(false);
}

void KXPresetSettings::initializeAsNewUserPreset()
{
    setPName(u"User Preset"_s);
    setPDevice(u"Apple TV"_s); // no target's name, on purpose: the user has to pick one
    setPVideoActionIndex(0);
    setPVideoBitRate(u"1000"_s);
    setPVideoBitRateIndex(1);
    setPWidth(u""_s);
    setPWidthIndex(0);
    setPFPS(u""_s);
    setPFPSIndex(0);
    setPStereoActionIndex(0);
    setPStereoBitRate(u"160"_s);
    setPSurroundActionIndex(0);
    setPSurroundBitRate(u"448"_s);
    setPAudioAddStereo(false);
    setPKeepStereoTrack(false);
    setPKeepSurroundTrack(false);
    setPSubAction(u"Mux (soft)"_s);
    setIsEditable(true);
}

void KXPresetSettings::setPVideoActionIndex(const int &index)
{
    m_pVideoActionIndex = index;
    m_pVideoActionIsBestGuess = index == 3 || index == 4;
}

QString KXPresetSettings::quickBitRateCalcForForNewWidthFromOldWidth(const QString &bitRate,
                                                                     const QString &newWidth,
                                                                     const QString &oldWidth)
{
    const qint64 narrow = tools::leadingInteger(newWidth);
    const qint64 wide = tools::leadingInteger(oldWidth);
    if (narrow >= wide || wide <= 0)
        return bitRate;
    const float share = static_cast<float>(narrow) / static_cast<float>(wide);
    return QString::number(static_cast<qint64>(static_cast<float>(tools::leadingInteger(bitRate)) * share));
}

// How a bundle fills in the settings.

void KXPresetSettings::makeSettings()
{
    if (pName() == u"Manual"_s)
        return;
    const SelectionPointer selection = m_selectionController.currentSelection();
    if (pName() == u"Extract Tracks"_s) {
        selection->setJobType(u"MKV Track Extraction"_s);
    } else if (pName() == u"Remove Tracks"_s) {
        selection->setJobType(u"MKV Track Removal"_s);
    } else {
        m_selectionController.setCurrentTab(u"MKV"_s);
        if (m_currentVideoFile->trackList().isEmpty())
            return;
        selection->setJobType(u"MKV Conversion"_s);
        m_selectionController.setMp4Device(pDevice());
        takeVideoSettings();
        takeAudioSettings();
        takeSubtitleSettings();
    }
    m_selectionController.deselectAllTrackRows();
}

void KXPresetSettings::takeVideoSettings()
{
    if (pVideoActionIndex() >= firstGuess)
        return;
    m_selectionController.setVideoMatrixIndex(pVideoActionIndex());
    if (pVideoActionIndex() != 1 && pVideoActionIndex() != 2)
        return;
    m_selectionController.setEnteredUserVideoBitRate(
        pVideoBitRateIndex() == custom ? pVideoBitRate() : m_currentVideoFile->theVideoBitRate());
    m_selectionController.setEnteredUserFPS(pFPSIndex() == custom ? pFPS() : m_currentVideoFile->theFPS());
    m_selectionController.setEnteredUserWidth(widthToEnter());
}

std::optional<selection::Aim> KXPresetSettings::aim() const
{
    if (!pVideoActionIsBestGuess())
        return std::nullopt;
    return pVideoActionIndex() == firstGuess ? selection::Aim::Quality : selection::Aim::Speed;
}

selection::ConversionSettings KXPresetSettings::heldByGuess() const
{
    selection::ConversionSettings held;
    if (pVideoBitRateIndex() == custom)
        held.videoBitRate = pVideoBitRate();
    if (pFPSIndex() == custom)
        held.frameRate = pFPS();
    if (pWidthIndex() == custom && widthToEnter() == pWidth())
        held.width = pWidth();
    held.subtitles =
        pSubAction() == u"Burn (hard)"_s ? selection::SubtitleUse::Burn : selection::SubtitleUse::Mux;
    const auto device = selection::playbackOf(pDevice());
    for (const TrackPointer &track : m_selectionController.currentSelection()->trackList()) {
        if (selection::isAudio(*track) && (!device || playsOnDevice(*device, *track)))
            held.audio.insert(track, outputsFor(*track));
    }
    return held;
}

/// A preset's sound passes through unless somebody says otherwise, so that is no choice against the device.
bool KXPresetSettings::playsOnDevice(const selection::Playback &device, const KXVideoTrack &track) const
{
    const AudioOutputs outputs = outputsFor(track);
    const bool isCopied = std::any_of(outputs.begin(), outputs.end(),
                                      [](const AudioOutput &output) { return output.passesThrough(); });
    return !isCopied || selection::whyUnplayedSound(device, track).isNull();
}

/// A preset never enlarges the picture.
QString KXPresetSettings::widthToEnter() const
{
    const QString source = m_currentVideoFile->theWidth();
    const bool isNarrower = leadingInteger(pWidth()) < leadingInteger(source);
    return pWidthIndex() == custom && isNarrower ? pWidth() : source;
}

void KXPresetSettings::takeAudioSettings()
{
    for (const TrackPointer &track : m_selectionController.currentSelection()->trackList()) {
        if (selection::isAudio(*track))
            selection::writeOutputs(*track, outputsFor(*track));
    }
    // The same index again: the audio controls show the outputs that were just written.
    m_selectionController.setAudioTrackPopupIndex(m_selectionController.audioTrackPopupIndex());
}

void KXPresetSettings::takeSubtitleSettings()
{
    if (pSubAction() == u"Burn (hard)"_s)
        m_selectionController.setSubtitleMatrixIndex(0);
    else if (pSubAction() == u"Mux (soft)"_s)
        m_selectionController.setSubtitleMatrixIndex(1);
}

AudioOutput KXPresetSettings::stereoOutput() const
{
    return {u"aac"_s, u"2"_s, pStereoBitRate() == original ? u"160"_s : pStereoBitRate()};
}

AudioOutput KXPresetSettings::surroundOutput(const QString &codec, const KXVideoTrack &track) const
{
    const bool keepsRate = pSurroundBitRate() == original;
    return {codec, u"6"_s, keepsRate ? track.trackBitRate() : pSurroundBitRate()};
}

AudioOutputs KXPresetSettings::outputsFor(const KXVideoTrack &track) const
{
    AudioOutputs outputs = selection::isSurround(track) ? surroundOutputs(track) : stereoOutputs();
    const bool keeps = pKeepStereoTrack() || pKeepSurroundTrack();
    const bool isCopied = std::any_of(outputs.begin(), outputs.end(),
                                      [](const AudioOutput &output) { return output.passesThrough(); });
    if (keeps && !isCopied)
        outputs.append(copied);
    return outputs;
}

AudioOutputs KXPresetSettings::stereoOutputs() const
{
    if (pStereoActionIndex() == 0)
        return {copied};
    return pStereoActionIndex() == makesStereo ? AudioOutputs{stereoOutput()} : AudioOutputs();
}

AudioOutputs KXPresetSettings::surroundOutputs(const KXVideoTrack &track) const
{
    AudioOutputs outputs;
    switch (pSurroundActionIndex()) {
    case 0:
        outputs.append(copied);
        break;
    case makesStereo:
        return {stereoOutput()}; // and no second one
    case 2:
        outputs.append(surroundOutput(u"aac"_s, track));
        break;
    case 3:
        outputs.append(surroundOutput(u"ac3"_s, track));
        break;
    default:
        break;
    }
    if (pAudioAddStereo())
        outputs.append(stereoOutput());
    return outputs;
}
