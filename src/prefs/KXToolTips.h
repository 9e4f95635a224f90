#pragma once

#include "platform/Fields.h"
#include "tools/KXHelpers.h"

/// The tool-tip texts of all controls, one property per control: "tt" followed by the control's name.
/// Base of the preferences, which decide whether tips are shown. Owns the texts, knows no widget.
class KXToolTips : public KXHelpers
{
    Q_OBJECT
    KX_FIELD(QString, ttVidBitRateField, setTtVidBitRateField, {})
    KX_FIELD(QString, ttAudioBitRateButton, setTtAudioBitRateButton, {})
    KX_FIELD(QString, ttResWidthField, setTtResWidthField, {})
    KX_FIELD(QString, ttConvertButton, setTtConvertButton, {})
    KX_FIELD(QString, ttFPSCombo, setTtFPSCombo, {})
    KX_FIELD(QString, ttAddStereoCheckBox, setTtAddStereoCheckBox, {})
    KX_FIELD(QString, ttDevicePopUp, setTtDevicePopUp, {})
    KX_FIELD(QString, ttMultipleAudioTrackPopUp, setTtMultipleAudioTrackPopUp, {})
    KX_FIELD(QString, ttTheVideoMatrix, setTtTheVideoMatrix, {})
    KX_FIELD(QString, ttTheAudioMatrix, setTtTheAudioMatrix, {})
    KX_FIELD(QString, ttTheSubtitleMatrix, setTtTheSubtitleMatrix, {})
    KX_FIELD(QString, ttOpenFilesQueueButton, setTtOpenFilesQueueButton, {})
    KX_FIELD(QString, ttOpenFilesQueuePanelTable, setTtOpenFilesQueuePanelTable, {})
    KX_FIELD(QString, ttOpenFilesQueuePanelMatrix, setTtOpenFilesQueuePanelMatrix, {})
    KX_FIELD(QString, ttStartTrackEditButton, setTtStartTrackEditButton, {})
    KX_FIELD(QString, ttEditTrackMatrix, setTtEditTrackMatrix, {})
    KX_FIELD(QString, ttEditPAR, setTtEditPAR, {})
    KX_FIELD(QString, ttSplitStartTime, setTtSplitStartTime, {})
    KX_FIELD(QString, ttSplitEndTime, setTtSplitEndTime, {})
    KX_FIELD(QString, ttSplitSize, setTtSplitSize, {})
    KX_FIELD(QString, ttConvertFileField, setTtConvertFileField, {})
    KX_FIELD(QString, ttConvertTrackTable, setTtConvertTrackTable, {})
    KX_FIELD(QString, ttPlayButton, setTtPlayButton, {})
    KX_FIELD(QString, ttAddButton, setTtAddButton, {})
    KX_FIELD(QString, ttToggleVideoButton, setTtToggleVideoButton, {})
    KX_FIELD(QString, ttToggleAudioButton, setTtToggleAudioButton, {})
    KX_FIELD(QString, ttToggleSubtitleButton, setTtToggleSubtitleButton, {})
    KX_FIELD(QString, ttPresetSettingsPopUp, setTtPresetSettingsPopUp, {})
    KX_FIELD(QString, ttPresetSelectionsPopUp, setTtPresetSelectionsPopUp, {})
    KX_FIELD(QString, ttStartWatchingFolderButton, setTtStartWatchingFolderButton, {})
    KX_FIELD(QString, ttQueueTable, setTtQueueTable, {})
    KX_FIELD(QString, ttQueueJobTable, setTtQueueJobTable, {})
    KX_FIELD(QString, ttQueueClearButton, setTtQueueClearButton, {})
    KX_FIELD(QString, ttQueuePauseButton, setTtQueuePauseButton, {})
    KX_FIELD(QString, ttPrefLogsButton, setTtPrefLogsButton, {})
    KX_FIELD(QString, ttPrefToolTipsButton, setTtPrefToolTipsButton, {})
    KX_FIELD(QString, ttPrefOptimizeStreamingButton, setTtPrefOptimizeStreamingButton, {})
    KX_FIELD(QString, ttPrefAddPaddingButton, setTtPrefAddPaddingButton, {})
    KX_FIELD(QString, ttPrefUseDpliiButton, setTtPrefUseDpliiButton, {})
    KX_FIELD(QString, ttPrefSubPosField, setTtPrefSubPosField, {})
    KX_FIELD(QString, ttPrefSubHeightField, setTtPrefSubHeightField, {})
    KX_FIELD(QString, ttPrefSubFontField, setTtPrefSubFontField, {})
    KX_FIELD(QString, ttPresetTable, setTtPresetTable, {})
    KX_FIELD(QString, ttAddPresetButton, setTtAddPresetButton, {})
    KX_FIELD(QString, ttRemovePresetButton, setTtRemovePresetButton, {})
    KX_FIELD(QString, ttPresetName, setTtPresetName, {})
    KX_FIELD(QString, ttVideoTrackSelectionPopUp, setTtVideoTrackSelectionPopUp, {})
    KX_FIELD(QString, ttAudioTrackSelectionPopUp, setTtAudioTrackSelectionPopUp, {})
    KX_FIELD(QString, ttSubtitleTrackSelectionPopUp, setTtSubtitleTrackSelectionPopUp, {})
    KX_FIELD(QString, ttLanguageSelectionPopUp, setTtLanguageSelectionPopUp, {})
    KX_FIELD(QString, ttUseFirstCheckBox, setTtUseFirstCheckBox, {})
    KX_FIELD(QString, ttPDeviceList, setTtPDeviceList, {})
    KX_FIELD(QString, ttPVideoActionList, setTtPVideoActionList, {})
    KX_FIELD(QString, ttPVideoGenericList, setTtPVideoGenericList, {})
    KX_FIELD(QString, ttPStereoAudio, setTtPStereoAudio, {})
    KX_FIELD(QString, ttPSurroundAudio, setTtPSurroundAudio, {})
    KX_FIELD(QString, ttPSubActionList, setTtPSubActionList, {})
    KX_FIELD(QString, ttAddFilterButton, setTtAddFilterButton, {})

public:
    explicit KXToolTips(const tools::ToolPlaces *places);

    enum class Tips { Hidden, Shown };
    /// Gives every control its text, or all of them the empty text.
    void modifyToolTips(Tips tips);
};
