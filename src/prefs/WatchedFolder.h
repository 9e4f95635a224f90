#pragma once

#include <QString>

#include <memory>
#include <vector>

namespace platform {
class HolderFile;
}

namespace prefs {

/// Keeps a folder to one watcher, across programs and machines, by a file in it. A folder inside a watched
/// one or around one counts as watched too. Owned by the watch-mode controller.
class WatchedFolder final
{
public:
    WatchedFolder();
    ~WatchedFolder();
    Q_DISABLE_COPY_MOVE(WatchedFolder)

    /// A null text when it is ours from now on; else which folder is watched, and by whom. A folder that
    /// can't be written keeps nobody out. Another folder may stand at the path that was taken before: that is
    /// taken too, and the first one is ours still when it is back.
    QString take(const QString &folder);
    void release();

    /// "process 123 on HOST", who watches that very folder; a null text where nobody does.
    static QString watcherOf(const QString &folder);

    static QString fileName() { return QStringLiteral(".tessaray-watcher"); }

private:
    void setAside();
    bool isBack(const QString &folder);

    static constexpr size_t mostAside = 8;

    std::unique_ptr<platform::HolderFile> m_holder;
    QString m_folder;
    std::vector<std::unique_ptr<platform::HolderFile>> m_aside; ///< of folders that stood at the path before
};

} // namespace prefs
