#include "selection/KXSelectionController.h"

#include "selection/EnteredNumber.h"
#include "selection/OfferedLists.h"
#include "selection/OpenFiles.h"
#include "selection/Possibilities.h"
#include "selection/PresetDriver.h"
#include "selection/Refusals.h"
#include "tools/Numbers.h"

#include <QScopeGuard>
#include <QScopedValueRollback>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype rateDigits = 0;
constexpr qsizetype frameRateDigits = 3;

const QString zeroTime = u"00:00:00"_s;
const QStringList splitWays{u"time"_s, u"size"_s, u"duration"_s};
const QString black = u"black"_s;
const QString red = u"red"_s;

QString labelOf(const KXVideoTrack &track)
{
    return track.trackNumberOfChannels() + u" Ch. "_s + track.trackCodec().toUpper() + u" - "_s +
           track.trackLanguage();
}

bool hasOutputs(const TrackPointer &track)
{
    return selection::isAudio(*track) && !track->userAudioSettingsDictionaryArray().isEmpty();
}

} // namespace

KXSelectionController::KXSelectionController(KXNotificationCenter &center, const VideoFilePointer &file,
                                             const SelectionPointer &selection)
    : m_file(file)
    , m_selection(selection)
    , m_center(center)
{
}

KXSelectionController::~KXSelectionController() = default;

void KXSelectionController::initialize()
{
    m_subscriptions.clear();
    for (const QString &name :
         {u"timeTextFieldExitedNotification"_s, u"timeTextFieldChangedNotification"_s}) {
        m_subscriptions.push_back(m_center.subscribe(
            name, [this](const KXNotification &notification) { notificationHub(notification); }));
    }
    setDefaultFlags();
    setDefaultEntries();
    Q_EMIT stateChanged();
}

/// What the tracks or the window decide has no default and stays.
void KXSelectionController::setDefaultFlags()
{
    m_hideTrackTogglesFlag = m_hideTrackTable = false;
    m_hideFileTable = m_hideAudioTrackPopupFlag = true;
    m_subtitleSelected = m_canMuxSubtitles = m_canBurnSubtitles = m_oneSubSelected = false;
    m_mustConvertVideoTrack = m_mustConvertAudioTrack = m_canAddStereoTrack = false;
    m_canEditTracks = m_canEditPAR = m_canSplit = m_canJoin = m_userMadeAudioSelection = false;
}

void KXSelectionController::setDefaultEntries()
{
    m_mp4Device = deviceList().constFirst();
    m_enteredSplitStartTime = m_enteredSplitEndTime = m_enteredSplitDuration = zeroTime;
    m_enteredSplitSize = u"0"_s;
    m_enteredParWidth = m_enteredParHeight = u"1"_s;
    m_enteredUserVideoBitRate = m_enteredUserWidth = u"0"_s;
    m_enteredUserFPS = u"23.976"_s;
    m_enteredAAC2BitRate = u"128 kbps"_s;
    m_enteredAAC51BitRate = u"384 kbps"_s;
    m_enteredAC351BitRate = u"448 kbps"_s;
    m_audioTrackLabels = {u""_s};
    // Shorter than what choosing the first action says: nothing was opened yet.
    m_editTrackLabel = u"Tessaray will extract the tracks selected above into separate files."_s;
    m_addStereoTrackButton = m_videoMatrixIndex = m_audioMatrixIndex = m_subtitleMatrixIndex = 0;
    m_editTrackMatrixIndex = m_audioTrackPopupIndex = 0;
}

void KXSelectionController::notificationHub(const KXNotification &notification)
{
    if (notification.name != u"timeTextFieldChangedNotification"_s)
        return; // that a field was left changes nothing
    const QString field = notification.userInfo.value(u"textFieldID"_s).toString();
    const QString text = notification.object.toString();
    if (field == u"1001"_s)
        setEnteredSplitStartTime(text);
    else if (field == u"1002"_s)
        setEnteredSplitEndTime(text);
    else if (field == u"1003"_s)
        setEnteredSplitDuration(text);
    else
        return;
    if (field == u"1003"_s)
        m_selection->initializeSplitDurationForTimeText(text);
    else
        m_selection->initializeSplitForStartTimeAndEndTime(enteredSplitStartTime(), enteredSplitEndTime());
    updateTabs();
}

const QStringList &KXSelectionController::audioBitRateContent() const
{
    return selection::offeredAudioBitRates();
}

const QStringList &KXSelectionController::fpsList() const
{
    return selection::offeredFrameRates();
}

const QStringList &KXSelectionController::deviceList() const
{
    return selection::devicesInTexts();
}

