#pragma once

#include <QString>

namespace prefs {

/// How a watched folder is doing, by what lies in it: for programs that look from outside. Nothing is
/// written.
struct WatchStatus
{
    QString folder;  ///< without links
    QString watcher; ///< "process 123 on HOST"; null where nobody watches
    // Films that are there.
    int waiting = 0; ///< still to be converted, or being converted
    int refused = 0; ///< could not be opened as they are
    int known = 0;   ///< was there before, or is done
    int outputs = 0; ///< written by us

    bool isWatched() const { return !watcher.isNull(); }
    /// "FOLDER: watched by process 123 on HOST; 2 waiting, 1 refused, 40 known, 38 outputs."
    QString sentence() const;
};

/// The other folder is where journals lie of folders that can't be written.
WatchStatus watchStatusOf(const QString &folder, const QString &otherFolder);

} // namespace prefs
