#pragma once

#include "engines/join/JoinFile.h"
#include "platform/AlertPresenter.h"

class KXPreferences;

namespace engines {

/// What differs between neighbouring files, each once and in this order: "Frame Rate", "Video Resolution",
/// "Track Count", "Track Types", "Track Codecs".
QStringList mismatchedProperties(const QList<VideoFilePointer> &files);

/// The films among files that were looked at.
QList<VideoFilePointer> filmsIn(const QList<JoinFile> &files);

/// Looks at the files of a join, so many at a time, and serves the event loop until all were seen.
QList<JoinFile> lookedAt(const QList<QUrl> &files, const KXPreferences &preferences, int atOnce);

/// The warning that names them; it closes itself after 15 s.
platform::AlertPointer mismatchAlert(const QStringList &names);

} // namespace engines
