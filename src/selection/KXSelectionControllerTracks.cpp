// Tracks and files: what is ticked becomes the selection, and one opened file gives way to another.
#include "selection/KXSelectionController.h"

#include "selection/OpenFiles.h"
#include "selection/PresetDriver.h"
#include "tools/Numbers.h"

#include <QScopedValueRollback>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QStringList videoTypes{u"Video"_s};
const QStringList audioTypes{u"Audio"_s};
const QStringList subtitleTypes{u"Subtitle"_s, u"External Subtitle"_s};

QString countOf(const TrackList &tracks, const QStringList &types)
{
    return QString::number(std::count_if(tracks.begin(), tracks.end(), [&](const TrackPointer &track) {
        return types.contains(track->trackType());
    }));
}

void divideTracks(const TrackList &tracks, KXSelection &selection)
{
    TrackList chosen;
    TrackList kept;
    for (const TrackPointer &track : tracks)
        (track->trackSelected() ? chosen : kept).append(track);
    selection.setTrackList(chosen);
    selection.setKeepTracksList(kept);
    selection.setVidCount(countOf(chosen, videoTypes));
    selection.setAudCount(countOf(chosen, audioTypes));
    selection.setSubCount(countOf(chosen, subtitleTypes));
}

void numberAudioTracks(const TrackList &tracks)
{
    int number = 0;
    for (const TrackPointer &track : tracks) {
        if (track->trackType() == u"Audio"_s)
            track->setSelectedAudioTrackIndex(QString::number(number++));
    }
}

/// What the video choice was when the selection was left; -1 where it tells none.
int videoIndexOf(const KXSelection &selection)
{
    for (const TrackPointer &track : selection.trackList()) {
        if (track->trackType() == u"Video"_s && track->userCodec() == u"passthru"_s)
            return 0;
        if (track->trackType() == u"Video"_s && track->userCodec() == u"h264"_s)
            return selection.userPassNumber() == u"2"_s ? 2 : 1;
    }
    return -1;
}

int subtitleIndexOf(const KXSelection &selection)
{
    for (const TrackPointer &track : selection.trackList()) {
        if (subtitleTypes.contains(track->trackType()))
            return track->userCodec() == u"burn"_s ? 0 : 1;
    }
    return -1;
}

int splitIndexOf(const KXSelection &selection)
{
    return static_cast<int>(
        QStringList({u"time"_s, u"size"_s, u"duration"_s}).indexOf(selection.splitType()));
}

} // namespace

void KXSelectionController::trackTableSelectionChanged(Sender sender)
{
    divideTracks(m_file->trackList(), *m_selection);
    m_selection->addAnyStereoTracks();
    numberAudioTracks(m_selection->trackList());
    if (sender == Sender::TrackTable && m_presets != nullptr)
        m_presets->setSelectionMethodIndex(0);
    upddateAudioTrackPopupFor();
    if (m_presets != nullptr)
        m_presets->applyCurrentPresetSettings();
    if (sender != Sender::TrackTable)
        Q_EMIT trackTicksChanged();
}

void KXSelectionController::toggleAll(const QStringList &types, const QString &selected, const QString &all)
{
    const bool ticks = tools::leadingInteger(selected) < tools::leadingInteger(all);
    for (const TrackPointer &track : m_file->trackList()) {
        if (types.contains(track->trackType(), Qt::CaseInsensitive))
            track->setTrackSelected(ticks);
    }
    if (m_presets != nullptr)
        m_presets->setSelectionMethodIndex(0);
    trackTableSelectionChanged(Sender::Other);
}

void KXSelectionController::toggleAllVideo()
{
    toggleAll(videoTypes, m_selection->vidCount(), m_file->theNumberOfVideoTracks());
}

void KXSelectionController::toggleAllAudio()
{
    toggleAll(audioTypes, m_selection->audCount(), m_file->theNumberOfAudioTracks());
}

void KXSelectionController::toggleAllSubtitle()
{
    toggleAll(subtitleTypes, m_selection->subCount(), m_file->theNumberOfSubTracks());
}

void KXSelectionController::takeLoadedFile()
{
    m_selection->initializeFrom(*m_file);
    takeNumbersFromSource();
    // Also without a preset: the tracks of the file before must not stay in the selection.
    trackTableSelectionChanged(Sender::Other);
}

void KXSelectionController::updateCurrentSelectionToNewSelectionAndCurrentVideoFileToNewVideoFile(
    const KXSelection &selection, const KXVideoFile &file)
{
    m_file->makeSelfCopyOfVideoFile(file);
    m_selection->makeSelfCopyOfSelection(selection);
    if (openQueueMatrixIndex() != 0)
        takeFieldsFromSelection();
}

void KXSelectionController::takeFieldsFromSelection()
{
    const QScopedValueRollback updating(m_updating, true);
    if (m_selection->theDevice() != u"none"_s)
        setMp4Device(m_selection->theDevice());
    takeNumbersFromSelection();
    if (const int index = videoIndexOf(*m_selection); index >= 0)
        setVideoMatrixIndex(index);
    if (const int index = subtitleIndexOf(*m_selection); index >= 0)
        setSubtitleMatrixIndex(index);
    if (const int index = splitIndexOf(*m_selection); index >= 0)
        setSplitTypeMatrixIndex(index);
    setEnteredSplitStartTime(m_selection->splitStartTimeText());
    setEnteredSplitEndTime(m_selection->splitEndTimeText());
    setEnteredSplitSize(m_selection->splitSize());
    setEnteredParWidth(m_selection->userParWidth());
    setEnteredParHeight(m_selection->userParHeight());
    upddateAudioTrackPopupFor();
}

void KXSelectionController::takeNumbersFromSelection()
{
    setEnteredUserVideoBitRate(m_selection->userVideoBitRate());
    setEnteredUserFPS(m_selection->userFPS());
    setEnteredUserWidth(m_selection->userWidth());
}

void KXSelectionController::makeCurrent(const OpenedFile &entry)
{
    if (m_openFiles != nullptr)
        m_openFiles->storeCurrent(m_file->copy(), m_selection->copy());
    updateCurrentSelectionToNewSelectionAndCurrentVideoFileToNewVideoFile(*entry.videoSelection,
                                                                          *entry.videoFile);
    takeNumbersFromSelection();
    {
        // The controls first: else the update writes those of the file before into this one's tracks.
        const QScopedValueRollback updating(m_updating, true);
        upddateAudioTrackPopupFor();
    }
    updateTabs();
    Q_EMIT trackTicksChanged();
}
