#pragma once

#include "app/OpenQueue.h"
#include "app/OpeningReasons.h"
#include "tools/ShellRunner.h"

#include <QObject>
#include <QSet>

class KXQueueController;
class KXSelectionController;

namespace platform {
class AlertPresenter;
}

namespace app {

class CurrentFile;

/// The single entry of every file that reaches the program. It decides whether a file becomes the current
/// video, is added to it as a track, joins the MKV files to edit, or is refused. Owned by the program.
/// Files are probed while the event loop runs; what comes in meanwhile waits for its turn.
class FileIntake final : public QObject
{
    Q_OBJECT

public:
    /// What the intake works on; all of it outlives it.
    struct Parts
    {
        KXSelectionController &selectionController;
        CurrentFile &currentFile;
        OpenQueue &openQueue;
        KXQueueController &queue;
        platform::AlertPresenter &alerts;
    };
    enum class Alerts { Off, Shown };

    explicit FileIntake(const Parts &parts);

    /// "open", "add", "drag" or "watch"; it stays until the next intake.
    QString openingFileMode() const { return m_openingFileMode; }
    void setOpeningFileMode(const QString &mode) { m_openingFileMode = mode; }
    const QList<QUrl> &openedURLsArray() const { return m_openedURLsArray; }
    const QList<QUrl> &editFilesURLsArray() const { return m_editFilesURLsArray; }
    const QStringList &editFilesPathsArray() const { return m_editFilesPathsArray; }

    /// Takes files in by the opening mode and the tab.
    void openedFileHubForFiles(const QList<QUrl> &files);
    /// "new file added" when the file is the current video now, else an empty text.
    QString testNewFileURLWithAlerts(const QUrl &url, Alerts alerts);
    /// Makes the file the current video; answers like KXVideoFile::initializeForURL(). A file that is
    /// refused leaves what was current as it was.
    QString loadNewFileTracksFromWithAlerts(const QUrl &url, Alerts alerts);
    /// Adds a separate track file to the current video, or says that it can't be added.
    void addFileTrackFrom(const QUrl &url);
    /// Opens a film whose codecs are newer ones, beside what is open.
    void openAnyway(const QUrl &url);
    /// A subtitle that comes back from the subtitle application.
    bool applicationOpenFile(const QString &path);
    /// The answer to whether files with header removal should be rewritten: 1000 queues them.
    void handleHeaderCompressionReturnCode(int returnCode);

    /// While files are probed, or wait because they are held.
    bool isBusy() const { return m_busy || (m_held && !m_waiting.isEmpty()); }
    /// What comes in waits until it is held no longer: the open files are being worked through.
    void setHeld(bool held);
    /// Ends the probing; what was probed until then stays.
    void stopProbing();

    static constexpr int alertMilliseconds = 5000;
    static constexpr int handOverAlertMilliseconds = 10000;

Q_SIGNALS:
    void busyChanged();
    /// How far it is: so many files of so many are done, and this one is being looked at.
    void probing(int done, int total, const QString &fileName);
    /// The first of several films is current, and will be again once all of them are opened.
    void firstFilmOpened();
    /// The current file has other tracks than before.
    void tracksChanged();
    /// Each file that was asked for and not opened; not in watch mode.
    void refused(const app::RefusedFile &file);
    /// Other films have taken the place of those, for which something was chosen by hand.
    void choicesReplaced(const app::OpenFilesBefore &before);
    /// Watch mode's files are in the open queue now and can be started.
    void watchedFilesOpened();
    /// A file that came in through watch mode was refused.
    void watchedFileRefused(const QUrl &url);
    /// A track file beside a film that came in through watch mode can't be added to it.
    void watchedTrackRefused(const QUrl &track);
    /// These came in through watch mode and were not looked at, since probing was stopped.
    void watchedFilesLeft(const QList<QUrl> &files);

private:
    class Busy;

    void takeIn(const QList<QUrl> &files);
    void takeWatchedFiles();
    void addTracksBeside(const QUrl &film);
    void takeVideos();
    void gatherEditFiles(Alerts alerts);
    void askAboutHeaderRemoval();
    /// What to do with a file whose answer is known.
    QString handle(const QUrl &url, const QString &answer, Alerts alerts);
    QString handleReplacing(const QUrl &url, Alerts alerts);
    /// The new video, with the presets applied; false when it was refused.
    bool loadWithPresets(const QUrl &url, Alerts alerts);
    QString modeInForce() const { return m_busy ? m_busyMode : m_openingFileMode; }
    void refuse(const QUrl &url, const QString &text);
    QString reasonToTell(const QUrl &url, const QString &codec) const;
    void passOver(const QUrl &url, const QString &answer);
    void addAnyway(const QUrl &url);
    void showProgress(qsizetype done, const QUrl &url);
    bool isStopped() const { return *m_stop; }
    OpenedFile entryOfCurrent() const;
    void takeNextWaiting();
    void takeHandedOver(const QUrl &url);

    Parts m_parts;
    QString m_openingFileMode = QStringLiteral("open");
    QList<QUrl> m_openedURLsArray;
    QList<QUrl> m_editFilesURLsArray;
    QStringList m_editFilesPathsArray;
    QList<QUrl> m_headerRemovalFiles;
    QSet<QUrl> m_openedAnyway;
    QString m_problemCodec;                           ///< of the film that was refused last
    QList<std::pair<QString, QList<QUrl>>> m_waiting; // mode and files
    QString m_busyMode;
    tools::StopFlag m_stop = std::make_shared<std::atomic_bool>(false);
    bool m_busy = false;
    bool m_held = false;
};

} // namespace app
