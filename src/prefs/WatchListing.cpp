#include "prefs/WatchListing.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSet>

#include <filesystem>
#include <vector>

using namespace Qt::StringLiterals;

namespace prefs {

namespace {

namespace fs = std::filesystem;

/// The lower-case extension of a name; empty for names without one.
QString extensionOf(const std::string &name)
{
    const auto point = name.rfind('.');
    return point == std::string::npos ? QString() : QString::fromStdString(name.substr(point + 1)).toLower();
}

} // namespace

QString WatchListing::canonicalFolder(const QString &path) const
{
    const QFileInfo info(path);
    return !path.isEmpty() && info.isDir() ? info.canonicalFilePath() : QString();
}

/// Walks by the directory entries alone, without a look at each file: folders can be large. Each folder is
/// read on its own, so that one that vanishes meanwhile takes only its own files along. Files that are still
/// being downloaded end in an extension of their own, so they are no movies; a leading "._" is hidden.
QStringList WatchListing::movies(const QString &folder, const QStringList &extensions) const
{
    const QSet<QString> wanted(extensions.begin(), extensions.end());
    QStringList found;
    std::vector<fs::path> folders{fs::path(folder.toStdString())};
    while (!folders.empty()) {
        std::error_code error;
        fs::directory_iterator entry(folders.back(), error);
        folders.pop_back();
        for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
            const std::string name = entry->path().filename().string();
            std::error_code gone; // files may vanish while we look
            const fs::file_status status = entry->symlink_status(gone);
            if (gone || name.starts_with('.'))
                continue;
            if (fs::is_directory(status))
                folders.push_back(entry->path());
            else if (fs::is_regular_file(status) && wanted.contains(extensionOf(name)))
                found.append(QString::fromStdString(entry->path().string()));
        }
    }
    return found;
}

WatchListing::State WatchListing::stateOf(const QString &path) const
{
    const QFileInfo info(path);
    if (!info.exists())
        return {};
    return {info.size(), info.lastModified().toMSecsSinceEpoch()};
}

} // namespace prefs
