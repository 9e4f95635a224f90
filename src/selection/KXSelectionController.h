#pragma once

#include "media/KXVideoFile.h"
#include "platform/Fields.h"
#include "platform/KXNotificationCenter.h"
#include "selection/AudioActions.h"
#include "selection/BestGuess.h"
#include "selection/KXSelection.h"
#include "selection/TrackTicks.h"
#include "tools/KXHelpers.h"

#include <vector>

class OpenFiles;
class PresetDriver;
struct OpenedFile;

namespace selection {
struct TrackPossibilities;
}

/// The rules behind the main window's controls: what was typed and picked, what may be done, and the
/// current file and selection, which it keeps consistent with both. The program makes it once and hands in
/// file and selection; presets and widgets use the same properties. It knows no widget and starts no tool.
/// Flags and texts are announced by stateChanged().
class KXSelectionController final : public KXHelpers
{
    Q_OBJECT
    Q_MOC_INCLUDE("selection/PresetDriver.h")

    Q_PROPERTY(VideoFilePointer currentVideoFile READ currentVideoFile CONSTANT)
    Q_PROPERTY(SelectionPointer currentSelection READ currentSelection CONSTANT)
    Q_PROPERTY(PresetDriver *presetsController READ presetsController WRITE setPresetsController)
    Q_PROPERTY(bool appIsUpdatingTabs READ appIsUpdatingTabs)

    // What is shown.
    KX_STATE(bool, hideTrackTogglesFlag, setHideTrackTogglesFlag, false)
    KX_STATE(bool, hideTrackTable, setHideTrackTable, false)
    KX_STATE(bool, hideFileTable, setHideFileTable, true)
    KX_STATE(bool, hideAudioTrackPopupFlag, setHideAudioTrackPopupFlag, true)
    KX_STATE(bool, trackTableEnabled, setTrackTableEnabled, true)
    /// The line that names the file, and its colour: the word "black" or "red", absent until it is set.
    KX_STATE(QString, currentFileText, setCurrentFileText, {})
    KX_STATE(QString, currentFileTextColor, setCurrentFileTextColor, {})

    // What is so, and what may be done.
    KX_STATE(bool, subtitleSelected, setSubtitleSelected, false)
    KX_STATE(bool, canMuxSubtitles, setCanMuxSubtitles, false)
    KX_STATE(bool, canBurnSubtitles, setCanBurnSubtitles, false)
    /// This one and mustConvertAudioTrack are decided by nothing.
    KX_STATE(bool, canConvertAudioTrack, setCanConvertAudioTrack, false)
    KX_STATE(bool, mustConvertVideoTrack, setMustConvertVideoTrack, false)
    KX_STATE(bool, mustConvertAudioTrack, setMustConvertAudioTrack, false)
    KX_STATE(bool, canAddStereoTrack, setCanAddStereoTrack, false)
    KX_STATE(bool, popupAudioIsSurround, setPopupAudioIsSurround, false)
    KX_STATE(bool, canAddTrack, setCanAddTrack, false)
    KX_STATE(bool, canConvert, setCanConvert, false)
    KX_STATE(bool, canEditTracks, setCanEditTracks, false)
    KX_STATE(bool, canEditPAR, setCanEditPAR, false)
    KX_STATE(bool, canSplit, setCanSplit, false)
    KX_STATE(bool, canJoin, setCanJoin, false)
    KX_STATE(bool, oneSubSelected, setOneSubSelected, false)
    KX_STATE(bool, userMadeAudioSelection, setUserMadeAudioSelection, false)
    /// Whether the number that was entered last was one.
    KX_STATE(bool, userBitRateOK, setUserBitRateOK, false)
    KX_STATE(bool, userWidthOK, setUserWidthOK, false)
    KX_STATE(bool, userFPSOK, setUserFPSOK, false)
    /// "black", or "red" where passing through is not possible; absent until the first update.
    KX_STATE(QString, mkvVideoPassThruColor, setMkvVideoPassThruColor, {})
    KX_STATE(QString, mkvAudioPassThruColor, setMkvAudioPassThruColor, {})

