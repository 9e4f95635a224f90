#pragma once

#include "media/AddedTracks.h"
#include "media/KXVideoTrack.h"
#include "media/ProbeReader.h"
#include "platform/Fields.h"
#include "tools/KXHelpers.h"

#include <QUrl>
#include <QVariantList>

#include <memory>

namespace media {
class TrackBuilder;
} // namespace media

class KXVideoFile;
using VideoFilePointer = std::shared_ptr<KXVideoFile>;
/// Groups of the words by which a codec is told.
using CodecGroups = QList<QStringList>;

/// The probed model of one media file: its tracks and the properties of its first video stream. One
/// object serves file after file; tracks are shared with the selection and with copies of the file. It
/// blocks while ffprobe runs and changes nothing on disk but an error file beside what it can't use.
class KXVideoFile final : public KXHelpers
{
    Q_OBJECT

    // "none" and "0" stand for not known.
    KX_FIELD_FOR("copied", QString, theFilePath, setTheFilePath, QStringLiteral("none"))
    KX_FIELD_FOR("copied", QUrl, theFileURL, setTheFileURL, {})
    KX_FIELD_FOR("copied", QString, theFileName, setTheFileName, QStringLiteral("none"))
    /// In lower case.
    KX_FIELD_FOR("copied", QString, theFileExtension, setTheFileExtension, QStringLiteral("none"))
    /// The name in front of "." and the extension; with an extension in capitals the whole name.
    KX_FIELD_FOR("copied", QString, theFileShortName, setTheFileShortName, QStringLiteral("none"))
    /// Ends in "/".
    KX_FIELD_FOR("copied", QString, pathToFileFolder, setPathToFileFolder, QStringLiteral("none"))
    KX_FIELD(QString, addedFilePath, setAddedFilePath, QStringLiteral("none"))
    KX_FIELD(QString, addedFileName, setAddedFileName, QStringLiteral("none"))
    KX_FIELD(QString, addedFileExtension, setAddedFileExtension, QStringLiteral("none"))
    KX_FIELD(QString, addedPathToFileFolder, setAddedPathToFileFolder, QStringLiteral("none"))
    /// Video tracks, audio tracks, subtitles, then what was added.
    KX_FIELD(TrackList, trackList, setTrackList, {})
    KX_FIELD_FOR("copied", QString, theNumberOfVideoTracks, setTheNumberOfVideoTracks, QStringLiteral("0"))
    KX_FIELD_FOR("copied", QString, theNumberOfAudioTracks, setTheNumberOfAudioTracks, QStringLiteral("0"))
    KX_FIELD_FOR("copied", QString, theNumberOfSubTracks, setTheNumberOfSubTracks, QStringLiteral("0"))
    /// This, the length and the pixel shape are not filled by a probe.
    KX_FIELD(bool, isVideoFile, setIsVideoFile, false)
    KX_FIELD_FOR("copied", QString, theDuration, setTheDuration, QStringLiteral("0"))
    /// Six digits behind the point: "23.976024"; "nan" where the stream says 0/0.
    KX_FIELD_FOR("copied", QString, theFPS, setTheFPS, QStringLiteral("0"))
    KX_FIELD_FOR("copied", QString, videoPAR, setVideoPAR, QStringLiteral("0"))
    KX_FIELD_FOR("copied", QString, theWidth, setTheWidth, QStringLiteral("0"))
    KX_FIELD_FOR("copied", QString, theHeight, setTheHeight, QStringLiteral("0"))
    /// "High@L4.1"
    KX_FIELD_FOR("copied", QString, codecProfile, setCodecProfile, QStringLiteral("none"))
    /// In kb/s, of the last video track; can be negative where it had to be estimated.
    KX_FIELD_FOR("copied", QString, theVideoBitRate, setTheVideoBitRate, QStringLiteral("0"))
    KX_FIELD_FOR("copied", QString, theVideoCodec, setTheVideoCodec, QStringLiteral("none"))
    KX_FIELD_FOR("copied", bool, headerRemovalFlag, setHeaderRemovalFlag, false)
    /// One dictionary a stream, in ffprobe's order. A reset leaves it as it is.
    KX_FIELD(QVariantList, ffprobeResultsDictionaryArray, setFfprobeResultsDictionaryArray, {})

    Q_PROPERTY(CodecGroups videoCodecList READ videoCodecList CONSTANT)
    Q_PROPERTY(QStringList videoInfoList READ videoInfoList CONSTANT)
    Q_PROPERTY(QStringList videoExtList READ videoExtList CONSTANT)
    Q_PROPERTY(CodecGroups audioCodecList READ audioCodecList CONSTANT)
    Q_PROPERTY(QStringList audioInfoList READ audioInfoList CONSTANT)
    Q_PROPERTY(QStringList audioExtList READ audioExtList CONSTANT)
    Q_PROPERTY(CodecGroups subtitleCodecList READ subtitleCodecList CONSTANT)
    Q_PROPERTY(QStringList subtitleInfoList READ subtitleInfoList CONSTANT)
    Q_PROPERTY(QStringList subtitleExtList READ subtitleExtList CONSTANT)
    Q_PROPERTY(QUrl mediainfoURL READ mediainfoURL CONSTANT)
    Q_PROPERTY(QUrl mkvinfoURL READ mkvinfoURL CONSTANT)
    Q_PROPERTY(QStringList propertiesKeysList READ propertiesKeysList CONSTANT)

public:
    /// Without places it can be filled and copied, but every probe answers "not a video".
    explicit KXVideoFile(const tools::ToolPlaces *places);
    /// What is wrong with a file is not written down beside it.
    void leaveNoErrorFiles() { m_leavesErrorFiles = false; }

