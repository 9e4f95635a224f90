// What is typed and picked, and the audio popup; the tracks are in KXSelectionControllerTracks.cpp, the
// rules of what may be done in KXSelectionControllerTabs.cpp.
#include "selection/KXSelectionController.h"

#include "selection/EnteredNumber.h"
#include "selection/PresetDriver.h"
#include "tools/Numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype rateDigits = 0;
constexpr qsizetype frameRateDigits = 3;

const QString zeroTime = u"00:00:00"_s;

QString labelOf(const KXVideoTrack &track)
{
    return track.trackNumberOfChannels() + u" Ch. "_s + track.trackCodec().toUpper() + u" - "_s +
           track.trackLanguage();
}

/// Two blanks after each full stop: meant.
QString editTrackText(int index)
{
    switch (index) {
    case 0:
        return u"Tessaray will extract the tracks selected above into separate files.  You can not extract "
               "tracks that are added to the above table using the Add Tracks button."_s;
    case 1:
        return u"Tessaray will create a copy of the video file with the selected tracks removed.  You can "
               u"not "
               "remove the video track so the Go button will be disabled if you select a video track."_s;
    case 2:
        return u"Tessaray will create a copy of the video file with the selected external audio tracks "
               u"added.  "
               "You can only add external tracks, that is, tracks that are added to the above table using "
               "the "
               "Add Tracks button."_s;
    default:
        return {};
    }
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
    static const QStringList rates{u"128 kbps"_s, u"160 kbps"_s, u"192 kbps"_s, u"224 kbps"_s, u"256 kbps"_s,
                                   u"320 kbps"_s, u"384 kbps"_s, u"448 kbps"_s, u"512 kbps"_s, u"640 kbps"_s};
    return rates;
}

const QStringList &KXSelectionController::fpsList() const
{
    static const QStringList rates{u"23.976"_s, u"25"_s, u"29.97"_s};
    return rates;
}

const QStringList &KXSelectionController::deviceList() const
{
    static const QStringList devices{u"General"_s,
                                     u"Apple TV 2"_s,
                                     u"Apple TV 3"_s,
                                     u"iPad (2 and Earlier)"_s,
                                     u"iPad 3/iPhone 4S"_s,
                                     u"iPhone 4/iPod Touch (4G and Later)"_s,
                                     u"iPhone/iPod Touch (3G and Earlier)"_s,
                                     u"iPod"_s,
                                     u"PS3"_s,
                                     u"Xbox"_s};
    return devices;
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
    const QString text = editTrackText(index);
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
    const AudioSettingsList outputs = track ? track->userAudioSettingsDictionaryArray() : AudioSettingsList();
    takeRates(selection::bitRatesOf(outputs, enteredRates()));
    m_audioMatrixSelections = selection::actionsOf(outputs);
    m_addStereoTrackButton = track && track->createStereoCopyFlag() ? 1 : 0;
    Q_EMIT stateChanged();
    if (!m_updating)
        updateTabs();
}

bool KXSelectionController::isInPopup(const KXVideoTrack &track) const
{
    return track.trackType() == u"Audio"_s &&
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
