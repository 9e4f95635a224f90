#pragma once

#include "media/CodecVocabulary.h"
#include "media/KXVideoTrack.h"

#include <QUrl>
#include <QVariantList>

namespace media {

/// What a separate file gives: its tracks (more than one can't be added), or a refusal and no track.
struct AddedTracks
{
    TrackList tracks;
    QString refusal; ///< "video track", "too many tracks", "track not identified" or "not a video"
    /// What the error file beside it says behind a probe; null where the refusal says it all.
    QString complaint = {};
    /// The codec that was not identified; null where all were.
    QString problemCodec = {};
};

/// The track that a file with these streams holds, or why it holds none that can be added.
AddedTracks addedTracksIn(const QVariantList &streams, const QUrl &url,
                          Codecs codecs = Codecs::OfVocabulary);

/// What a file with these streams is good for while another one is open: "replace file", "add file" or "not a
/// video file".
QString useOf(const QVariantList &streams, const QUrl &url);

} // namespace media
