// What may be done with the ticked tracks, and what the controls make of them.
#include "selection/KXSelectionController.h"

#include "selection/OpenFiles.h"
#include "tools/Numbers.h"

#include <QScopeGuard>

#include <algorithm>

using namespace Qt::StringLiterals;
using tools::leadingInteger;

namespace {

const QString black = u"black"_s;
const QString red = u"red"_s;
constexpr qint64 surroundFrom = 3; // channels

bool isSubtitle(const KXVideoTrack &track)
{
    return track.trackType() == u"Subtitle"_s || track.trackType() == u"External Subtitle"_s;
}

bool hasOutputs(const TrackPointer &track)
{
    return track->trackType() == u"Audio"_s && !track->userAudioSettingsDictionaryArray().isEmpty();
}

} // namespace

void KXSelectionController::updateTabs()
{
    m_updating = true;
    const auto done = qScopeGuard([this] { m_updating = false; });
    setCanAddTrack(!m_file->trackList().isEmpty());
    if (m_currentTab == u"MKV"_s)
        updateMkvTab();
    else if (m_currentTab == u"Edit Files"_s)
        updateEditFilesTab();
}

void KXSelectionController::setCanOpenQueuePopover(bool can)
{
    if (m_openFiles != nullptr)
        m_openFiles->setCanOpenQueuePopover(can);
}

void KXSelectionController::updateMkvTab()
{
    setTrackTableEnabled(true);
    setCanOpenQueuePopover(m_openFiles != nullptr && m_openFiles->openFileCount() >= 2);
    setCurrentFileTextColor(black);
    if (m_file->trackList().isEmpty()) {
        setCurrentFileText(u"Drop Video File(s) in the Table Below"_s);
        return;
    }
    setCurrentFileText(m_file->theFilePath());
    m_selection->setTheDevice(m_mp4Device);
    setCanConvert(leadingInteger(m_selection->vidCount()) == 1);
    setCanEditTracks(m_file->theFileExtension().toLower() == u"mkv"_s && !m_selection->trackList().isEmpty());
    setOneSubSelected(leadingInteger(m_selection->subCount()) == 1);
    updateSubtitleRules();
    m_selection->setUserFPS(m_enteredUserFPS);
    m_selection->setUserWidth(m_enteredUserWidth);
    m_selection->setUserVideoBitRate(m_enteredUserVideoBitRate);
    setCanAddStereoTrack(false);
    if (m_canConvert)
        updateConversionRules();
    updateJobSteps();
}

/// Without a subtitle both possibilities keep what they said: meant.
void KXSelectionController::updateSubtitleRules()
{
    const qint64 subtitles = leadingInteger(m_selection->subCount());
    setSubtitleSelected(subtitles >= 1);
    bool passThruWorks = true;
    if (m_subtitleSelected) {
        setCanMuxSubtitles(true);
        setCanBurnSubtitles(subtitles < 2);
        passThruWorks = m_subtitleMatrixIndex != 0 || !m_canConvert; // burning needs a re-encode
    }
    setMkvVideoPassThruColor(passThruWorks ? black : red);
    setMkvAudioPassThruColor(black);
}

void KXSelectionController::updateConversionRules()
{
    const TrackList tracks = m_selection->trackList();
    for (const TrackPointer &track : tracks) {
        if (track->trackType() == u"Video"_s)
            updateVideoTrack(*track);
        else if (isInPopup(*track))
            updateAudioTrack(*track);
        else if (isSubtitle(*track) && m_subtitleMatrixIndex == 0)
            track->setUserCodec(u"burn"_s);
        else if (isSubtitle(*track) && m_subtitleMatrixIndex == 1)
            track->setUserCodec(u"mux"_s);
    }
    setUserMadeAudioSelection(std::any_of(tracks.begin(), tracks.end(), hasOutputs));
}

/// An index that stands for no choice leaves the track as it is.
void KXSelectionController::updateVideoTrack(KXVideoTrack &track)
{
    if (m_videoMatrixIndex < 0 || m_videoMatrixIndex > 2)
        return;
    const bool reencodes = m_videoMatrixIndex != 0;
    track.setUserCodec(reencodes ? u"h264"_s : u"passthru"_s);
    m_selection->setUserPassNumber(m_videoMatrixIndex == 2 ? u"2"_s : u"1"_s);
    setMustConvertVideoTrack(reencodes);
}

void KXSelectionController::updateAudioTrack(KXVideoTrack &track)
{
    setPopupAudioIsSurround(leadingInteger(track.trackNumberOfChannels()) >= surroundFrom);
    setCanAddStereoTrack(m_popupAudioIsSurround);
    if (track.trackCodec() != u"aac"_s && track.trackCodec() != u"ac3"_s)
        setMkvAudioPassThruColor(red);
    track.setUserAudioSettingsDictionaryArray(selection::settingsFor(m_audioMatrixSelections, enteredRates(),
                                                                     track, m_selection->userAudioBitRate()));
}

/// A video that passes through keeps a profile level that can be edited.
void KXSelectionController::updateJobSteps()
{
    if (m_mustConvertVideoTrack)
        m_selection->setJobStepList({u"MKV Track Conversion"_s, u"Mux MKV"_s});
    else
        m_selection->setJobStepList({u"MKV Track Conversion"_s, u"Edit Track Profile Level"_s, u"Mux MKV"_s,
                                     u"Edit MKV Profile Level"_s});
}

void KXSelectionController::updateEditFilesTab()
{
    if (m_openFiles != nullptr)
        m_openFiles->closeOpenQ();
    setCanOpenQueuePopover(false);
    setCurrentFileText(u"Drop MKV video file(s) in the table below to edit them at the file level."_s);
    setCurrentFileTextColor(black);
    const qsizetype files = m_selection->editFilesURLsList().size();
    setCanJoin(files >= 2);
    setCanEditPAR(files > 0);
    setCanSplit(files > 0 && splitIsComplete());
}

bool KXSelectionController::splitIsComplete()
{
    switch (m_splitTypeMatrixIndex) {
    case 0:
        m_selection->setSplitType(u"time"_s);
        return leadingInteger(m_selection->splitStartTimeSeconds()) <
               leadingInteger(m_selection->splitEndTimeSeconds());
    case 1:
        m_selection->setSplitType(u"size"_s);
        return leadingInteger(m_enteredSplitSize) != 0;
    case 2:
        m_selection->setSplitType(u"duration"_s);
        return m_enteredSplitDuration != u"00:00:00"_s;
    default:
        return true;
    }
}
