#include "media/FileNames.h"

#include "platform/FileIdentity.h"
#include "platform/OrdinaryFile.h"
#include "platform/PlainFiles.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace media {

namespace {

bool mayReplace(const QUrl &errorFile, const QUrl &mediaFile)
{
    const QFileInfo info(errorFile.toLocalFile());
    if (info.isSymLink() || platform::isSameFile(errorFile, mediaFile))
        return false;
    return info.isFile() || !info.exists();
}

} // namespace

FileNames fileNamesOf(const QUrl &file)
{
    FileNames names;
    names.path = file.toLocalFile();
    const QFileInfo info(names.path);
    names.name = info.fileName();
    names.extension = info.suffix();
    names.folder = names.path.left(names.path.indexOf(names.name));
    return names;
}

bool isRegularFile(const QUrl &file)
{
    return file.isLocalFile() && platform::isOrdinaryFile(file.toLocalFile());
}

void writeErrorFile(const QUrl &mediaFile, const QString &text)
{
    const QString path = mediaFile.toLocalFile() + u".error.txt"_s;
    if (text.isNull() || !isRegularFile(mediaFile) || !mayReplace(QUrl::fromLocalFile(path), mediaFile))
        return;
    platform::replacePlainFile(QUrl::fromLocalFile(path), text.toUtf8());
}

} // namespace media
