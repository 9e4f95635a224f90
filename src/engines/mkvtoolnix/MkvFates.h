#pragma once

#include "media/KXVideoTrack.h"
#include "media/TrackFate.h"

class KXSelection;

namespace engines {

// What mkvmerge writes. It takes attachments, covers and chapters of every file that it reads, whichever of
// its tracks are asked for.

/// Tracks put into one file: those of a conversion, or those that a removal keeps.
media::MeantOutput muxOutput(const KXSelection &selection, const TrackList &tracks, const QUrl &output);
/// All of a file.
media::MeantOutput remuxOutput(const QUrl &source, const QUrl &output);
/// Files one behind the other.
media::MeantOutput mkvJoinOutput(const QList<QUrl> &files, const QUrl &output);
/// A split by time is one file; any other has the parts that are there.
QList<media::MeantOutput> splitOutputs(const KXSelection &selection, const QUrl &source,
                                       const QList<QUrl> &outputs);

} // namespace engines
