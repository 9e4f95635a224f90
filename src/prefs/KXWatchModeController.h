#pragma once

#include "platform/Fields.h"
#include "prefs/WatchIntervals.h"
#include "prefs/WatchJournal.h"
#include "prefs/WatchedFiles.h"
#include "prefs/WatchedFolder.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

class KXPreferences;

namespace platform {
class Chooser;
}

/// Watches one folder: tells new movies from old ones, waits until each is whole, and says which are ready.
/// What is known stands in a journal on disk, so that neither an end of the program nor an empty or missing
/// folder forgets it. Owned by the program; the queue looks down at it and tells it the outputs that are
/// written. It starts no job. Main thread only.
class KXWatchModeController final : public QObject
{
    Q_OBJECT
    KX_FIELD(bool, appIsInWatchMode, setAppIsInWatchMode, false)
    /// What the watch window shows as the folder: its path, or why it can't be watched.
    KX_FIELD(QString, watchFolderPath, setWatchFolderPath, {})
    KX_FIELD(QUrl, watchFolderURL, setWatchFolderURL, {})
    /// In lower case.
    KX_FIELD(QStringList, movieExtensionsList, setMovieExtensionsList, movieExtensions())
    /// Those of the last look that are not to be processed: present when watching began, handed over, written
    /// by ourselves.
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
    /// Milliseconds from anywhere on; the system's own where none is set.
    void setClock(std::function<qint64()> clock) { m_clock = std::move(clock); }
    /// Where the journal of a folder lies that can't be written.
    void setDataFolder(const QString &folder) { m_dataFolder = folder; }
    /// Films that the journal does not know at the start are processed too, as with the setting for it.
    void setTakesExisting(bool takes) { m_takesExisting = takes; }
    /// False where the journal of the watched folder lies elsewhere, or nowhere.
    bool isJournalInFolder() const { return m_journal.isInFolder(); }

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
    /// A file that was handed over could not be opened; it is looked at again when it has changed, and at the
    /// next start.
    void fileRefused(const QUrl &file);
    /// A file that was handed over is done with, however that went. Until then it waits, also for the next
    /// start.
    void fileDone(const QUrl &file);
    /// A file that was handed over was not begun with: it waits for the next start of the watch.
    void fileGivenBack(const QUrl &file) { m_handedOver.remove(file.toLocalFile()); }
    /// A job for a file waits in the queue already, from an earlier run of the program: it counts as handed
    /// over.
    void fileIsQueued(const QUrl &file);
    /// A person wants that file of the folder, also where it is known. False where it is none of its films.
    bool fileWanted(const QUrl &file);
    /// A file that was handed over could not be processed now; it is handed over again, later each time.
    /// Answers how often that was so.
    int fileLater(const QUrl &file);

    static constexpr int fadeMilliseconds = 100;

Q_SIGNALS:
    void filesReady(const QList<QUrl> &files);
    void drawerWanted(bool open);
    /// The watch window takes the place of the main window, or the other way round.
    void windowsSwapped(bool watching);
    /// Some time after that: watch mode is over.
    void watchModeEnded();
    void folderChanged();
    /// A look at the folder is over, which is there or not.
    void looked(bool isThere);
    // For the log.
    void filesFound(const QStringList &paths);
    void folderMissing();
    void fileGivenUp(const QString &path);
    void fileForgotten(const QString &path);
    /// It has stopped growing and is still being written, or is shorter than it says itself.
    void fileNotWhole(const QString &path);
    /// It has stopped growing without a content.
    void fileEmpty(const QString &path);
    /// Another folder stands at the watched place, and somebody else watches that: a sentence.
    void folderTaken(const QString &sentence);
    /// Its name is not UTF-8, so that no tool can open it.
    void nameNotReadable(const QString &path);

private:
    using Film = prefs::WatchJournal::Film;
    using Entry = prefs::WatchListing::Entry;
    struct Later
    {
        qint64 notBefore = 0;
        int attempts = 0;
    };

    static QStringList movieExtensions();
    void delayedToggleWindows();
    void delayedOpenDrawer();
    QString startProblem();
    bool isStillOurs();
    void takeWhatIsThere();
    void lookAt(const QList<Entry> &current);
    bool isKnown(const Entry &entry);
    bool isKnownByItself(const Entry &entry);
    bool isLookedAtNow(const QString &path) const;
    void forgetVanished(const QSet<QString> &growingThere);
    void takeFinished();
    bool isTakenAsWhole(prefs::WatchedFiles::Growing &file);
    void handOver(const QString &path);
    void watchNew(const QStringList &files);
    Film filmAt(const QString &path) const;

    KXPreferences *m_preferences;
    std::unique_ptr<prefs::WatchListing> m_listing;
    std::function<qint64()> m_clock;
    QString m_dataFolder;
    bool m_takesExisting = false;
    prefs::WatchedFolder m_watcher;
    prefs::WatchJournal m_journal;
    prefs::WatchedFiles m_files;
    /// A known file, as the listing told of it.
    struct Seen
    {
        quint64 number = 0; ///< of its directory entry
        quint32 look = 0;   ///< at which it was there the last time
    };
    QHash<QString, Seen> m_seen;
    QHash<QString, Film> m_handedOver;
    QHash<QString, Later> m_later;
    QSet<QString> m_wanted;
    QSet<QString> m_toldNames;
    quint32 m_look = 0; ///< how many there were since the start
    QStringList m_toProcess;
    QTimer m_watchTimer;
    QTimer m_toggleTimer;
    QTimer m_drawerTimer;
    QString m_folder; ///< without links
    quint64 m_folderInode = 0;
    bool m_isOurs = true;
};
