#pragma once

#include "media/CodecVocabulary.h"
#include "media/FileNames.h"
#include "media/KXVideoTrack.h"

namespace media {

/// "Video", "Audio" or "Subtitle".
QString wordOf(TrackKind kind);

/// Turns the streams of one probed file into tracks, one stream after the other. It runs nothing: what
/// only a further probe can tell (a missing bit rate) is filled in by its owner.
class TrackBuilder final
{
public:
    /// The number of streams decides how the other tools count in containers of a single stream.
    TrackBuilder(const QUrl &file, qsizetype streamCount, Codecs codecs = Codecs::OfVocabulary);

    enum class Outcome {
        Added,
        Skipped,      ///< data, attachments and cover pictures
        NotIdentified ///< see problemCodec()
    };
    /// The fallback stands in for a codec name that the stream doesn't tell; it may be absent too.
    Outcome add(const QVariantMap &stream, const QString &fallbackCodec);

    /// In stream order.
    const TrackList &tracks() const { return m_tracks; }
    /// The tracks of one kind, in stream order.
    TrackList tracksOf(TrackKind kind) const;
    qsizetype count(TrackKind kind) const { return tracksOf(kind).size(); }
    /// The codec that was not identified, possibly empty.
    QString problemCodec() const { return m_problemCodec; }

private:
    TrackPointer newTrack(TrackKind kind, const QVariantMap &stream) const;
    QString mkvmergeID(TrackKind kind, const QString &index) const;

    QUrl m_file;
    FileNames m_names;
    qsizetype m_streamCount;
    Codecs m_codecs;
    TrackList m_tracks;
    QString m_problemCodec;
};

// The rules of single values, for tracks that are not built from a whole file.

void setFileFields(KXVideoTrack &track, const QUrl &file, const FileNames &names);
/// Type, form, the choices that every new track starts with, channels.
void setKindFields(KXVideoTrack &track, TrackKind kind, const QVariantMap &stream);
/// Codec, extension and display text; false when the name is not among the codecs.
bool setCodecFields(KXVideoTrack &track, TrackKind kind, const QString &codecName,
                    Codecs codecs = Codecs::OfVocabulary);
/// Title, language and bit rate, each only where the stream tells it.
void setDescription(KXVideoTrack &track, const QVariantMap &stream);
/// Gives tracks without a title one: "Audio Track". A title that begins with "none" counts as none.
void nameUntitledTracks(const TrackList &tracks);

} // namespace media
