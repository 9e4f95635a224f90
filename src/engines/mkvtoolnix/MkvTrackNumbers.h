#pragma once

#include "media/KXVideoTrack.h"

#include <QHash>

namespace engines {

/// Track numbers of one file: those that our tracks carry, and mkvmerge's own where they differ.
using TrackNumbers = QHash<int, int>;

/// Whether a file's numbers have to be asked for: in MKV and AVI files ours are known to be right.
bool needsIdentification(const QUrl &file);

/// Reads the numbers from mkvmerge's JSON identification: the tracks of a kind stand in the same order in
/// both. A kind of which mkvmerge counts another number of tracks tells nothing.
TrackNumbers trackNumbersIn(const QString &identification, const TrackList &tracksOfFile);

} // namespace engines
