#pragma once

#include <QByteArray>
#include <QUrl>

#include <optional>

namespace platform {

/// What stands at a name itself: a link is not followed.
struct FileId
{
    quint64 device = 0;
    quint64 inode = 0;
    bool isPlain = false; ///< no link, folder, pipe or device

    bool isSameAs(const FileId &other) const { return device == other.device && inode == other.inode; }
};

/// Nothing where the name is free.
std::optional<FileId> fileAt(const QUrl &location);

// None of these ever writes through a link.

/// Writes a new file. Nothing, and no file, where anything stands at that name or it can't be written whole.
std::optional<FileId> createFile(const QUrl &location, const QByteArray &content);
/// Appends to that very file; false where another one, or none, stands at its name by now.
bool appendToFile(const QUrl &location, const FileId &file, const QByteArray &bytes);
/// Writes the file whole beside its name and puts it there. False, and nothing changed, where that fails or
/// where something else than a plain file stands.
bool replacePlainFile(const QUrl &location, const QByteArray &content);
/// Copies a plain file to a free name; false where there is none or the name is not free.
std::optional<FileId> copyPlainFile(const QUrl &from, const QUrl &to);
/// Makes a symbolic link; false where the name is taken.
bool makeLink(const QUrl &to, const QUrl &name);
/// Gives a file another name of its volume; false where that is taken.
bool renameToFreeName(const QUrl &from, const QUrl &to);
/// The same, over what stands there.
bool renameOver(const QUrl &from, const QUrl &to);
/// Takes a name away; a link goes itself.
bool removeName(const QUrl &location);

/// Makes a folder that only its owner may look into; group and access list are inherited as for any other.
/// False where the name is taken or can't be made.
bool makePrivateFolder(const QUrl &location);
/// Takes a folder away with all that is in it; links in it go themselves. What is not a folder stays. The
/// file of that name goes last, so that a removal that is cut short can be told from a folder of nobody.
void removeFolder(const QUrl &location, const QString &last = {});
/// The same for one that holds nothing; false where it does.
bool removeEmptyFolder(const QUrl &location);
/// Waits until the file's bytes are on the disk; false when they can't be brought there.
bool flushToDisk(const QUrl &location);
/// The same for the names in a folder. Some volumes can't do that, so it answers nothing.
void flushFolder(const QUrl &location);

/// How many bytes a name in that folder may have.
qsizetype longestNameIn(const QString &folder);
/// Whether a file of that name could not be made, as the name is too long for its folder.
bool isTooLongName(const QUrl &location);

} // namespace platform
