#pragma once

#include "media/KXVideoTrack.h"
#include "media/TrackFate.h"

class KXSelection;

/// What becomes of tracks, for the engines to say.
namespace engines {

/// "video", "audio", "subtitle" or "cover".
QString kindOf(const KXVideoTrack &track);

media::TrackFate copiedTrack(const KXVideoTrack &track, const QUrl &output);
/// The probe's word of what it becomes; absent where that is the tool's to choose.
media::TrackFate reencodedTrack(const KXVideoTrack &track, const QString &to, const QUrl &output);
media::TrackFate burnedTrack(const KXVideoTrack &track, const QUrl &output);
media::TrackFate leftOutTrack(const KXVideoTrack &track, const QString &reason);
/// The tracks of the open files that were not ticked.
QList<media::TrackFate> notChosen(const TrackList &tracks);

// Patterns for the streams that a step does not know by themselves.

media::TrackFate restCopied(const QString &kind);
media::TrackFate restLeftOut(const QString &kind, const QString &reason, const QString &codec = {});
/// Every kind but chapters.
const QStringList &kindsOfStreams();

/// The film, and the added files of the tracks, each once.
QList<QUrl> sourcesOf(const QUrl &film, const TrackList &tracks);

} // namespace engines
