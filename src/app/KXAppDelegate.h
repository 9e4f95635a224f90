#pragma once

#include "app/FileInfoWriter.h"
#include "app/FileWork.h"
#include "app/QueueWatch.h"
#include "jobs/StoredQueue.h"

#include <QObject>
#include <QVariantMap>

namespace platform {
class Chooser;
class Desktop;
class Workspace;
} // namespace platform

namespace app {
class Program;
}

/// What the window program is without its widgets: it starts and ends it, keeps what the main window
/// remembers, and carries out the commands of menus and buttons. Made once, with a program that it does not
/// own; intake, open files and starting are parts of its own. A window shows its properties and calls it.
class KXAppDelegate final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString fileTextField READ fileTextField NOTIFY fileTextFieldChanged)

public:
    /// All of it outlives the delegate.
    struct Surroundings
    {
        app::Program &program;
        platform::AlertPresenter &alerts;
        platform::Chooser &chooser;
        platform::Desktop &desktop;
    };

    explicit KXAppDelegate(const Surroundings &surroundings);
    ~KXAppDelegate() override;

    app::Program &program() { return m_around.program; }
    app::FileIntake &intake() { return m_files.intake(); }
    app::OpenQueue &openQueue() { return m_files.openQueue(); }
    app::JobStarter &starter() { return m_files.starter(); }
    app::QueueWatch &queueWatch() { return m_queueWatch; }
    app::WatchSession &watchSession() { return m_files.watchSession(); }

    /// After the program was initialised: tool tips, and tab and presets as they were.
    void applicationDidFinishLaunching();
    /// Shows the jobs that an earlier run of the program left, and stores those that are added from now on.
    /// After applicationDidFinishLaunching(). A null text, or what was the matter with them, for the user.
    QString restoreQueue();
    /// True when the program may end now. With a running job, or with something that can't be saved, it asks,
    /// and terminationAllowed() follows when the answer is yes; otherwise the job stays paused.
    bool applicationShouldTerminate();
    /// On every way out that is noticed, with or without a display and with no more questions: what must be
    /// there at the next start is stored, and the running job is stopped.
    void applicationWillTerminate();

    /// What is remembered until the next start, see initGuiSettingsFrom().
    QVariantMap createGuiSettingsDictionary() const;
    void initGuiSettingsFrom(const QVariantMap &settings);

    QString fileTextField() const;
    /// "Open..." and "Add..." of menus and buttons, told apart by their title.
    void openFilePanel(const QString &title);
    void openFilePanelContinued();
    /// Files that were dropped on the window.
    void filesDropped(const QList<QUrl> &files);
    /// Files that came with the command line, from the desktop or from a second start. While a folder is
    /// watched the watch takes them, or says why it does not.
    void filesRequested(const QStringList &paths);
    /// The items of the help menu, told apart by their titles.
    void helpMenuItemSelected(const QString &title);
    void playButton();
    /// "nothing", "sleep" or "quit"; stored at once.
    void setWhenQueueIsDone(const QString &word);
    QString whenQueueIsDone() const;
    void chooseWatchFolder();
    /// Null when films can be shown, else why not.
    QString playingRefusal() const;

    static constexpr int hubMilliseconds = 100;

Q_SIGNALS:
    void terminationAllowed();
    void fileTextFieldChanged();
    /// A document for users is to be opened in the browser: "guide" or "troubleshooting".
    void documentWanted(const QString &name);
    /// The main window should come to the front, with its tables ready for the keyboard.
    void windowWanted();
    /// A sentence for the line at the bottom of the window.
    void noteWorthy(const QString &sentence);

private:
    void quitAnswered(int returnCode);
    QString rememberAndSave();
    bool isAtWork();
    bool mayQuitUnsaved();
    void ask(const platform::Alert &question, void (KXAppDelegate::*answered)(int));
    void unsavedAnswered(int returnCode);
    void leaveQueue();
    void sayIfHeld();
    void queueEnded();
    void quitWhenDone();
    void sayPause(const QString &reason);
    void takeInLater(const QList<QUrl> &files);
    void switchToolTips(bool shown);
    void storePanelValue(const QString &key, const QVariant &value);
    void saveFileInfo();

    Surroundings m_around;
    app::FileWork m_files;
    app::FileInfoWriter m_infoWriter;
    app::QueueWatch m_queueWatch;
    jobs::StoredQueue m_storedQueue;
    bool m_askingToQuit = false;
    bool m_hasLaunched = false;
};
