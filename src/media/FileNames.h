#pragma once

#include <QString>
#include <QUrl>

namespace media {

/// The pieces of a media file's path, as file and tracks carry them.
struct FileNames
{
    QString path;
    QString name;      ///< with its extension
    QString extension; ///< as it is written in the name
    QString folder;    ///< the path in front of the first place where the name stands; ends in "/"
};

FileNames fileNamesOf(const QUrl &file);

/// Whether a plain file stands there (or a link to one). Folders, pipes, devices and what the system shows of
/// itself are never probed: a tool would read from them for ever.
bool isRegularFile(const QUrl &file);

/// Writes what a probe printed beside the file that it could not use, as "NAME.error.txt"; an old one is
/// replaced whole. Nothing is written, and nothing said, when that can't be done or when something
/// stands at that name that is not ours to replace: a link, the media file itself, no plain file.
void writeErrorFile(const QUrl &mediaFile, const QString &text);

} // namespace media
