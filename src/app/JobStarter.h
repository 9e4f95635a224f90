#pragma once

#include <QObject>
#include <QTimer>
#include <QUrl>

class KXPreferences;
class KXPresetsController;
class KXQueueController;
class KXSelectionController;

namespace platform {
class AlertPresenter;
}

namespace app {

class CurrentFile;
class OpenQueue;

/// A film that did not become a job, and why.
struct LeftFilm
{
    QString fileName;
    QString reason;
};

/// Turns the press of a start button into jobs: for the current file and for the opened files that wait
/// behind it. Owned by the program. It decides the job's type and asks whether the save folder can be
/// written; what the job then does is the queue's business.
class JobStarter final : public QObject
{
    Q_OBJECT

public:
    /// What starting works on; all of it outlives the starter.
    struct Parts
    {
        KXPreferences &preferences;
        KXSelectionController &selectionController;
        KXPresetsController &presets;
        CurrentFile &currentFile;
        OpenQueue &openQueue;
        KXQueueController &queue;
        platform::AlertPresenter &alerts;
    };

    explicit JobStarter(const Parts &parts);

    /// The start button with that title was pressed.
    void startProcess(const QString &title);
    /// The same kind of job for each opened file; run after startProcess() by itself.
    void finishStartProcess(const QString &jobType);
    /// The Go button of the track editing: extracts, removes or adds, as it is chosen.
    void startTrackEditing();
    /// Why that button can do nothing; a null text when it can.
    QString trackEditingRefusal() const;
    /// Whether the folder for that film's results can be written.
    bool takesResultsOf(const QUrl &film) const;
    /// Starting goes on after a moment; until then nothing else may start.
    bool isFinishing() const { return m_finish.isActive(); }

    static constexpr int finishMilliseconds = 400;
    static constexpr int alertMilliseconds = 10000;

Q_SIGNALS:
    /// A text field that is being edited should give its value now.
    void editingEndWanted();
    void finishingChanged();
    /// Another opened file became a job.
    void jobQueued();
    /// An opened file did not become a job: nothing of it can be converted as it is.
    void notStarted(const QString &fileName);
    /// All that did not become jobs, of one press of the button.
    void filmsLeft(const QList<app::LeftFilm> &films);
    /// Nothing was started at all.
    void refused(const QString &reason);

private:
    QUrl source() const;
    bool saveFolderIsWritable();
    void startEditingFiles(const QString &title);
    void startFile(const QString &title);
    void startCurrent(const QString &jobType);
    bool mayStart(const QString &jobType) const;
    bool queueEntry(int row, const QString &jobType);
    void leave(const QString &jobType);
    void tellWhatIsLeft();

    Parts m_parts;
    QTimer m_finish;
    QString m_finishJobType;
    QList<LeftFilm> m_left;
};

} // namespace app