void KXSelectionController::setMp4Device(const QString &device)
{
    m_selection->setTheDevice(device);
    if (m_mp4Device == device)
        return;
    m_mp4Device = device;
    Q_EMIT stateChanged();
}

void KXSelectionController::setEnteredSplitSize(const QString &size)
{
    m_enteredSplitSize = size;
    m_selection->setSplitSize(size);
    Q_EMIT stateChanged();
}

void KXSelectionController::setEnteredParWidth(const QString &width)
{
    m_enteredParWidth = width;
    m_selection->setUserParWidth(width);
    Q_EMIT stateChanged();
}

void KXSelectionController::setEnteredParHeight(const QString &height)
{
    m_enteredParHeight = height;
    m_selection->setUserParHeight(height);
    Q_EMIT stateChanged();
}

void KXSelectionController::setEnteredUserVideoBitRate(const QString &text)
{
    const QString number = selection::normalizedNumber(text, rateDigits);
    m_userBitRateOK = !number.isNull();
    m_enteredUserVideoBitRate = m_userBitRateOK ? number : u"0"_s;
    m_selection->setUserVideoBitRate(m_enteredUserVideoBitRate);
    Q_EMIT stateChanged();
}

void KXSelectionController::setEnteredUserWidth(const QString &text)
{
    const QString number = selection::normalizedNumber(text, rateDigits);
    m_userWidthOK = !number.isNull();
    m_enteredUserWidth = m_userWidthOK ? number : u"0"_s;
    m_selection->setUserWidth(m_enteredUserWidth);
    Q_EMIT stateChanged();
}

void KXSelectionController::setEnteredUserFPS(const QString &text)
{
    const QString number = selection::normalizedNumber(text, frameRateDigits);
    m_userFPSOK = !number.isNull();
    m_enteredUserFPS = m_userFPSOK ? number : u"0"_s;
    m_selection->setUserFPS(m_enteredUserFPS);
    Q_EMIT stateChanged();
}

void KXSelectionController::setEditTrackMatrixIndex(const int &index)
{
    m_editTrackMatrixIndex = index;
    const QString text = selection::textOfTrackEdit(index);
    if (!text.isNull())
        m_editTrackLabel = text;
    Q_EMIT stateChanged();
}

void KXSelectionController::setCurrentTab(const QString &tab)
{
    if (tab == m_currentTab)
        return;
    const QString before = m_currentTab;
    m_currentTab = tab;
    if (m_presets != nullptr && !m_presets->changingPresetSetting())
        m_presets->setSettingMethodIndex(0);
    takeNumbersFromSource();
    const bool editsFiles = tab == u"Edit Files"_s;
    if (editsFiles || before == u"Edit Files"_s) {
        setHideTrackTable(editsFiles);
        setHideTrackTogglesFlag(editsFiles);
        setHideFileTable(!editsFiles);
    }
    Q_EMIT stateChanged();
    if (!m_updating)
        updateTabs();
}

/// The selection's numbers, and those that are shown, are the source's again.
void KXSelectionController::takeNumbersFromSource()
{
    setEnteredUserVideoBitRate(m_selection->videoTrackBitRate());
    setEnteredUserFPS(m_selection->videoTrackFPS());
    setEnteredUserWidth(m_selection->videoTrackWidth());
}

void KXSelectionController::upddateAudioTrackPopupFor()
{
    QStringList labels;
    for (const TrackPointer &track : m_selection->trackList()) {
        if (track->trackType() == u"Audio"_s)
            labels.append(labelOf(*track));
    }
    int index = m_audioTrackPopupIndex;
    if (labels.size() > m_audioTrackLabels.size() && index < m_audioTrackLabels.size())
        index = static_cast<int>(labels.indexOf(m_audioTrackLabels.at(index))); // -1 shows the first
    m_audioTrackLabels = labels;
    m_hideAudioTrackPopupFlag = labels.size() <= 1; // announced with the index that fits the labels
    setAudioTrackPopupIndex(index);
}

void KXSelectionController::setAudioTrackLabels(const QStringList &labels)
{
    if (labels == m_audioTrackLabels)
        return;
    m_audioTrackLabels = labels;
    setAudioTrackPopupIndex(m_audioTrackPopupIndex);
}

void KXSelectionController::setAudioTrackPopupIndex(const int &index)
{
    m_audioTrackPopupIndex = index >= 0 && index < m_audioTrackLabels.size() ? index : 0;
    const TrackPointer track = popupTrack();
    const selection::AudioOutputs outputs = track ? selection::outputsOf(*track) : selection::AudioOutputs();
    takeRates(selection::bitRatesOf(outputs, enteredRates()));
    m_audioMatrixSelections = selection::actionsOf(outputs);
    m_addStereoTrackButton = track && track->createStereoCopyFlag() ? 1 : 0;
    Q_EMIT stateChanged();
    if (!m_updating)
        updateTabs();
}

