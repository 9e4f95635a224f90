#pragma once

#include <QString>

#include <memory>

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
    /// can't be written keeps nobody out.
    QString take(const QString &folder);
    void release();

    /// "process 123 on HOST", who watches that very folder; a null text where nobody does.
    static QString watcherOf(const QString &folder);

    static QString fileName() { return QStringLiteral(".tessaray-watcher"); }

private:
    std::unique_ptr<platform::HolderFile> m_holder;
};

} // namespace prefs
