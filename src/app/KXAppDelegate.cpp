#include "app/KXAppDelegate.h"

#include "app/Program.h"
#include "platform/Chooser.h"
#include "platform/Desktop.h"

#include <QFileInfo>
#include <QPointer>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

const QString tipsKey = u"showToolTipsFlag"_s;
const QString whenDoneKey = u"whenQueueIsDone"_s;

/// A stored index counts only where it lies in the list as it is now.
int indexIn(const QVariant &stored, qsizetype count)
{
    const int index = stored.toInt();
    return index >= 0 && index < count ? index : 0;
}

bool isSubtitleFile(const QString &path)
{
    static const QStringList extensions{u"srt"_s, u"ass"_s, u"ssa"_s, u"ttxt"_s,
                                        u"idx"_s, u"sub"_s, u"sup"_s};
    return extensions.contains(QFileInfo(path).suffix().toLower());
}

} // namespace

KXAppDelegate::KXAppDelegate(const Surroundings &surroundings)
    : m_around(surroundings)
    , m_files(surroundings.program, surroundings.alerts)
    , m_infoWriter(surroundings.program.preferences())
    , m_queueWatch(surroundings.program.queue(), surroundings.desktop)
    , m_storedQueue(surroundings.program.queueFolder(), surroundings.program.queue())
{
    connect(&program().selectionController(), &KXSelectionController::stateChanged, this,
            &KXAppDelegate::fileTextFieldChanged);
    connect(&program().preferences(), &KXPreferences::storeMended, this, &KXAppDelegate::noteWorthy);
    connect(&m_storedQueue, &jobs::StoredQueue::failed, this, &KXAppDelegate::noteWorthy);
    connect(&m_queueWatch, &app::QueueWatch::queueEnded, this, &KXAppDelegate::queueEnded);
    program().queuePause().followRoom();
    connect(&program().queuePause(), &app::QueuePause::roomIsShort, this, &KXAppDelegate::noteWorthy);
    connect(&program().queue(), &KXQueueController::pauseReasonChanged, this, &KXAppDelegate::sayPause);
    connect(&starter(), &app::JobStarter::finishingChanged, this,
            [this] { m_queueWatch.expectMore(starter().isFinishing()); });
}

KXAppDelegate::~KXAppDelegate() = default;

void KXAppDelegate::applicationDidFinishLaunching()
{
    m_hasLaunched = true;
    program().preferences().modifyToolTips();
    initGuiSettingsFrom(program().preferences().guiSettingsDictionary());
    program().selectionController().updateTabs();
}

QString KXAppDelegate::fileTextField() const
{
    return m_around.program.selectionController().currentFileText();
}

QVariantMap KXAppDelegate::createGuiSettingsDictionary() const
{
    app::Program &program = m_around.program;
    return {{u"settingMethodIndex"_s, program.presets().settingMethodIndexToStore()},
            {u"selectionMethodIndex"_s, program.presets().selectionMethodIndexToStore()},
            {u"currentTab"_s, program.selectionController().currentTab()}};
}

/// The tab comes first, because another tab leaves the settings preset.
void KXAppDelegate::initGuiSettingsFrom(const QVariantMap &settings)
{
    const QString tab = settings.value(u"currentTab"_s).toString();
    // "Edit Tracks" is meant, though the tab bears another name.
    const bool known = !tab.isEmpty() && tab != u"Edit Tracks"_s;
    program().selectionController().setCurrentTab(known ? tab : u"MKV"_s);
    KXPresetsController &presets = program().presets();
    presets.setSelectionMethodIndex(
        indexIn(settings.value(u"selectionMethodIndex"_s), presets.presetSelectionsNamesList().size()));
    presets.setSettingMethodIndex(
        indexIn(settings.value(u"settingMethodIndex"_s), presets.presetSettingsNamesList().size()));
}

QString KXAppDelegate::restoreQueue()
{
    const QString problem = m_storedQueue.open();
    connect(&program().queue(), &KXQueueController::jobAdded, this, &KXAppDelegate::sayIfHeld);
    sayIfHeld();
    return problem;
}

void KXAppDelegate::sayIfHeld()
{
    if (program().queue().isHeld())
        Q_EMIT noteWorthy(tr("The queue waits. Press Resume to start it."));
}

void KXAppDelegate::sayPause(const QString &reason)
{
    if (!reason.isNull())
        Q_EMIT noteWorthy(tr("Paused: %1 Resume lets the job go on.").arg(reason));
}

