#pragma once

#include <QString>

namespace support {

// Clips of separate tracks, as they are added to a film. They are made and shared as those of Clips.h,
// and as long: 8 s. Numbers in comments are ffprobe's stream indexes.

/// ac3 6ch "Raumklang" German (0).
QString surroundMka();
/// mp3 2ch.
QString mp3File();
/// The lines of srtFile() in the older form of ass; ffprobe calls both "ass".
QString ssaFile();
/// A French text for the same seconds as that of srtFile(), in Latin letters with accents.
QString frenchSrt();
/// mov_text, and nothing else.
QString textOnlyMp4();

// Whole films with all that a film can hold.

/// h264 (0), ac3 6ch (1), aac 2ch (2), srt (3), a picture subtitle (4), a font (5), a jpeg cover (6), and two
/// chapters.
QString richMkv();
/// h264 (0), aac 2ch (1), mov_text (2), the texts of two chapters (3), a jpeg cover (4).
QString richMp4();

/// mpeg2video (0), ac3 2ch (1), a VobSub (2) in a program stream.
QString dvdStream();

// More than one stream.

/// aac 2ch (0), srt (1).
QString soundAndTextMka();
/// aac 2ch (0), ac3 6ch (1).
QString twoSoundsMka();
/// srt (0), ass (1).
QString twoTextsMks();
/// srt (0), and a text file attached to it, which counts as a stream.
QString attachmentMks();
/// aac 2ch (0), and the texts of two chapters, which count as a data stream.
QString chaptersM4a();
/// An mp3 with a jpeg picture as its cover, an aac with a png.
QString coverMp3();
QString coverM4a();

// Nothing that could be added.

QString opusFile();
QString webvttFile();
/// A data stream and nothing else.
QString dataOnlyMov();
/// What a probe takes for a list of no streams.
QString streamlessFile();

} // namespace support
