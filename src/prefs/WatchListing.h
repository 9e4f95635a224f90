#pragma once

#include <QStringList>

namespace prefs {

/// What a watched folder holds, and how large its files are. A test hands in one of its own.
class WatchListing
{
public:
    /// Size in bytes and the time of the last change; a size of -1 means that the file can't be looked at.
    struct State
    {
        qint64 size = -1;
        qint64 changed = 0;

        bool operator==(const State &) const = default;
    };

    virtual ~WatchListing() = default;
    /// The folder's path without links; a null text when there is no such folder.
    virtual QString canonicalFolder(const QString &path) const;
    /// The regular files in the folder and its sub-folders that end in one of the (lower-case) extensions.
    /// Hidden files and folders, links, and names of files that are still being downloaded are left out.
    virtual QStringList movies(const QString &folder, const QStringList &extensions) const;
    virtual State stateOf(const QString &path) const;
};

} // namespace prefs
