#pragma once

#include "media/KXVideoTrack.h"
#include "platform/Fields.h"
#include "tools/KXHelpers.h"

#include <memory>
#include <optional>

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
    KX_FIELD_FOR("copied", QList<QUrl>, editFilesURLsList, setEditFilesURLsList, {})
    KX_FIELD_FOR("copied", TrackList, trackList, setTrackList, {})
    /// The tracks that are not selected.
    KX_FIELD_FOR("copied", TrackList, keepTracksList, setKeepTracksList, {})
    KX_RESET_FIELD_FOR("copied", QStringList, jobStepList, setJobStepList, QStringList{QStringLiteral("")})
    /// The stereo copies to make; see addAnyStereoTracks().
    KX_FIELD_FOR("copied", TrackList, addedAudioTrackList, setAddedAudioTrackList, {})
    KX_RESET_FIELD_FOR("copied printed", QString, videoTrackFilePath, setVideoTrackFilePath,
                       QStringLiteral("none"))
    KX_RESET_FIELD_FOR("copied", QUrl, videoTrackFileURL, setVideoTrackFileURL,
                       QUrl::fromLocalFile(QStringLiteral("")))
    KX_RESET_FIELD_FOR("copied printed", QString, videoTrackFileName, setVideoTrackFileName,
                       QStringLiteral("none"))
    KX_RESET_FIELD_FOR("copied printed", QString, videoTrackFileShortName, setVideoTrackFileShortName,
                       QStringLiteral("none"))
    KX_RESET_FIELD_FOR("copied printed", QString, videoTrackFileExtension, setVideoTrackFileExtension,
                       QStringLiteral("none"))
    KX_RESET_FIELD_FOR("copied printed", QString, videoTrackCodec, setVideoTrackCodec, QStringLiteral("none"))
    KX_RESET_FIELD_FOR("copied printed", QString, videoTrackFPS, setVideoTrackFPS, QStringLiteral("0"))
    KX_RESET_FIELD_FOR("copied printed", QString, videoTrackWidth, setVideoTrackWidth, QStringLiteral("0"))
    KX_RESET_FIELD_FOR("copied printed", QString, videoTrackHeight, setVideoTrackHeight, QStringLiteral("0"))
    KX_RESET_FIELD_FOR("copied printed", QString, videoTrackBitRate, setVideoTrackBitRate,
                       QStringLiteral("0"))
    KX_RESET_FIELD_FOR("copied printed", QString, videoTrackPAR, setVideoTrackPAR, QStringLiteral("0"))
    KX_RESET_FIELD_FOR("copied printed", QString, videoTrackProfile, setVideoTrackProfile,
                       QStringLiteral("none"))
    KX_RESET_FIELD_FOR("copied printed", bool, headerRemovalFlag, setHeaderRemovalFlag, false)
    KX_RESET_FIELD_FOR("copied printed", QString, jobType, setJobType, QStringLiteral("none"))
    KX_RESET_FIELD_FOR("copied", QString, jobStatus, setJobStatus, QStringLiteral("Queued"))
    KX_RESET_FIELD_FOR("copied printed", QString, theDevice, setTheDevice, QStringLiteral("none"))
    KX_RESET_FIELD_FOR("copied printed", QString, userVideoBitRate, setUserVideoBitRate, QStringLiteral("0"))
    KX_RESET_FIELD_FOR("copied printed", QString, userAudioBitRate, setUserAudioBitRate, QStringLiteral("0"))
    KX_RESET_FIELD_FOR("copied printed", QString, userFPS, setUserFPS, QStringLiteral("29.97"))
    KX_RESET_FIELD_FOR("copied printed", QString, userHeight, setUserHeight, QStringLiteral("0"))
    KX_RESET_FIELD_FOR("copied printed", QString, userWidth, setUserWidth, QStringLiteral(""))
    KX_RESET_FIELD_FOR("copied printed", QString, userPassNumber, setUserPassNumber, QStringLiteral("0"))
    KX_RESET_FIELD_FOR("copied", QString, userParWidth, setUserParWidth, QStringLiteral("0"))
    KX_RESET_FIELD_FOR("copied", QString, userParHeight, setUserParHeight, QStringLiteral("0"))
    /// "time", "size" or "duration".
    KX_RESET_FIELD_FOR("copied printed", QString, splitType, setSplitType, QStringLiteral("none"))
    KX_RESET_FIELD_FOR("copied printed", QString, splitSize, setSplitSize, QStringLiteral("0"))
    KX_RESET_FIELD_FOR("copied printed", QString, splitNumber, setSplitNumber, QStringLiteral("0"))
    // Times are HH:MM:SS, and the same in whole seconds.
    KX_RESET_FIELD_FOR("copied printed", QString, splitStartTimeText, setSplitStartTimeText,
                       QStringLiteral("00:00:00"))
    KX_RESET_FIELD_FOR("copied printed", QString, splitEndTimeText, setSplitEndTimeText,
                       QStringLiteral("00:00:00"))
    KX_RESET_FIELD_FOR("copied printed", QString, splitStartTimeSeconds, setSplitStartTimeSeconds,
                       QStringLiteral("0"))
    KX_RESET_FIELD_FOR("copied printed", QString, splitEndTimeSeconds, setSplitEndTimeSeconds,
                       QStringLiteral("0"))
    KX_RESET_FIELD_FOR("printed", QString, splitDurationText, setSplitDurationText,
                       QStringLiteral("00:00:00"))
    KX_RESET_FIELD_FOR("printed", QString, splitDurationSeconds, setSplitDurationSeconds, QStringLiteral("0"))
    /// How many tracks of each kind are selected; absent until a file is taken.
    KX_FIELD_FOR("copied", QString, vidCount, setVidCount, {})
    KX_FIELD_FOR("copied", QString, audCount, setAudCount, {})
    KX_FIELD_FOR("copied", QString, subCount, setSubCount, {})
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

    /// The folder that the result gets, where the settings do not decide; empty: they do. Copied, but in no
    /// text form, as is the name.
    const QUrl &outputFolder() const { return m_outputFolder; }
    void setOutputFolder(const QUrl &folder) { m_outputFolder = folder; }
    /// The name of a conversion's result, with its extension; absent: that of its source, with the target's.
    const QString &outputName() const { return m_outputName; }
    void setOutputName(const QString &name) { m_outputName = name; }

    /// How long the film is; absent where that is not known. Copied and in no text form.
    std::optional<double> sourceSeconds() const { return m_sourceSeconds; }
    void setSourceSeconds(std::optional<double> seconds) { m_sourceSeconds = seconds; }

private:
    QUrl m_outputFolder;
    QString m_outputName;
    std::optional<double> m_sourceSeconds;
};
