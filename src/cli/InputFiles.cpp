#include "cli/InputFiles.h"

#include "cli/Session.h"
#include "prefs/KXWatchModeController.h"
#include "prefs/WatchListing.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

/// Where a file of a folder has its result; empty where that is beside it.
QUrl mirroredFolder(const QString &root, const QString &path, const QString &saveDir)
{
    if (saveDir.isEmpty())
        return {};
    const QString below = QDir(root).relativeFilePath(QFileInfo(path).absolutePath());
    return QUrl::fromLocalFile(QDir::cleanPath(saveDir + u'/' + below));
}

QList<InputFile> filesBelow(const QString &root, const QString &saveDir, const QStringList &extensions)
{
    QStringList paths = prefs::WatchListing().movies(root, extensions);
    paths.sort();
    QList<InputFile> files;
    for (const QString &path : paths)
        files.append({path, true, mirroredFolder(root, path, saveDir)});
    return files;
}

} // namespace

QList<InputFile> inputFiles(Session &session, QString &problem)
{
    const CommandLine &line = session.line();
    const QString saveDir = session.program().preferences().saveDirectoryURL().toLocalFile();
    QList<InputFile> files;
    for (const QString &argument : line.arguments()) {
        const QString path = absolutePath(argument);
        if (!QFileInfo(path).isDir()) {
            files.append({path, false, {}});
        } else if (!line.has(u"recursive"_s)) {
            problem = u"%1 is a folder: --recursive takes the films in it."_s.arg(path);
            return {};
        } else {
            files += filesBelow(path, saveDir, session.program().watchMode().movieExtensionsList());
        }
    }
    if (line.has(u"output"_s) && (files.size() != 1 || files.constFirst().isFound))
        problem = u"--output names the result of one film; %1 are given."_s.arg(files.size());
    return files;
}

} // namespace cli
