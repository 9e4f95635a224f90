#pragma once

#include "app/OutputJournal.h"
#include "app/WatchLog.h"
#include "platform/KXNotificationCenter.h"
#include "prefs/WatchIntervals.h"

#include <QObject>
#include <QTimer>
#include <QUrl>

#include <memory>

class KXJob;
class KXPresetsController;
class KXQueueController;
class KXSelectionController;
class KXWatchModeController;

namespace app {

class FileIntake;
class JobStarter;
class QueuePause;

/// Watch mode at work: hands what has arrived to the intake, has it started by the presets, one batch after
/// the other, and keeps the log. Owned by the delegate. Which files are ready is the controller's to say.
class WatchSession final : public QObject
{
    Q_OBJECT

public:
    /// All of it outlives the session.
    struct Parts
    {
        KXWatchModeController &watchMode;
        KXPresetsController &presets;
        KXSelectionController &selectionController;
        FileIntake &intake;
        JobStarter &starter;
        KXQueueController &queue;
        KXNotificationCenter &notifications;
        QueuePause &pause;
        QString settingsPath; ///< the journal lies beside it
        int startInterval = prefs::WatchIntervals().start;
    };

    explicit WatchSession(const Parts &parts);
    ~WatchSession() override;

    /// Why watching can't begin; a null text when it can. Whether there is such a folder is seen at the
    /// start.
    QString startRefusal() const;
    /// Begins; false when it could not, and then the log or watchFolderPath() says why.
    bool start();
    void end();
    /// Files that a person or the desktop hands to the program while it watches: films of the folder are
    /// converted, of all others it is told that they can't be opened now.
    void filesRequested(const QStringList &paths);
    const WatchLog &log() const { return m_log; }
    WatchLog &log() { return m_log; }

    /// While films that have arrived are opened or started, or wait for that.
    bool isAtWork() const { return m_active || !m_pending.isEmpty(); }

private:
    void tellWhatIsThere();
    void tellLeftOver();
    void takeNext();
    void startOpened();
    void batchDone();
    void jobAdded(int row);
    void jobChanged(int row);
    void jobDeleted(const KXJob &job);
    void takeQueued();
    void filesFound(const QStringList &paths);
    void note(WatchLog::Kind kind, const QString &text);
    QList<QUrl> takenNow(const QList<QUrl> &films);
    void leftByPresets(const QString &fileName);
    void refusedNow(const QString &reason);
    void refusedByIntake(const QUrl &film);
    void failed(const QUrl &film, const QString &reason);
    void later(const QUrl &film, const QString &reason);
    QString momentaryProblem(const QUrl &film) const;
    QString presetProblem();
    void connectLog();

    Parts m_parts;
    WatchLog m_log;
    OutputJournal m_journal;
    KXNotificationCenter::Subscription m_announced;
    QTimer m_start;
    QList<QList<QUrl>> m_pending;
    QList<QUrl> m_batch; ///< what is being opened and started
    std::weak_ptr<KXJob> m_lastEnded;
    QString m_tracksPreset; ///< by which it is watched
    QString m_settingsPreset;
    bool m_active = false;
    bool m_folderWasMissing = false;
};

} // namespace app
