#pragma once

#include "media/StreamForm.h"
#include "platform/Fields.h"
#include "tools/KXHelpers.h"

#include <QUrl>
#include <QVariantMap>

#include <memory>
#include <optional>

class KXVideoTrack;
using TrackPointer = std::shared_ptr<KXVideoTrack>;
using TrackList = QList<TrackPointer>;
/// Per-output audio settings, each with "userCodec", "userBitRate" and "userNumberOfChannels".
using AudioSettingsList = QList<QVariantMap>;

/// One video, audio or subtitle track: a stream of a probed file, a separate file added to it, or a
/// stereo copy that is to be made. It is shared between file and selection; a queued job owns copies.
/// It holds what was read, the user's choices and the snapshot of a muxing step, and runs no tool.
class KXVideoTrack final : public KXHelpers
{
    Q_OBJECT

    // What is known of the track. "none" and "0" stand for not known.
    KX_FIELD_FOR("printed stereoCopy", bool, trackSelected, setTrackSelected, false)
    /// "Video", "Audio" or "Subtitle". Filters also accept "External Subtitle", which nothing assigns.
    KX_FIELD_FOR("printed stereoCopy", QString, trackType, setTrackType, QStringLiteral("none"))
    /// ffprobe's stream index plus 1.
    KX_FIELD_FOR("printed stereoCopy", QString, trackMp4boxID, setTrackMp4boxID, QStringLiteral("0"))
    /// ffprobe's stream index.
    KX_FIELD_FOR("printed stereoCopy", QString, trackFfmpegID, setTrackFfmpegID, QStringLiteral("0"))
    KX_FIELD_FOR("printed", QString, trackInfo, setTrackInfo, QStringLiteral("none"))
    KX_FIELD_FOR("printed", QString, trackTitle, setTrackTitle, QStringLiteral("none"))
    /// Counts the tracks of one type in the source from 0.
    KX_FIELD_FOR("printed stereoCopy", QString, trackMencoderID, setTrackMencoderID, QStringLiteral("0"))
    /// Counts the tracks of one type in the file's track list from 1, once tracks were added to it.
    KX_FIELD_FOR("printed stereoCopy", QString, trackIndex, setTrackIndex, QStringLiteral("0"))
    /// For a stereo copy: the audio track that it is made from.
    KX_FIELD_FOR("printed stereoCopy", QString, selectedAudioTrackIndex, setSelectedAudioTrackIndex,
                 QStringLiteral("0"))
    /// The language's English name.
    KX_FIELD_FOR("printed stereoCopy", QString, trackLanguage, setTrackLanguage,
                 QStringLiteral("undetermined"))
    /// A short word of the codec vocabulary: "h264", "aac", "srt", ...
    KX_FIELD_FOR("printed", QString, trackCodec, setTrackCodec, QStringLiteral("none"))
    /// The extension that the extracted stream gets.
    KX_FIELD_FOR("printed stereoCopy", QString, trackExtension, setTrackExtension, QStringLiteral("none"))
    /// In kb/s.
    KX_FIELD_FOR("printed", QString, trackBitRate, setTrackBitRate, QStringLiteral("0"))
    KX_FIELD_FOR("printed stereoCopy", QString, trackNumberOfChannels, setTrackNumberOfChannels,
                 QStringLiteral("0"))
    /// Absent once the track comes from its re-encoded file instead of the source.
    KX_FIELD_FOR("printed stereoCopy", QString, trackMkvmergeID, setTrackMkvmergeID, QStringLiteral("0"))
    KX_FIELD_FOR("printed stereoCopy", bool, trackDefaultFlag, setTrackDefaultFlag, false)
    KX_FIELD_FOR("printed stereoCopy", bool, trackForcedFlag, setTrackForcedFlag, false)

    // What the user chose for it: "passthru", "mux" (a subtitle copied into the container) or a codec.
    KX_FIELD_FOR("printed", QString, userCodec, setUserCodec, QStringLiteral("none"))
    KX_FIELD_FOR("printed", QString, userBitRate, setUserBitRate, QStringLiteral("0"))
    KX_FIELD_FOR("printed", QString, userNumberOfChannels, setUserNumberOfChannels, QStringLiteral("0"))
    KX_FIELD(AudioSettingsList, userAudioSettingsDictionaryArray, setUserAudioSettingsDictionaryArray, {})

