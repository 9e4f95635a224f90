#include "cli/FileJobs.h"

#include "platform/OrdinaryFile.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace cli {

jobs::JobRequest requestForFiles(jobs::JobKind kind, const QStringList &paths)
{
    const auto selection = std::make_shared<KXSelection>();
    selection->initialize();
    const QFileInfo first(paths.value(0));
    selection->setVideoTrackFilePath(paths.value(0));
    selection->setVideoTrackFileURL(QUrl::fromLocalFile(paths.value(0)));
    selection->setVideoTrackFileName(first.fileName());
    selection->setVideoTrackFileShortName(first.completeBaseName());
    selection->setVideoTrackFileExtension(first.suffix());
    QList<QUrl> files;
    for (const QString &path : paths)
        files.append(QUrl::fromLocalFile(path));
    selection->setEditFilesURLsList(files);
    return jobs::requestFor(kind, selection);
}

QString refusalOfFile(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return u"There is no such file."_s;
    if (!platform::isOrdinaryFile(path))
        return u"It is no ordinary file."_s;
    return info.isReadable() ? QString() : u"It can't be read."_s;
}

} // namespace cli
