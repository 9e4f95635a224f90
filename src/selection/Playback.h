#pragma once

#include <QString>
#include <QStringList>

#include <optional>

class KXVideoTrack;

namespace selection {

/// What a device plays of pictures, all of it H.264 of 8 bits and 4:2:0, progressive. A limit of 0 is none.
struct PlayedPicture
{
    QStringList profiles; ///< as a probe names them
    int level = 0;        ///< 31 is 3.1
    int width = 0;
    int height = 0;
    int frameRate = 0;
    int bitRate = 0; ///< kb/s
};

/// What a device plays of sound: AAC-LC, and AC3 where it says so.
struct PlayedSound
{
    int aacChannels = 2;
    int aacBitRate = 0; ///< kb/s; 0: whatever it is
    int sampleRate = 48000;
    bool takesAc3 = false;
};

/// What a device plays.
struct Playback
{
    PlayedPicture picture;
    PlayedSound sound;
};

/// Of the target with that name, by the table of targets; no value where it promises nothing: "General",
/// "MKV", "AVI" and other texts.
std::optional<Playback> playbackOf(const QString &targetName);

// Why a track can't be played as it is, as what the device does instead: "plays H.264, not MPEG2VIDEO". A
// null text for a track that plays.

QString whyUnplayedPicture(const Playback &device, const KXVideoTrack &track);
QString whyUnplayedSound(const Playback &device, const KXVideoTrack &track);

} // namespace selection
