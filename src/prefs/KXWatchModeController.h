#pragma once

#include "platform/Fields.h"
#include "prefs/WatchIntervals.h"
#include "prefs/WatchedFiles.h"

#include <QObject>
#include <QTimer>

#include <memory>

class KXPreferences;

namespace platform {
class Chooser;
}

/// Watches one folder: tells new movies from old ones, waits until each has stopped growing, and says which
/// are ready. Owned by the program; the queue looks down at it and tells it the outputs that are written. It
/// opens no file and starts no job. Main thread only.
class KXWatchModeController final : public QObject
{
    Q_OBJECT
    KX_FIELD(bool, appIsInWatchMode, setAppIsInWatchMode, false)
    /// What the watch window shows as the folder: its path, or why it can't be watched.
    KX_FIELD(QString, watchFolderPath, setWatchFolderPath, {})
    KX_FIELD(QUrl, watchFolderURL, setWatchFolderURL, {})
    /// In lower case.
    KX_FIELD(QStringList, movieExtensionsList, setMovieExtensionsList, movieExtensions())
    /// Present when watching began, already handed over, or written by ourselves.
    Q_PROPERTY(
        QList<QUrl> baseWatchFolderMovieList READ baseWatchFolderMovieList WRITE setBaseWatchFolderMovieList)
    /// Files that may still grow: {"fileURL", "oldSize": bytes as text}.
    Q_PROPERTY(QVariantList monitorWatchFolderMovieList READ monitorWatchFolderMovieList)

public:
    /// Without preferences there is no folder to watch. They must outlive the controller.
    explicit KXWatchModeController(KXPreferences *preferences = nullptr,
                                   const prefs::WatchIntervals &intervals = {});
    ~KXWatchModeController() override;

    /// Another view of the folder, for tests.
    void setListing(std::unique_ptr<prefs::WatchListing> listing) { m_listing = std::move(listing); }

    void chooseWatchFolderURL(platform::Chooser &chooser);
    /// False when the folder can't be watched; watchFolderPath() then says so.
    bool startWatchMode();
    void endWatchMode();
    /// One look at the folder; the timer calls it.
    void watchLoop();
    QList<QUrl> makeMovieListForWatchFolderURL(const QUrl &folder) const;

    QList<QUrl> baseWatchFolderMovieList() const;
    void setBaseWatchFolderMovieList(const QList<QUrl> &files);
    QVariantList monitorWatchFolderMovieList() const;

    /// An output that a job writes, whether or not watch mode is on: never a new movie.
    void outputAnnounced(const QUrl &output);
    /// A file that was handed over could not be opened; it is looked at again when it has changed.
    void fileRefused(const QUrl &file);

    static constexpr int fadeMilliseconds = 100;

Q_SIGNALS:
    void filesReady(const QList<QUrl> &files);
    void drawerWanted(bool open);
    /// The watch window takes the place of the main window, or the other way round.
    void windowsSwapped(bool watching);
    /// Some time after that: watch mode is over.
    void watchModeEnded();
    void folderChanged();
    // For the log.
    void filesFound(const QStringList &paths);
    void folderMissing();
    void fileGivenUp(const QString &path);
    void fileForgotten(const QString &path);

private:
    static QStringList movieExtensions();
    void delayedToggleWindows();
    void delayedOpenDrawer();
    void lookAt(const QStringList &current);
    void forgetVanished(const QStringList &current);
    void takeFinished();
    void watchNew(const QStringList &files);
    void watchChangedAgain();

    KXPreferences *m_preferences;
    std::unique_ptr<prefs::WatchListing> m_listing;
    prefs::WatchedFiles m_files;
    QStringList m_toProcess;
    QTimer m_watchTimer;
    QTimer m_toggleTimer;
    QTimer m_drawerTimer;
    QString m_folder; ///< without links
};