/// A watched folder is never done.
void KXAppDelegate::queueEnded()
{
    const QString wanted = whenQueueIsDone();
    if (program().watchMode().appIsInWatchMode() || intake().isBusy())
        return;
    if (wanted == u"sleep"_s) {
        Q_EMIT noteWorthy(tr("The queue is done: the machine goes to sleep."));
        m_around.desktop.sleep();
    } else if (wanted == u"quit"_s) {
        // From the event loop: the job that has ended last is still telling of it.
        QMetaObject::invokeMethod(this, &KXAppDelegate::quitWhenDone, Qt::QueuedConnection);
    }
}

void KXAppDelegate::quitWhenDone()
{
    if (!program().queue().qJobIsRunning() && applicationShouldTerminate())
        Q_EMIT terminationAllowed();
}

bool KXAppDelegate::applicationShouldTerminate()
{
    intake().stopProbing();
    if (m_askingToQuit)
        return false;
    KXQueueController &queue = program().queue();
    if (!isAtWork())
        return mayQuitUnsaved();
    queue.pauseQueueButton(u"Pause"_s);
    platform::Alert question;
    question.message = u"Videos are still being processed.  Quit anyways?"_s; // two blanks are meant
    question.buttons = {u"OK"_s, u"Cancel"_s};
    ask(question, &KXAppDelegate::quitAnswered);
    return false;
}

/// While a folder is watched also between two jobs, and while films are on their way into the queue: nobody
/// sees there what the moment is.
bool KXAppDelegate::isAtWork()
{
    const KXQueueController &queue = program().queue();
    return queue.qJobIsRunning() ||
           (program().watchMode().appIsInWatchMode() &&
            (queue.isAtWork() || starter().isFinishing() || watchSession().isAtWork()));
}

void KXAppDelegate::ask(const platform::Alert &question, void (KXAppDelegate::*answered)(int))
{
    m_askingToQuit = true;
    m_around.alerts.show(std::make_shared<const platform::Alert>(question),
                         [self = QPointer(this), answered](int returnCode) {
                             if (!self)
                                 return;
                             self->m_askingToQuit = false;
                             (self->*answered)(returnCode);
                         });
}

/// After "Cancel" the job stays paused: meant. What waits is stored before the list is emptied.
void KXAppDelegate::quitAnswered(int returnCode)
{
    if (returnCode == platform::firstButtonReturn && mayQuitUnsaved())
        Q_EMIT terminationAllowed();
}

/// Asks where something would be lost.
bool KXAppDelegate::mayQuitUnsaved()
{
    QStringList problems{m_storedQueue.store(), rememberAndSave()};
    problems.removeAll(QString());
    if (problems.isEmpty()) {
        leaveQueue();
        return true;
    }
    platform::Alert question;
    question.message = u"Not everything could be saved."_s;
    question.informativeText = problems.join(u' ');
    question.style = platform::AlertStyle::Warning;
    question.buttons = {u"Quit Anyway"_s, u"Cancel"_s};
    ask(question, &KXAppDelegate::unsavedAnswered);
    return false;
}

void KXAppDelegate::unsavedAnswered(int returnCode)
{
    if (returnCode != platform::firstButtonReturn)
        return;
    leaveQueue();
    Q_EMIT terminationAllowed();
}

void KXAppDelegate::leaveQueue()
{
    m_storedQueue.close();
    if (program().queue().qJobIsRunning())
        program().queue().removeAllJobs();
}

void KXAppDelegate::applicationWillTerminate()
{
    if (!m_hasLaunched)
        return; // nothing was read that could be stored
    const QSignalBlocker nobodyCanBeTold(this);
    intake().stopProbing();
    m_storedQueue.store();
    leaveQueue();
    rememberAndSave();
}

QString KXAppDelegate::rememberAndSave()
{
    program().preferences().setGuiSettingsDictionary(createGuiSettingsDictionary());
    return program().preferences().savePreferencesToDefaults();
}

void KXAppDelegate::openFilePanel(const QString &title)
{
    const bool adds = title.toLower().startsWith(u"add"_s);
    intake().setOpeningFileMode(adds ? u"add"_s : u"open"_s);
    openFilePanelContinued();
}