bool KXSelectionController::isInPopup(const KXVideoTrack &track) const
{
    return selection::isAudio(track) &&
           tools::leadingInteger(track.selectedAudioTrackIndex()) == m_audioTrackPopupIndex;
}

TrackPointer KXSelectionController::popupTrack() const
{
    const TrackList tracks = m_selection->trackList();
    const auto found = std::find_if(tracks.begin(), tracks.end(),
                                    [this](const TrackPointer &track) { return isInPopup(*track); });
    return found == tracks.end() ? nullptr : *found;
}

selection::AudioBitRates KXSelectionController::enteredRates() const
{
    return {enteredAAC2BitRate(), enteredAAC51BitRate(), enteredAC351BitRate()};
}

void KXSelectionController::takeRates(const selection::AudioBitRates &rates)
{
    m_enteredAAC2BitRate = rates.aac2;
    m_enteredAAC51BitRate = rates.aac51;
    m_enteredAC351BitRate = rates.ac351;
}

bool KXSelectionController::ticks(int action) const
{
    return m_audioMatrixSelections.contains(selection::audioActions().at(action));
}

void KXSelectionController::tickAudioAction(const QString &action, bool ticked)
{
    QStringList actions;
    for (const QString &known : selection::audioActions()) {
        if (known == action ? ticked : m_audioMatrixSelections.contains(known))
            actions.append(known);
    }
    byHand(&KXSelectionController::setAudioMatrixSelections, actions);
}

void KXSelectionController::setAddStereoTrackButton(const int &state)
{
    const TrackPointer track = popupTrack();
    const bool may = track && canAddStereoTrack();
    m_addStereoTrackButton = may && state != 0 ? 1 : 0;
    if (may)
        track->setCreateStereoCopyFlag(m_addStereoTrackButton == 1);
    m_selection->addAnyStereoTracks();
    Q_EMIT stateChanged();
}

void KXSelectionController::takeGuess(const selection::BestGuess &guess)
{
    const selection::ConversionSettings &settings = guess.settings;
    {
        const QScopedValueRollback updating(m_updating, true); // the controls one by one, the rules once
        selection::writeGuess(guess, *m_selection);
        setMp4Device(settings.target.value_or(m_mp4Device));
        takeNumbersFromSelection();
        if (settings.picture)
            setVideoMatrixIndex(static_cast<int>(*settings.picture));
        if (settings.subtitles)
            setSubtitleMatrixIndex(*settings.subtitles == selection::SubtitleUse::Burn ? 0 : 1);
        setAudioTrackPopupIndex(m_audioTrackPopupIndex);
    }
    updateTabs();
}

void KXSelectionController::useNewEncoderCheckBox(bool on)
{
    m_selection->setCurrentEncoder(on ? u"ffmpeg"_s : u"mencoder"_s);
}

void KXSelectionController::leaveSettingsPreset()
{
    if (m_presets != nullptr && m_presets->settingMethodIndex() != 0)
        m_presets->setSettingMethodIndex(0);
}

void KXSelectionController::guiClickedTrap()
{
    Q_EMIT editingEndWanted();
    deselectAllTrackRows();
    leaveSettingsPreset();
    updateTabs();
}

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
    const selection::TrackPossibilities possible = selection::possibilitiesOf(*m_file, *m_selection);
    setCanConvert(possible.convert);
    setCanEditTracks(possible.editTracks);
    setOneSubSelected(possible.hasOneSubtitle);
    updateSubtitleRules(possible);
    setCanAddStereoTrack(false);
    chosenSettings().writeTo(*m_selection);
    if (m_canConvert)
        updateConversionRules();
    m_selection->setJobStepList(selection::stepsOfConversion(m_mustConvertVideoTrack));
}

/// Without a subtitle both possibilities keep what they said: meant.
void KXSelectionController::updateSubtitleRules(const selection::TrackPossibilities &possible)
{
    setSubtitleSelected(possible.hasSubtitle);
    bool passThruWorks = true;
    if (m_subtitleSelected) {
        setCanMuxSubtitles(true);
        setCanBurnSubtitles(possible.hasOneSubtitle);
        passThruWorks = m_subtitleMatrixIndex != 0 || !m_canConvert; // burning needs a re-encode
    }
    setMkvVideoPassThruColor(passThruWorks ? black : red);
    setMkvAudioPassThruColor(black);
}