    /// Every property back to its default.
    void setFileDefaultPropertyValues();

    /// Probes the file: "OK", "not a video" or "track not identified". A probe that was stopped answers
    /// "not a video" and leaves no error file.
    QString initializeForURL(const QUrl &url);
    /// The same from what a run of ffprobe printed already. Starts nothing and writes no error file.
    QString initializeFromPrintout(const QUrl &url, const media::Printout &printed);
    /// The streams' dictionaries, or the single text "not a video".
    QVariantList createFfprobeResultsDictionaryArrayForURL(const QUrl &url) const;
    /// The codec words of ffprobe's stream lines, for streams that don't tell theirs otherwise.
    QStringList createFfprobeStreamCodecsArrayForURL(const QUrl &url) const;
    /// Fills the track list and the three counts; the answers are those of a probe.
    QString createTrackListForSelf();
    /// Fills the file's own properties; "OK" also without a video stream.
    QString createFilePropertiesForSelf();

    // Separate files that are added to this one.

    /// What a file that comes in is good for: "replace file" (load it as a new video), "add file" (a
    /// single audio stream or subtitle) or "not a video file". With no file open always "replace file".
    QString whatToDoWithFile(const QUrl &url) const;
    /// The track that such a file holds, or why it holds none.
    media::AddedTracks createAddedTrackForURL(const QUrl &url) const;
    /// Puts it behind the file's own tracks and counts anew: "OK", "adding video track", "too many tracks",
    /// "track not identified" or "not a video"; anything but "OK" leaves the track list as it was.
    QString addTrack(const QUrl &url);

    /// The probe marks no track as default or forced; this takes over how the source marks its own.
    void takeFlagsOfSource() const;

    /// Whether an MKV file uses header-removal compression, which some players can't read. What the answer
    /// leads to, and headerRemovalFlag(), is the caller's business.
    bool checkForHeaderRemovalFor(const QUrl &url) const;

    /// The codec for which the last probe, or the last look at a file to add, answered "track not
    /// identified"; null where it answered otherwise.
    QString problemCodec() const { return m_problemCodec; }
    /// The next probes take newer codecs whatever the settings say.
    void setTakesNewerCodecs(bool takes) { m_takesNewerCodecs = takes; }
    /// What that refusal means and how the file can be opened, in one sentence; null where the last answer
    /// was another, or nothing would help.
    QString wayOut() const;
    /// How long the film is; absent where the probe told no length. theDuration() is not filled by it.
    std::optional<double> seconds() const;

    /// A file with the same values of propertiesKeysList() and the same tracks.
    VideoFilePointer copy() const;
    /// Takes the same over from another file.
    void makeSelfCopyOfVideoFile(const KXVideoFile &other);

    /// The whole file and its tracks as lines "name = value", for a person.
    QString stringFromFileProperties() const;
    void logFileProperties() const;

    /// The words of the properties that are copied between files.
    static const QStringList &propertiesKeysList();

    // The codec vocabulary: parallel lists of match words, codec words and extensions.
    CodecGroups videoCodecList() const;
    QStringList videoInfoList() const;
    QStringList videoExtList() const;
    CodecGroups audioCodecList() const;
    QStringList audioInfoList() const;
    QStringList audioExtList() const;
    CodecGroups subtitleCodecList() const;
    QStringList subtitleInfoList() const;
    QStringList subtitleExtList() const;

    QUrl mediainfoURL() const { return resource(QStringLiteral("mediainfo")); }
    QUrl mkvinfoURL() const { return resource(QStringLiteral("mkvinfo")); }

private:
    /// The status of a file that no video can be read from.
    inline static const QString notAVideo = QStringLiteral("not a video");

    QUrl resource(const QString &name) const;
    media::Codecs codecs() const;
    QString ffprobe(const QUrl &url, const tools::OptionList &options) const;
    QString probeOf(const QUrl &url) const;
    QString refuse(const QUrl &url, const QString &status, const QString &reason) const;
    void deriveVideoBitRates(const TrackList &tracks);
    void takeTracksFrom(const media::TrackBuilder &builder);
    void countTracksAnew();
    void takeVideoStream(const QVariantMap &stream);
    void writeErrorFile(const QUrl &url, const QString &text) const;

    mutable QString m_problemCodec;
    double m_toldSeconds = 0; ///< by the container; 0 where it was not asked, or does not know
    bool m_leavesErrorFiles = true;
    bool m_takesNewerCodecs = false;
    std::optional<media::Printout> m_printed; ///< where somebody else ran the tool
};