void KXAppDelegate::openFilePanelContinued()
{
    using platform::ChooserRequest;
    const QString mode = intake().openingFileMode();
    const bool one = mode == u"add"_s;
    const ChooserRequest request{u"Select video file to open:"_s,
                                 one ? ChooserRequest::What::OneFile : ChooserRequest::What::Files,
                                 {}};
    m_around.chooser.choose(request, [self = QPointer(this), mode](const QList<QUrl> &chosen) {
        if (!self)
            return;
        self->intake().setOpeningFileMode(mode); // other files may have come in while the panel was open
        self->takeInLater(chosen);
    });
}

/// After a moment, so that a panel or a drag is gone before files are probed.
void KXAppDelegate::takeInLater(const QList<QUrl> &files)
{
    QTimer::singleShot(hubMilliseconds, this, [this, files, mode = intake().openingFileMode()] {
        intake().setOpeningFileMode(mode);
        intake().openedFileHubForFiles(files);
    });
    Q_EMIT windowWanted();
}

void KXAppDelegate::filesDropped(const QList<QUrl> &files)
{
    intake().setOpeningFileMode(u"drag"_s);
    takeInLater(files);
}

void KXAppDelegate::filesRequested(const QStringList &paths)
{
    if (program().watchMode().appIsInWatchMode()) {
        watchSession().filesRequested(paths);
        Q_EMIT windowWanted();
        return;
    }
    QList<QUrl> films;
    for (const QString &path : paths) {
        if (isSubtitleFile(path))
            intake().applicationOpenFile(path);
        else
            films.append(QUrl::fromLocalFile(path));
    }
    intake().setOpeningFileMode(u"open"_s);
    if (!films.isEmpty())
        takeInLater(films);
    else
        Q_EMIT windowWanted();
}

void KXAppDelegate::helpMenuItemSelected(const QString &title)
{
    if (title == u"Online Guide"_s)
        Q_EMIT documentWanted(u"guide"_s);
    else if (title == u"Online Troubleshooting"_s)
        Q_EMIT documentWanted(u"troubleshooting"_s);
    else if (title == u"Show Tool Tips"_s || title == u"Hide Tool Tips"_s)
        switchToolTips(title == u"Show Tool Tips"_s);
    else if (title == u"Save File Info"_s)
        saveFileInfo();
}

void KXAppDelegate::switchToolTips(bool shown)
{
    storePanelValue(tipsKey, shown);
    program().preferences().modifyToolTips();
}

void KXAppDelegate::storePanelValue(const QString &key, const QVariant &value)
{
    KXPreferences &preferences = program().preferences();
    QVariantMap panel = preferences.preferencePanelDictionary();
    panel.insert(key, value);
    preferences.setPreferencePanelDictionary(panel);
    const QString problem = preferences.savePreferencesToDefaults();
    if (!problem.isNull())
        Q_EMIT noteWorthy(problem);
}

void KXAppDelegate::setWhenQueueIsDone(const QString &word)
{
    storePanelValue(whenDoneKey, word);
}

QString KXAppDelegate::whenQueueIsDone() const
{
    return m_around.program.preferences().panelValue(whenDoneKey).toString();
}

/// The tab that gathers files is compared with a name it does not bear: meant, and so what came in last is
/// written, which there are the gathered files too.
void KXAppDelegate::saveFileInfo()
{
    const bool gathered = program().selectionController().currentTab() == u"Edit Tracks"_s;
    const QList<QUrl> files = gathered ? intake().editFilesURLsArray() : intake().openedURLsArray();
    const QString problem = m_infoWriter.write(files);
    if (!problem.isNull())
        Q_EMIT noteWorthy(problem);
    else if (!files.isEmpty())
        Q_EMIT noteWorthy(
            tr("File info saved: %1").arg(m_infoWriter.infoFileFor(files.constFirst()).toLocalFile()));
}

void KXAppDelegate::chooseWatchFolder()
{
    program().watchMode().chooseWatchFolderURL(m_around.chooser);
}

QString KXAppDelegate::playingRefusal() const
{
    app::Program &program = m_around.program;
    const QUrl player = program.queue().urlOfApp(u"mplayer"_s);
    return QFileInfo(player.toLocalFile()).isExecutable()
               ? QString()
               : tr("mplayer is not installed, so nothing can be played.");
}

void KXAppDelegate::playButton()
{
    Q_EMIT starter().editingEndWanted();
    program().selectionController().deselectAllTrackRows();
    program().playMovie(program().selectionController().currentSelection());
}
