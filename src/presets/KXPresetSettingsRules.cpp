// How a bundle fills in the settings.
#include "presets/KXPresetSettings.h"

#include "selection/KXSelectionController.h"
#include "tools/Numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using tools::leadingInteger;

namespace {

constexpr int firstGuess = 3;      // this action and those behind it leave the video controls alone
constexpr qint64 surroundFrom = 3; // channels
constexpr int custom = 1;          // as opposed to the original's value
constexpr int makesStereo = 1;     // "AAC (2-Ch.)", in both action lists
const QString original = u"Original"_s;

QVariantMap entry(const QString &codec, const QString &bitRate, const QString &channels)
{
    return {{u"userCodec"_s, codec}, {u"userBitRate"_s, bitRate}, {u"userNumberOfChannels"_s, channels}};
}

QVariantMap passThruEntry(const KXVideoTrack &track)
{
    return entry(u"passthru"_s, u"0"_s, track.trackNumberOfChannels());
}

bool passesThru(const QVariantMap &output)
{
    return output.value(u"userCodec"_s) == u"passthru"_s;
}

} // namespace

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
        if (track->trackType() == u"Audio"_s)
            track->setUserAudioSettingsDictionaryArray(outputsFor(*track));
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

QVariantMap KXPresetSettings::stereoEntry() const
{
    return entry(u"aac"_s, pStereoBitRate() == original ? u"160"_s : pStereoBitRate(), u"2"_s);
}

QVariantMap KXPresetSettings::surroundEntry(const QString &codec, const KXVideoTrack &track) const
{
    const bool keepsRate = pSurroundBitRate() == original;
    return entry(codec, keepsRate ? track.trackBitRate() : pSurroundBitRate(), u"6"_s);
}

AudioSettingsList KXPresetSettings::outputsFor(const KXVideoTrack &track) const
{
    const bool isSurround = leadingInteger(track.trackNumberOfChannels()) >= surroundFrom;
    AudioSettingsList outputs = isSurround ? surroundOutputs(track) : stereoOutputs(track);
    const bool keeps = pKeepStereoTrack() || pKeepSurroundTrack();
    if (keeps && std::none_of(outputs.begin(), outputs.end(), passesThru))
        outputs.append(passThruEntry(track));
    return outputs;
}

AudioSettingsList KXPresetSettings::stereoOutputs(const KXVideoTrack &track) const
{
    if (pStereoActionIndex() == 0)
        return {passThruEntry(track)};
    return pStereoActionIndex() == makesStereo ? AudioSettingsList{stereoEntry()} : AudioSettingsList();
}

AudioSettingsList KXPresetSettings::surroundOutputs(const KXVideoTrack &track) const
{
    AudioSettingsList outputs;
    switch (pSurroundActionIndex()) {
    case 0:
        outputs.append(passThruEntry(track));
        break;
    case makesStereo:
        return {stereoEntry()}; // and no second one
    case 2:
        outputs.append(surroundEntry(u"aac"_s, track));
        break;
    case 3:
        outputs.append(surroundEntry(u"ac3"_s, track));
        break;
    default:
        break;
    }
    if (pAudioAddStereo())
        outputs.append(stereoEntry());
    return outputs;
}
