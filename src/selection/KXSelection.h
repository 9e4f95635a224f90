#pragma once

#include "media/KXVideoTrack.h"
#include "platform/Fields.h"
#include "tools/KXHelpers.h"

#include <memory>

class KXVideoFile;
class KXSelection;

using SelectionPointer = std::shared_ptr<KXSelection>;

/// Everything a job needs to know about what the user chose: the source file's video, the tracks, the
/// target, the conversion numbers, the split and the job's identity. The window or the command line
/// owns one that follows the current file; each job owns a copy. It decides nothing. Not final, so that
/// a test can listen to its log hooks.
class KXSelection : public KXHelpers
{
    Q_OBJECT
    KX_FIELD(bool, forceLegacyEncoder, setForceLegacyEncoder, false)
    KX_FIELD(QString, mp4Muxer, setMp4Muxer, QStringLiteral("mp4box"))
    KX_FIELD(QString, currentEncoder, setCurrentEncoder, QStringLiteral("ffmpeg"))
    /// The files of a job that has several (edit, join).
    KX_FIELD(QList<QUrl>, editFilesURLsList, setEditFilesURLsList, {})
    KX_FIELD(TrackList, trackList, setTrackList, {})
    /// The stereo copies to make; see addAnyStereoTracks().
    KX_FIELD(TrackList, addedAudioTrackList, setAddedAudioTrackList, {})
    /// The tracks that are not selected.
    KX_FIELD(TrackList, keepTracksList, setKeepTracksList, {})
    KX_FIELD(QString, videoTrackFilePath, setVideoTrackFilePath, {})
    KX_FIELD(QUrl, videoTrackFileURL, setVideoTrackFileURL, {})
    KX_FIELD(QString, videoTrackFileName, setVideoTrackFileName, {})
    KX_FIELD(QString, videoTrackFileShortName, setVideoTrackFileShortName, {})
    KX_FIELD(QString, videoTrackFileExtension, setVideoTrackFileExtension, {})
    KX_FIELD(QString, videoTrackCodec, setVideoTrackCodec, {})
    KX_FIELD(QString, videoTrackFPS, setVideoTrackFPS, {})
    KX_FIELD(QString, videoTrackWidth, setVideoTrackWidth, {})
    KX_FIELD(QString, videoTrackHeight, setVideoTrackHeight, {})
    KX_FIELD(QString, videoTrackBitRate, setVideoTrackBitRate, {})
    KX_FIELD(QString, videoTrackPAR, setVideoTrackPAR, {})
    KX_FIELD(QString, videoTrackProfile, setVideoTrackProfile, {})
    KX_FIELD(bool, headerRemovalFlag, setHeaderRemovalFlag, false)
    KX_FIELD(QString, jobType, setJobType, {})
    KX_FIELD(QStringList, jobStepList, setJobStepList, {})
    KX_FIELD(QString, jobStatus, setJobStatus, {})
    KX_FIELD(QString, theDevice, setTheDevice, {})
    KX_FIELD(QString, userVideoBitRate, setUserVideoBitRate, {})
    KX_FIELD(QString, userAudioBitRate, setUserAudioBitRate, {})
    KX_FIELD(QString, userFPS, setUserFPS, {})
    KX_FIELD(QString, userHeight, setUserHeight, {})
    KX_FIELD(QString, userWidth, setUserWidth, {})
    KX_FIELD(QString, userPassNumber, setUserPassNumber, {})
    KX_FIELD(QString, userParWidth, setUserParWidth, {})
    KX_FIELD(QString, userParHeight, setUserParHeight, {})
    /// "time", "size" or "duration".
    KX_FIELD(QString, splitType, setSplitType, {})
    KX_FIELD(QString, splitSize, setSplitSize, {})
    KX_FIELD(QString, splitNumber, setSplitNumber, {})
    // Times are HH:MM:SS, and the same in whole seconds.
    KX_FIELD(QString, splitStartTimeText, setSplitStartTimeText, {})
    KX_FIELD(QString, splitEndTimeText, setSplitEndTimeText, {})
    KX_FIELD(QString, splitStartTimeSeconds, setSplitStartTimeSeconds, {})
    KX_FIELD(QString, splitEndTimeSeconds, setSplitEndTimeSeconds, {})
    KX_FIELD(QString, splitDurationText, setSplitDurationText, {})
    KX_FIELD(QString, splitDurationSeconds, setSplitDurationSeconds, {})
    /// How many tracks of each kind are selected; absent until a file is taken.
    KX_FIELD(QString, vidCount, setVidCount, {})
    KX_FIELD(QString, audCount, setAudCount, {})
    KX_FIELD(QString, subCount, setSubCount, {})
    /// What makeSelfCopyOfSelection() takes over.
    KX_FIELD(QStringList, propertiesKeysList, setPropertiesKeysList, {})

public:
    /// Nothing but encoder, muxer and the key list is set; see initialize().
    KXSelection();

    void initialize();
    void setDefaultSelectionProperties();
    /// Takes what belongs to the file; the chosen height stays on purpose.
    void initializeFrom(const KXVideoFile &file);
    /// A selection for a job: the lists are its own, the tracks in them shared. Encoder, muxer and the
    /// legacy flag are not taken over, on purpose.
    SelectionPointer copy() const;
    /// Takes the other's values of propertiesKeysList; the split duration stays the receiver's.
    void makeSelfCopyOfSelection(const KXSelection &other);
    /// Builds addedAudioTrackList anew from the tracks that ask for a stereo copy.
    void addAnyStereoTracks();
    /// HH:MM:SS each; an absent one counts as "00:00:00". The end may lie before the start.
    void initializeSplitForStartTimeAndEndTime(const QString &start, const QString &end);
    void initializeSplitDurationForTimeText(const QString &duration);
    void logSelectionProperties() const;
};