    // The files that belong to it.
    KX_FIELD_FOR("printed stereoCopy", QString, trackFilePath, setTrackFilePath, QStringLiteral("none"))
    /// Ends in "/".
    KX_FIELD_FOR("printed", QString, trackPathToFileFolder, setTrackPathToFileFolder, QStringLiteral("none"))
    KX_FIELD_FOR("stereoCopy", QUrl, trackFileURL, setTrackFileURL, {})
    KX_FIELD(QUrl, trackURLToFileFolder, setTrackURLToFileFolder, {})
    /// Where a job wrote the converted track.
    KX_FIELD(QUrl, convertedFileURL, setConvertedFileURL, {})
    KX_FIELD_FOR("printed stereoCopy", QString, trackFileName, setTrackFileName, QStringLiteral("none"))
    /// As it is written in the name.
    KX_FIELD_FOR("printed stereoCopy", QString, trackFileExtension, setTrackFileExtension,
                 QStringLiteral("none"))

    KX_FIELD_FOR("printed", bool, isStereoCopyFlag, setIsStereoCopyFlag, false)
    KX_FIELD_FOR("printed", bool, createStereoCopyFlag, setCreateStereoCopyFlag, false)
    /// The track is a separate file added to the video.
    KX_FIELD_FOR("printed stereoCopy", bool, externalTrackFlag, setExternalTrackFlag, false)
    KX_FIELD_FOR("printed", bool, convertSubFlag, setConvertSubFlag, false)
    /// A job re-encoded the track into convertedFileURL().
    KX_FIELD_FOR("printed stereoCopy", bool, wasReEncoded, setWasReEncoded, false)

    // The snapshot taken just before a muxing step.
    KX_FIELD(QString, muxingTrackType, setMuxingTrackType, QStringLiteral("none"))
    KX_FIELD(QString, muxingTrackLanguage, setMuxingTrackLanguage, QStringLiteral("none"))
    KX_FIELD(QString, muxingTrackTitle, setMuxingTrackTitle, QStringLiteral("none"))
    /// "one track" when the track is alone in its file: the tool then addresses the whole file.
    KX_FIELD(QString, muxingTrackMp4boxID, setMuxingTrackMp4boxID, QStringLiteral("none"))
    KX_FIELD(QString, muxingTrackMencoderID, setMuxingTrackMencoderID, QStringLiteral("none"))
    KX_FIELD(QString, muxingTrackCodec, setMuxingTrackCodec, QStringLiteral("none"))
    KX_FIELD(QUrl, muxingTrackFileURL, setMuxingTrackFileURL,
             QUrl::fromLocalFile(QStringLiteral("temp/file.url")))
    KX_FIELD(QString, muxingTrackExtension, setMuxingTrackExtension, QStringLiteral("none"))
    KX_FIELD(QString, muxingTrackFileExtension, setMuxingTrackFileExtension, QStringLiteral("none"))

public:
    /// Every field word above, in that order.
    static const QStringList &fieldNames();

    /// An independent track with the same values.
    TrackPointer copy() const;
    /// Takes the muxing snapshot. A re-encoded track loses its mkvmerge number, once.
    void initializeForMuxing();

    /// One line "name = value" a field, for a person; flags as 0 and 1, an absent value as nothing.
    QString stringFromTrackProperties() const;
    void logTrackProperties() const;
    void logMuxingTrackProperties() const;

    /// trackFfmpegID() and trackMkvmergeID() as the numbers that lists of arguments are made of. A track
    /// without a stream index counts as stream 0; one without an mkvmerge number comes from another file.
    int streamIndex() const;
    std::optional<int> mkvmergeNumber() const;

    /// The codec as the probe named it ("eac3", "hdmv_pgs_subtitle"), finer than trackCodec(): it tells
    /// what a container can hold. Absent when the track was not probed. Copied, but in no text form.
    QString probedCodecName() const { return m_probedCodecName; }
    void setProbedCodecName(const QString &name) { m_probedCodecName = name; }
    /// Its file holds further streams that are no tracks (fonts, chapter texts), so a tool that is handed an
    /// added file must be told which one is meant. Copied, but in no text form.
    bool hasCompany() const { return m_hasCompany; }
    void setHasCompany(bool company) { m_hasCompany = company; }
    /// A picture that belongs to the film as a whole, in a stream of its own. Copied, but in no text form.
    bool isCover() const { return m_isCover; }
    void setIsCover(bool cover) { m_isCover = cover; }
    /// What its stream tells of its form. Copied, but in no text form.
    const media::StreamForm &form() const { return m_form; }
    void setForm(const media::StreamForm &form) { m_form = form; }
    /// Why it becomes what was chosen for it, in sentences, where the program chose; absent where a person
    /// did. The receipt tells it. Copied, but in no text form.
    QString choiceReason() const { return m_choiceReason; }
    void setChoiceReason(const QString &reason) { m_choiceReason = reason; }

private:
    void logFields(const QStringList &names) const;

    QString m_probedCodecName;
    QString m_choiceReason;
    media::StreamForm m_form;
    bool m_hasCompany = false;
    bool m_isCover = false;
};
