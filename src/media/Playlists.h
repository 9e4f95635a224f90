#pragma once

#include <QUrl>

namespace media {

/// Whether the file is a list that names further files (HLS, DASH, a concat script and their like) instead of
/// holding a film. The tools follow such lists by content, whatever the file is called, so one from a
/// stranger would bring the user's own films into a result. Reads the head of the file, at most 1 MiB.
bool namesOtherFiles(const QUrl &file);

} // namespace media
