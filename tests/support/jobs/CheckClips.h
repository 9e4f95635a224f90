#pragma once

#include <QString>

namespace support {

/// 160x120, 25 frames a second and one sound of 48 kHz for 60 s, in the usual codecs of the container that
/// its extension names: mkv, mp4, mov, ts, mpg, avi, wmv, flv. Picture and sound begin so many seconds after
/// 0 (AVI, WMV and FLV know no such start). Made once per build tree.
QString minuteOf(const QString &extension, int start = 0);
/// The same picture and sound in a file of mkvmerge's, with a text of two cues as stream 2.
QString minuteWithText();

} // namespace support