/// What the controls say; an index that stands for no choice leaves what was chosen.
selection::ConversionSettings KXSelectionController::chosenSettings() const
{
    using selection::Picture;
    using selection::SubtitleUse;
    const QList<Picture> pictures{Picture::PassThrough, Picture::OnePass, Picture::TwoPasses};
    const QList<SubtitleUse> uses{SubtitleUse::Burn, SubtitleUse::Mux};
    selection::ConversionSettings settings;
    settings.target = m_mp4Device;
    settings.videoBitRate = m_enteredUserVideoBitRate;
    settings.width = m_enteredUserWidth;
    settings.frameRate = m_enteredUserFPS;
    if (!m_canConvert)
        return settings;
    if (m_videoMatrixIndex >= 0 && m_videoMatrixIndex < pictures.size())
        settings.picture = pictures.at(m_videoMatrixIndex);
    if (m_subtitleMatrixIndex >= 0 && m_subtitleMatrixIndex < uses.size())
        settings.subtitles = uses.at(m_subtitleMatrixIndex);
    if (const TrackPointer track = popupTrack())
        settings.audio.insert(track, selection::outputsFor(m_audioMatrixSelections, enteredRates(),
                                                           m_selection->userAudioBitRate()));
    return settings;
}

void KXSelectionController::updateConversionRules()
{
    const auto chosen = selection::ConversionSettings::of(*m_selection);
    if (chosen.picture && m_videoMatrixIndex >= 0 && m_videoMatrixIndex <= 2)
        setMustConvertVideoTrack(*chosen.picture != selection::Picture::PassThrough);
    if (const TrackPointer track = popupTrack())
        updateAudioRules(*track);
    const TrackList tracks = m_selection->trackList();
    setUserMadeAudioSelection(std::any_of(tracks.begin(), tracks.end(), hasOutputs));
}

void KXSelectionController::updateAudioRules(const KXVideoTrack &track)
{
    setPopupAudioIsSurround(selection::isSurround(track));
    setCanAddStereoTrack(m_popupAudioIsSurround);
    if (!selection::canPassThrough(track))
        setMkvAudioPassThruColor(red);
}

void KXSelectionController::updateEditFilesTab()
{
    if (m_openFiles != nullptr)
        m_openFiles->closeOpenQ();
    setCanOpenQueuePopover(false);
    setCurrentFileText(u"Drop MKV video file(s) in the table below to edit them at the file level."_s);
    setCurrentFileTextColor(black);
    const qsizetype files = m_selection->editFilesURLsList().size();
    setCanJoin(selection::refusalToJoin(files).isNull());
    setCanEditPAR(files > 0);
    setCanSplit(files > 0 && splitIsComplete());
}

/// An index that stands for no way leaves the split to its job, which says so.
bool KXSelectionController::splitIsComplete()
{
    const QString way = splitWays.value(m_splitTypeMatrixIndex);
    if (way.isNull())
        return true;
    m_selection->setSplitType(way);
    return selection::isSplitComplete(*m_selection, m_enteredSplitSize, m_enteredSplitDuration);
}

void KXSelectionController::trackTableSelectionChanged(Sender sender)
{
    selection::takeTicks(m_file->trackList(), *m_selection);
    if (sender == Sender::TrackTable && m_presets != nullptr)
        m_presets->setSelectionMethodIndex(0);
    upddateAudioTrackPopupFor();
    if (m_presets != nullptr)
        m_presets->applyCurrentPresetSettings();
    if (sender != Sender::TrackTable)
        Q_EMIT trackTicksChanged();
}

void KXSelectionController::toggleAll(selection::TickedKind kind)
{
    selection::toggleTicks(kind, *m_file, *m_selection);
    if (m_presets != nullptr)
        m_presets->setSelectionMethodIndex(0);
    trackTableSelectionChanged(Sender::Other);
}

void KXSelectionController::toggleAllVideo()
{
    toggleAll(selection::TickedKind::Video);
}

void KXSelectionController::toggleAllAudio()
{
    toggleAll(selection::TickedKind::Audio);
}

void KXSelectionController::toggleAllSubtitle()
{
    toggleAll(selection::TickedKind::Subtitle);
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
    const auto chosen = selection::ConversionSettings::of(*m_selection);
    if (chosen.picture)
        setVideoMatrixIndex(static_cast<int>(*chosen.picture));
    if (chosen.subtitles)
        setSubtitleMatrixIndex(*chosen.subtitles == selection::SubtitleUse::Burn ? 0 : 1);
    if (const qsizetype index = splitWays.indexOf(m_selection->splitType()); index >= 0)
        setSplitTypeMatrixIndex(static_cast<int>(index));
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
