#pragma once

#include "media/TrackFate.h"

#include <QByteArray>
#include <QHash>

namespace media {

/// A stream of a source as ffprobe tells it, or its chapters: where those are a stream too (MP4's titles),
/// they stand here once, with its index.
struct SourceStream
{
    int index = -1;
    QString kind;  ///< as in TrackFate
    QString codec; ///< absent where the probe has no word
    bool operator==(const SourceStream &) const = default;
};
using SourceStreams = QList<SourceStream>;

/// The streams of a source that has chapters or has none.
SourceStreams withChapters(const SourceStreams &streams, bool hasChapters);
/// Of the JSON that ffprobe prints with -show_streams and -show_chapters. None for anything else.
SourceStreams sourceStreamsIn(const QByteArray &json);

/// The same output with a fate for every stream of its sources: those that it does not name yet get theirs by
/// its patterns, and where none fits they were not chosen. A source that is not among the keys adds none.
MeantOutput completed(const MeantOutput &meant, const QHash<QUrl, SourceStreams> &sources);

} // namespace media