    // What was typed and picked. Bit rates in kb/s, widths in pixels.
    KX_RULED_STATE(QString, currentTab, setCurrentTab, {})
    KX_RULED_STATE(QString, mp4Device, setMp4Device, {})
    KX_STATE(QString, enteredSplitStartTime, setEnteredSplitStartTime, {})
    KX_STATE(QString, enteredSplitEndTime, setEnteredSplitEndTime, {})
    KX_STATE(QString, enteredSplitDuration, setEnteredSplitDuration, {})
    KX_RULED_STATE(QString, enteredSplitSize, setEnteredSplitSize, {})
    KX_RULED_STATE(QString, enteredParWidth, setEnteredParWidth, {})
    KX_RULED_STATE(QString, enteredParHeight, setEnteredParHeight, {})
    KX_RULED_STATE(QString, enteredUserVideoBitRate, setEnteredUserVideoBitRate, {})
    KX_RULED_STATE(QString, enteredUserFPS, setEnteredUserFPS, {})
    KX_RULED_STATE(QString, enteredUserWidth, setEnteredUserWidth, {})
    KX_STATE(QString, enteredAAC2BitRate, setEnteredAAC2BitRate, {})
    KX_STATE(QString, enteredAAC51BitRate, setEnteredAAC51BitRate, {})
    KX_STATE(QString, enteredAC351BitRate, setEnteredAC351BitRate, {})
    /// 0 off, 1 on. Does something only where canAddStereoTrack().
    KX_RULED_STATE(int, addStereoTrackButton, setAddStereoTrackButton, 0)
    /// 0 passes through, 1 is H.264 in one pass, 2 in two.
    KX_STATE(int, videoMatrixIndex, setVideoMatrixIndex, 0)
    /// Kept for the widgets that show it; no rule reads it.
    KX_STATE(int, audioMatrixIndex, setAudioMatrixIndex, 0)
    /// 0 burns, 1 muxes.
    KX_STATE(int, subtitleMatrixIndex, setSubtitleMatrixIndex, 0)
    /// 0 extracts tracks, 1 removes them, 2 adds external ones.
    KX_RULED_STATE(int, editTrackMatrixIndex, setEditTrackMatrixIndex, 0)
    /// 0 splits by time, 1 by size, 2 by duration.
    KX_STATE(int, splitTypeMatrixIndex, setSplitTypeMatrixIndex, 0)
    /// 0: presets are applied to each opened file as it comes; 1: only what was chosen by hand.
    KX_STATE(int, openQueueMatrixIndex, setOpenQueueMatrixIndex, 0)
    /// Which of the selected audio tracks the audio controls show.
    KX_RULED_STATE(int, audioTrackPopupIndex, setAudioTrackPopupIndex, 0)
    KX_RULED_STATE(QStringList, audioTrackLabels, setAudioTrackLabels, {})
    /// The ticked actions of that track.
    KX_STATE(QStringList, audioMatrixSelections, setAudioMatrixSelections, {})
    KX_STATE(QString, editTrackLabel, setEditTrackLabel, {})

    // The check boxes of the four actions follow audioMatrixSelections().
    Q_PROPERTY(bool passthruState READ passthruState NOTIFY stateChanged)
    Q_PROPERTY(bool aac2State READ aac2State NOTIFY stateChanged)
    Q_PROPERTY(bool aac51State READ aac51State NOTIFY stateChanged)
    Q_PROPERTY(bool ac351State READ ac351State NOTIFY stateChanged)

    // What is offered.
    Q_PROPERTY(QStringList audioBitRateContent READ audioBitRateContent CONSTANT)
    Q_PROPERTY(QStringList fpsList READ fpsList CONSTANT)
    Q_PROPERTY(QStringList deviceList READ deviceList CONSTANT)

public:
    /// All are shared with the program; the centre must outlive the controller.
    KXSelectionController(KXNotificationCenter &center, const VideoFilePointer &file,
                          const SelectionPointer &selection);
    ~KXSelectionController() override;

    /// Both must outlive the controller or be taken away with null; without them their part is left out.
    void setPresetsController(PresetDriver *presets) { m_presets = presets; }
    void setOpenFiles(OpenFiles *files) { m_openFiles = files; }

