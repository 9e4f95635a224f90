#pragma once

#include "media/CodecVocabulary.h"
#include "selection/Refusals.h"

class KXSelection;
class KXVideoFile;
class KXVideoTrack;

namespace summary {

media::TrackKind kindOf(const KXVideoTrack &track);
/// "Video", "Audio", "Subtitle"
QString kindText(media::TrackKind kind);
/// "H.264", "AC3", "DTS", "SRT": short, as it stands on boxes.
QString codecText(const KXVideoTrack &track);
/// "Mono", "Stereo", "5.1", "4 ch."; empty where it is not known.
QString channelsText(const QString &channels);
/// What is worth telling beside the codec: the size of the picture, the channels; empty for subtitles.
QString factText(const KXVideoTrack &track, const KXVideoFile &file);
/// Pictures of letters, which only some containers hold.
bool isPictureSubtitle(const KXVideoTrack &track);

/// What a ticked track becomes, in a few words, and the reason where it is not what one expects.
struct Becoming
{
    enum class Tone { Plain, Warning, Bad };

    QString text; ///< empty for a track that is not ticked
    Tone tone = Tone::Plain;
    QString reason;
};

/// In the conversion that the selection describes.
Becoming becomesBy(const KXSelection &selection, const KXVideoTrack &track);
/// When the tracks of an MKV file are edited.
Becoming becomesBy(selection::TrackEdit edit, const KXVideoTrack &track);

} // namespace summary
