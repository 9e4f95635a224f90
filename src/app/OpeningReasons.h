#pragma once

#include <QString>
#include <QUrl>

namespace app {

/// A file that was asked for and not opened, and why.
struct RefusedFile
{
    QUrl url;
    QString reason;            ///< a few words: "no permission to read it"
    bool opensNewerly = false; ///< with the newer codecs it can be opened
};

/// Why a file can't be opened, by a look at the file itself and by the codec that was not identified (empty
/// where that was not the matter).
QString reasonNotToOpen(const QUrl &file, const QString &problemCodec);

} // namespace app
