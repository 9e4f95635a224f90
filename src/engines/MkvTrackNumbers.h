#pragma once

#include "media/KXVideoTrack.h"
#include "tools/OptionItem.h"

#include <QHash>

namespace engines {

/// Track numbers of one file: those that our tracks carry, and mkvmerge's own where they differ.
using TrackNumbers = QHash<QString, QString>;

/// Whether a file's numbers have to be asked for: in MKV and AVI files ours are known to be right.
bool needsIdentification(const QUrl &file);

/// Reads the numbers from mkvmerge's JSON identification: the tracks of a kind stand in the same order in
/// both. A kind of which mkvmerge counts another number of tracks tells nothing.
TrackNumbers trackNumbersIn(const QString &identification, const TrackList &tracksOfFile);

/// The launch form of a mux list: by file, the numbers that mkvmerge itself gives.
tools::OptionList withTrackNumbers(const tools::OptionList &meant,
                                   const QHash<QString, TrackNumbers> &numbersByPath);

} // namespace engines
