#pragma once

#include "selection/KXSelection.h"

#include <QHash>

#include <optional>

namespace selection {

/// What becomes of the picture.
enum class Picture { PassThrough, OnePass, TwoPasses };
/// Carried as tracks, or drawn into the picture.
enum class SubtitleUse { Mux, Burn };

/// One output stream of an audio track. Its numbers stay the texts that were chosen or probed, for a tool is
/// given them as they stand.
struct AudioOutput
{
    QString codec;    ///< "passthru", "aac", "ac3" or "mp3"
    QString channels; ///< null: as many as the track has
    QString bitRate;  ///< kb/s; of no meaning where the stream passes through

    bool passesThrough() const { return codec == QStringLiteral("passthru"); }
    bool operator==(const AudioOutput &) const = default;
};
using AudioOutputs = QList<AudioOutput>;

/// What was chosen for a conversion, on its way from the options, boxes and presets to a selection, which
/// keeps it as words. What has no value here was not chosen: writeTo() leaves it as it is.
struct ConversionSettings
{
    std::optional<QString> target;       ///< a name of selection::targets()
    std::optional<QString> videoBitRate; ///< kb/s
    std::optional<QString> width;        ///< pixels
    std::optional<QString> frameRate;
    std::optional<Picture> picture;
    std::optional<SubtitleUse> subtitles;
    QHash<TrackPointer, AudioOutputs> audio;

    /// Of a selection: what its words say.
    static ConversionSettings of(const KXSelection &selection);
    void writeTo(KXSelection &selection) const;
    /// The same with every value that the other has.
    ConversionSettings overlaidBy(const ConversionSettings &other) const;
};

bool isVideo(const KXVideoTrack &track);
bool isAudio(const KXVideoTrack &track);
/// True for "Subtitle" and for "External Subtitle", which nothing assigns but every filter accepts.
bool isSubtitle(const KXVideoTrack &track);
/// Whether a subtitle is to be drawn into the picture: it is neither muxed nor extracted.
bool isBurned(const KXVideoTrack &track);
/// The outputs of an audio track, and the same written into it.
AudioOutputs outputsOf(const KXVideoTrack &track);
void writeOutputs(KXVideoTrack &track, const AudioOutputs &outputs);

} // namespace selection
