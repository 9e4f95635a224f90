#pragma once

#include "engines/mkvtoolnix/MkvTrackNumbers.h"
#include "media/KXVideoTrack.h"
#include "tools/OptionItem.h"

#include <QUrl>

class KXSelection;

namespace engines {

// The lists of mkvmerge. Those of process objects hold one argument an item; those that end in
// ShellItems are joined into a line in the shell's background.

/// Writes these tracks, file by file in the order in which files first appear; a track without an
/// mkvmerge number is left out. Where a file's own numbers are known to be others, those are written.
tools::OptionList muxShellItems(const TrackList &tracks, const QUrl &output, const QUrl &log,
                                const QHash<QString, TrackNumbers> &numbersByPath = {});

/// Appends the files to the first one.
tools::OptionList joinArguments(const QList<QUrl> &files, const QUrl &output);
tools::OptionList joinShellItems(const QList<QUrl> &files, const QUrl &output, const QUrl &log);

/// What stands behind "--split": "parts:00:10:00-00:20:00", "700000k", "600s"; null for an unknown type.
QString splitWord(const KXSelection &selection);
tools::OptionList splitArguments(const QString &word, const QUrl &input, const QUrl &output);
/// The option by size is written with two blanks.
tools::OptionList splitShellItems(const KXSelection &selection, const QUrl &input, const QUrl &output,
                                  const QUrl &log);

/// Copies a file with header-removal compression switched off.
tools::OptionList remuxArguments(const QUrl &input, const QUrl &output);
tools::OptionList remuxShellItems(const QUrl &input, const QUrl &output, const QUrl &log);

} // namespace engines
