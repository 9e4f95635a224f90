#pragma once

#include <QString>

namespace support {

class Scratch;

// Small real media for tests. Each function answers the path of its clip, which is made on first use,
// once per build tree, also when several tests ask at the same time. Clips are shared: a test that writes
// beside a clip, or into it, works on a copy. Numbers in comments are ffprobe's stream indexes.
// A clip that can't be made fails the test at once with the tool's own words.

/// A copy of a clip in the scratch folder under another name; answers its path.
QString copyOf(const QString &clip, const Scratch &scratch, const QString &name);

// Whole films. 320x240, 25 frames and 8 s, unless said otherwise.

/// h264 with B-frames (0), ac3 6ch "Surround, five" English (1), aac 2ch German (2), srt English (3), ass
/// French (4), dts 6ch (5).
QString fullMkv();
/// 2560x1440, 4 s: h264 (0), aac 2ch (1), ac3 6ch (2), srt (3).
QString wideMkv();
/// 1920x1080, 4 s: h264 (0), aac 2ch English (1), srt English (2).
QString film1920();
/// 2048x1152, 5 frames a second: h264 (0), ac3 6ch English (1), aac 2ch German (2), aac 1ch English (3),
/// ac3 2ch French (4), flac 6ch of no language (5), srt English (6), ass German (7), srt French (8). Only the
/// AC-3 tracks tell a bit rate: 384 and 192 kb/s.
QString manyTracksMkv();
/// h264 (0) and aac 2ch (1) of that length.
QString longMkv(int seconds, int rate = 25);
/// A black picture on which drawn text or boxes can be measured: h264 (0), aac 2ch (1), srt (2), ass (3).
QString blackMkv();
/// The same black h264 (0) and aac 2ch (1) with a picture subtitle (2): a white box from second 1 to 6.
QString pgsMkv();
/// fullMkv() and, as stream 6, a VobSub track.
QString vobsubMkv();
/// mpeg4 whose frames are stored with header removal (0).
QString headerRemovalMkv();
/// Two h264 video streams of 320x240 (0) and 160x120 (1).
QString twoVideosMkv();
/// h264 (0) and a picture attached as a cover.
QString pngCoverMkv();
QString jpegCoverMkv();
/// h264 (0), aac 2ch (1), mov_text English (2).
QString textMp4();
/// mpeg4 with B-frames (0): unknown timestamps when it is copied into Matroska.
QString packedAvi();
/// mpeg4 of 321x241 (0).
QString oddAvi();
/// mpeg4 (0), mp3 2ch (1); the file's title is "Café" in Latin-1, which is no UTF-8.
QString latin1Avi();
/// mpeg2video (0), mp2 2ch (1).
QString programStream();
QString transportStream();

// Single streams.

/// aac 2ch in an m4a.
QString audioOnly();
/// ac3, 6 channels.
QString surroundAc3();
QString rawH264();
QString srtFile();
QString assFile();
/// A white box from second 1 to 6.
QString supFile();

// Streams outside the codec vocabulary.

QString vp9Mkv();
/// h264 (0), opus 2ch (1).
QString opusMkv();

// Broken ones.

/// fullMkv() with a stretch of its middle overwritten.
QString damagedMkv();
/// The first three fifths of fullMkv().
QString truncatedMkv();
/// 0 bytes.
QString emptyMkv();

} // namespace support
