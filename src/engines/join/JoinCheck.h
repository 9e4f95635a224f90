#pragma once

#include "media/KXVideoFile.h"
#include "platform/AlertPresenter.h"

namespace engines {

/// What differs between neighbouring files, each once and in this order: "Frame Rate", "Video Resolution",
/// "Track Count", "Track Types", "Track Codecs".
QStringList mismatchedProperties(const QList<VideoFilePointer> &files);

/// Probes the files for that, so many at a time; those that can't be probed are left out. Serves the event
/// loop meanwhile; a set flag ends it.
QList<VideoFilePointer> probedForJoining(const QList<QUrl> &files, const tools::ToolPlaces &places,
                                         const tools::StopFlag &stop, int atOnce);

/// The warning that names them; it closes itself after 15 s.
platform::AlertPointer mismatchAlert(const QStringList &names);

} // namespace engines