    PresetDriver *presetsController() const { return m_presets; }
    VideoFilePointer currentVideoFile() const { return m_file; }
    SelectionPointer currentSelection() const { return m_selection; }

    /// The defaults; from then on the time fields are listened to.
    void initialize();
    void notificationHub(const KXNotification &notification);

    /// Who asks for a new selection. A tick in the table leaves the preset that chose the tracks.
    enum class Sender { TrackTable, MakeSelections, Other };
    /// Takes the ticked tracks into the selection and has the settings preset applied to them.
    void trackTableSelectionChanged(Sender sender);
    /// Says anew what may be done, and writes the controls' choices into the selected tracks.
    void updateTabs();
    /// While updateTabs() runs.
    bool appIsUpdatingTabs() const { return m_updating; }

    /// The current file and selection become copies of these.
    void updateCurrentSelectionToNewSelectionAndCurrentVideoFileToNewVideoFile(const KXSelection &selection,
                                                                               const KXVideoFile &file);
    /// Shows another of the opened files: what was current is kept in its entry.
    void makeCurrent(const OpenedFile &entry);
    /// What follows when the current file was loaded anew: its selection, its numbers, its tracks.
    void takeLoadedFile();

    /// The doubled letter is meant.
    void upddateAudioTrackPopupFor();
    bool passthruState() const { return ticks(0); }
    bool aac2State() const { return ticks(1); }
    bool aac51State() const { return ticks(2); }
    bool ac351State() const { return ticks(3); }

    // A kind is ticked whole, or unticked when it was whole.
    void toggleAllVideo();
    void toggleAllAudio();
    void toggleAllSubtitle();
    /// A click on the window's background.
    void guiClickedTrap();
    /// The user set a conversion control by hand: the settings preset is left, so that it does not put its
    /// value back. For widgets only: byHand(&KXSelectionController::setVideoMatrixIndex, 1).
    template <typename Setter, typename Value>
    void byHand(Setter setter, const Value &value)
    {
        leaveSettingsPreset();
        selection::forgetReasons(m_selection->trackList());
        (this->*setter)(value);
        updateTabs();
    }
    /// Sets the controls to what was guessed for the current selection (selection::bestGuess()), and writes
    /// it and its reasons into the selection. A person's later choice takes the reasons away.
    void takeGuess(const selection::BestGuess &guess);
    /// One of audioActions() is ticked or unticked by hand.
    void tickAudioAction(const QString &action, bool ticked);
    void useNewEncoderCheckBox(bool on);
    void deselectAllTrackRows() { Q_EMIT trackRowsDeselected(); }

    const QStringList &audioBitRateContent() const;
    const QStringList &fpsList() const;
    /// The names that stand in the program's texts; what a popup offers is selection::targetNames().
    const QStringList &deviceList() const;

Q_SIGNALS:
    void stateChanged();
    /// The ticks of the tracks changed from here.
    void trackTicksChanged();
    void trackRowsDeselected();
    void editingEndWanted();

private:
    void setDefaultFlags();
    void setDefaultEntries();
    void updateMkvTab();
    void updateEditFilesTab();
    void updateSubtitleRules(const selection::TrackPossibilities &possible);
    void updateConversionRules();
    void updateAudioRules(const KXVideoTrack &track);
    selection::ConversionSettings chosenSettings() const;
    bool splitIsComplete();
    void setCanOpenQueuePopover(bool can);
    bool ticks(int action) const;
    bool isInPopup(const KXVideoTrack &track) const;
    TrackPointer popupTrack() const;
    selection::AudioBitRates enteredRates() const;
    void takeRates(const selection::AudioBitRates &rates);
    void takeFieldsFromSelection();
    void takeNumbersFromSelection();
    void takeNumbersFromSource();
    void toggleAll(selection::TickedKind kind);
    void leaveSettingsPreset();

    VideoFilePointer m_file;
    SelectionPointer m_selection;
    KXNotificationCenter &m_center;
    PresetDriver *m_presets = nullptr;
    OpenFiles *m_openFiles = nullptr;
    std::vector<KXNotificationCenter::Subscription> m_subscriptions;
    bool m_updating = false;
};
