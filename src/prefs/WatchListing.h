#pragma once

#include <QList>
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
        quint64 inode = 0; ///< 0 where the volume has none to go by

        bool operator==(const State &) const = default;
    };
    /// A film as its folder lists it, without a look at the film itself.
    struct Entry
    {
        QString path;
        quint64 number = 0;     ///< of the directory entry: another one is another file
        bool isNameUtf8 = true; ///< else no tool can be given the name
    };
    /// Whether a file that has stopped growing is all there.
    enum class Wholeness { Whole, IsBeingWritten, IsShorterThanItSays };

    virtual ~WatchListing() = default;
    /// The folder's path without links; a null text when there is no such folder.
    virtual QString canonicalFolder(const QString &path) const;
    /// The regular files in the folder and its sub-folders that end in one of the (lower-case) extensions.
    /// Hidden files and folders, links, and names of files that are still being downloaded are left out.
    virtual QList<Entry> entries(const QString &folder, const QStringList &extensions) const;
    QStringList movies(const QString &folder, const QStringList &extensions) const;
    virtual State stateOf(const QString &path) const;
    /// Reads a few bytes of its head. "Whole" where neither the system nor the file tells.
    virtual Wholeness wholenessOf(const QString &path) const;
};

} // namespace prefs
