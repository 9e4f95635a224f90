#include "prefs/ToolTipTexts.h"

using namespace Qt::StringLiterals;

namespace prefs {

// The wording is fixed to the letter: doubled words and misspellings stay.
const QList<ToolTipText> &toolTipTexts()
{
    // clang-format off
    static const QList<ToolTipText> texts{
        {"ttVidBitRateField",
         u"This displays what will be the video bit rate of the processed video.  Enter your own "
         u"value if you want to change it.  If not selectable, then the setting is not needed."_s},
        {"ttAudioBitRateButton",
         u"Select an audio bitrate for your video.  160 for stereo and 448 for surround are good "
         u"default values.  This is not selectable if you are passing through the audio."_s},
        {"ttResWidthField",
         u"This displays what will be the pixel width of the processed video.  Enter your own "
         u"value if you want to change it.  If not selectable, then the setting is not needed."_s},
        {"ttConvertButton",
         u"Click to start the conversion process.  If not clickable, then invalid or incomplete "
         u"selections have been made."_s},
        {"ttFPSCombo",
         u"This is the frame rate of the video.  You should only need to change this if you see "
         u"drastic sync issues with your results."_s},
        {"ttAddStereoCheckBox",
         u"Check this box if you would like Tessaray to add a stereo version of the audio track.  "
         u"Note this is only selectable if the track is not stereo."_s},
        {"ttDevicePopUp",
         u"Choose a target device for the final video.  Tessaray will make settings appropriate "
         u"for the device, including setting the AVC Level."_s},
        {"ttMultipleAudioTrackPopUp",
         u"This pop up contains a list of the currently selected audio tracks.  The settings below "
         u"correspond to the current track in the video.  This pop up is not needed, and so is not "
         u"visible if only one audio trak is selected."_s},
        {"ttTheVideoMatrix",
         u"Select the video codec to use.  1-pass encoding will be faster.  2-pass encoding will "
         u"take longer but should yield a better quality video.  If red, the option is not "
         u"recommended."_s},
        {"ttTheAudioMatrix",
         u"Select the audio codec to use.  If red, the option is not recommended."_s},
        {"ttTheSubtitleMatrix",
         u"Select what to do with the subtitle track you have selected.  Burn requires the video "
         u"to be re-encoded."_s},
        {"ttOpenFilesQueueButton",
         u"This button is enabled if you opened a group of files.  Click on it to see a list of "
         u"the files that you opened"_s},
        {"ttOpenFilesQueuePanelTable",
         u"This table lists the files that you opened.  You can click on the file and make "
         u"slecections manually or using the presets."_s},
        {"ttOpenFilesQueuePanelMatrix",
         u"This determines how the files are entered into the jobs queue when you click on Convert "
         u"in the main window.  The first option will overide any manual selections you have made, "
         u"and apply presets, if selected, to each of the files as it's added to the job queue.  "
         u"The second option will add files to the job queue using only the manual selections you "
         u"have made."_s},
        {"ttStartTrackEditButton",
         u"Start the editing track process.  Tessaray can only edit the tracks of MKV videos, so "
         u"this is not selectable if the video is of any other type."_s},
        {"ttEditTrackMatrix",
         u"Select what you want done to the original track.  The Added and Removed tracks must be "
         u"in the original MKV video.  Added tracks must first be added to the above window using "
         u"the above Add Track button.  The Go button will be disabled for invalid track "
         u"selections.  In all cases the original file is untouched."_s},
        {"ttEditPAR",
         u"Set a width to height ratio for each pixel.  Note this is not the same at the display "
         u"aspect ratio.  With a PAR of 1:1, the video displayed aspect ratio wil match the "
         u"encoded aspect ratio."_s},
        {"ttSplitStartTime",
         u"Select a start time for the video segment that you want to extract.  The actual start "
         u"time can vary from the entered value. All tracks will be included in the segment."_s},
        {"ttSplitEndTime",
         u"Select an end time for the video segment that you want to extract.  The actual end time "
         u"can vary from the entered value. All tracks will be included in the segment."_s},
        {"ttSplitSize",
         u"Select a size to segment the video.  The entire video will be segmented into multiple "
         u"files of approximately the entered size."_s},
        {"ttConvertFileField",
         u"Use the open button or drop one, or a combination of similar videos for processing.  "
         u"Tessaray will apply the settings you choose to all the files in the group and add them "
         u"to the queue.  The file(s) must contain a video track."_s},
        {"ttConvertTrackTable",
         u"Click on the track checkboxes to select the tracks you want to work on."_s},
        {"ttPlayButton",
         u"Click to play the currently selected tracks.  Useful for testing selections or checking "
         u"subtitle settings."_s},
        {"ttAddButton",
         u"Click to add tracks/files to the current tracks.  For example, add an external subtitle "
         u"file to your tacks."_s},
        {"ttToggleVideoButton",
         u"Toggle the selection of the video track."_s},
        {"ttToggleAudioButton",
         u"Toggle the selection of all audio tracks."_s},
        {"ttToggleSubtitleButton",
         u"Toggle the selection of all subtitle tracks."_s},
        {"ttPresetSettingsPopUp",
         u"Choose, or define a preset that will automatically make the settings for the current "
         u"video file."_s},
        {"ttPresetSelectionsPopUp",
         u"Choose, or define a preset that will automatically make the track selections for the "
         u"current video file."_s},
        {"ttStartWatchingFolderButton",
         u"Push this button to place Tessaray into Watch Mode, in which it will monitor a user "
         u"defined folder, and process files added to the folder using the presets.  Watch mode is "
         u"not possible if either of the presets is set to Manual.  All current files in the qeue "
         u"will continue to be processed in Watch Mode."_s},
        {"ttQueueTable",
         u"This lists all the queued jobs and their status.  The button to the left will delete "
         u"the given job at any time in the process."_s},
        {"ttQueueJobTable",
         u"This lists the progress of individual threads of the currently running process."_s},
        {"ttQueueClearButton",
         u"Click to delete completed jobs from the queue."_s},
        {"ttQueuePauseButton",
         u"Click to pause the current job.  Click again to resume the processing."_s},
        {"ttPrefLogsButton",
         u"Check to keep the log and temporary files created by Tessaray.  The log files can be "
         u"useful for finding error messages."_s},
        {"ttPrefToolTipsButton",
         u"Turns tool tips on/off."_s},
        {"ttPrefOptimizeStreamingButton",
         u"This moves the moov atom to the front of the converted video.  This is useful for video "
         u"streaming.  This step will add to the processing time."_s},
        {"ttPrefAddPaddingButton",
         u"This adds free space to the moov atom which will speed up speed up any editing of the "
         u"video metadata.  This step will add to the processing time."_s},
        {"ttPrefUseDpliiButton",
         u"When downmixing surround audio to 2 channels, Dolby Pro Logic II will be used."_s},
        {"ttPrefSubPosField",
         u"Enter the position of the subtitles, measured from the bottom of the video as a "
         u"percentage of the total video height.  You can test the results by playing the video in "
         u"Tessaray."_s},
        {"ttPrefSubHeightField",
         u"Enter the height of the subtitles measured as a percentage of the total video height.  "
         u"You can test the results by playing the video in Tessaray."_s},
        {"ttPrefSubFontField",
         u"Use the Change... button to set the font to be used for subtitles.  If the field is "
         u"blank, then no subtitles will be displayed."_s},
        {"ttPresetTable",
         u"This table lists the presets you have defined.  Select the preset to edit it.  Use the "
         u"buttons below to add or remove presets, though you can not remove the first preset in "
         u"the list."_s},
        {"ttAddPresetButton",
         u"Press to create a new preset."_s},
        {"ttRemovePresetButton",
         u"Press to delete the currently selected preset."_s},
        {"ttPresetName",
         u"Edit the name of the current preset."_s},
        {"ttVideoTrackSelectionPopUp",
         u"Define how to automatically make the video track selection."_s},
        {"ttAudioTrackSelectionPopUp",
         u"Define how to automatically make the audio track selection.  You can tell Tessaray to "
         u"select the first audio track in the video, all audio tracks, or select tracks by "
         u"language code."_s},
        {"ttSubtitleTrackSelectionPopUp",
         u"Define how to automatically make the subtitle track selection.  You can tell Tessaray "
         u"to select the first subtitle track in the video, all subtitle tracks, or select tracks "
         u"by language code."_s},
        {"ttLanguageSelectionPopUp",
         u"If selecting the track(s) By Language, select the language code to try to match.  Use "
         u"the checkbox below if you want Tessaray to select the first track if there are no "
         u"language matches."_s},
        {"ttUseFirstCheckBox",
         u"Check this box if you want Tessaray to select the first track if there are no language "
         u"matches."_s},
        {"ttPDeviceList",
         u"Select the type of device you want the preset to target."_s},
        {"ttPVideoActionList",
         u"You can either specify what should be done to the video track, or let Tessaray make an "
         u"educated guess based on facts like the target device and the original track properties. "
         u" The Best Guess can try to maximize either quality or speed.  Note, if the Best Guess "
         u"is to pass thru the video, then custom bitrate and wdith values are ignored."_s},
        {"ttPVideoGenericList",
         u"Specify if you want Tessaray to use the original value or enter a user specified value "
         u"to the right.  Note, the user specified value is ignored if the video is passed thru."_s},
        {"ttPStereoAudio",
         u"You can either specify what should be done to a selected stereo audio track, or let "
         u"Tessaray make an educated guess based on facts like the target device and the original "
         u"track properties.  Note, the bitrate selection is ignored if the audio is passed thru."_s},
        {"ttPSurroundAudio",
         u"You can either specify what should be done to a selected surround audio track, or let "
         u"Tessaray make an educated guess based on facts like the target device and the original "
         u"track properties.  Note, the bitrate selection is ignored if the audio is passed thru."_s},
        {"ttPSubActionList",
         u"Select what you want done to selected the subtitle track(s).  Soft subs can be turned "
         u"off.  Hard subs can not be turned off, and requires for the video to be re-encoded.  "
         u"Note if multiple subtitle tracks are selected, then burning the subtiles will not work "
         u"properly."_s},
        {"ttAddFilterButton",
         u"Click to add/remove a filter.  How multiple filters are applied is set by the filter "
         u"mode."_s}
    };
    // clang-format on
    return texts;
}

} // namespace prefs
