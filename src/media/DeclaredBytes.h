#pragma once

#include <QUrl>

#include <optional>

namespace media {

/// How long a file is by the lengths at the head of its own parts: Matroska's segment, RIFF, ASF, the boxes
/// of MP4. Longer than the file itself: somebody cut it. Absent where it tells none, as a stream does that
/// was written into a pipe. Reads a few bytes of each part.
std::optional<qint64> declaredBytesOf(const QUrl &film);

/// How long a Matroska or MP4 file says that it is, in seconds; absent for others, and where it says nothing.
/// As quick, so that no tool need be started to know where its end must be.
std::optional<double> toldSecondsOf(const QUrl &film);

} // namespace media
