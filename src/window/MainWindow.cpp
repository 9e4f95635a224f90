#include "window/MainWindow.h"

#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "window/ActionBar.h"
#include "window/AreaWalk.h"
#include "window/EditFilesPanel.h"
#include "window/EmptyState.h"
#include "window/FilmHeader.h"
#include "window/Inspector.h"
#include "window/KXDropScrollView.h"
#include "window/Notices.h"
#include "window/OpenFilesList.h"
#include "window/QueueDrawer.h"
#include "window/QueueStrip.h"
#include "window/SeasonPage.h"
#include "window/Sheets.h"
#include "window/StatusLine.h"
#include "window/Thumbnails.h"
#include "window/ToolRow.h"
#include "window/ToolTipBinder.h"
#include "window/TracksPane.h"
#include "window/WatchPopover.h"
#include "window/WindowPlace.h"

#include <QCloseEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace window {

namespace {

enum Page { FilmPage, FilesPage, EmptyPage, AllFilmsPage };

/// The tabs by their names, which the rules compare.
const QStringList &tabNames()
{
    static const QStringList names{u"MKV"_s, u"Edit Files"_s};
    return names;
}

/// A subtitle or a sound, which is added to the film that is open.
bool isAddition(const QList<QUrl> &files)
{
    static const QStringList extensions{u"srt"_s, u"ass"_s, u"ssa"_s, u"ttxt"_s, u"aac"_s, u"ac3"_s,
                                        u"dts"_s, u"mp3"_s, u"mp2"_s, u"ogg"_s,  u"wav"_s, u"flac"_s};
    return files.size() == 1 &&
           extensions.contains(QFileInfo(files.constFirst().toLocalFile()).suffix().toLower());
}

} // namespace

MainWindow::MainWindow(KXAppDelegate &delegate, KXPreferencesController &preferences)
    : m_delegate(delegate)
    , m_tips(new ToolTipBinder(delegate.program().preferences(), this))
    , m_thumbnails(new Thumbnails(this))
{
    setObjectName(u"MainWindow"_s);
    setWindowTitle(u"Tessaray"_s);
    setUnifiedTitleAndToolBarOnMac(true);
    setAcceptDrops(true);
    setMinimumSize(smallestWindow);
    m_drawer = new QueueDrawer(delegate.program().queue(), *m_tips, this);
    m_tools = new ToolRow(tabNames(), *m_tips);
    addToolBar(Qt::TopToolBarArea, m_tools);
    setCentralWidget(content());
    m_notices = new Notices(delegate, *m_bars, this);
    m_sheets = new Sheets({delegate, preferences, *m_tips, *m_notices}, this);
    addDockWidget(Qt::RightDockWidgetArea, m_drawer);
    m_watch = new WatchPopover(delegate, *m_tips, this);
    m_menu = std::make_unique<MainMenu>(*this, delegate, menuCommands());
    connectParts();
    connectAreas();
    m_openFilesWanted = restorePlace(*this, delegate.program().defaults()).showsOpenFiles;
    refresh();
}

MainWindow::~MainWindow() = default;

QWidget *MainWindow::content()
{
    auto *central = new QWidget;
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_bars = new MessageBars(m_delegate.intake());
    m_whileIdle = new QWidget;
    auto *idle = new QVBoxLayout(m_whileIdle);
    idle->setContentsMargins(0, 0, 0, 0);
    idle->setSpacing(0);
    m_pages = new QStackedWidget;
    m_pages->addWidget(filmPage());
    m_editFiles = new EditFilesPanel(m_delegate, *m_thumbnails, *m_tips);
    m_pages->addWidget(m_editFiles);
    m_empty = new EmptyState(u"Drop Video File(s) in the Table Below"_s, true);
    m_pages->addWidget(m_empty);
    m_season = new SeasonPage(m_delegate);
    m_pages->addWidget(m_season);
    m_actions = new ActionBar(m_delegate, *m_tips);
    idle->addWidget(m_pages, 1);
    idle->addWidget(m_actions);
    m_strip = new QueueStrip(m_delegate.program().queue(), m_drawer->model());
    layout->addWidget(m_bars);
    layout->addWidget(m_whileIdle, 1);
    layout->addWidget(m_strip);
    return central;
}

QWidget *MainWindow::filmPage()
{
    auto *page = new QWidget;
    m_film = new QHBoxLayout(page);
    m_film->setContentsMargins(0, 0, 0, 0);
    m_film->setSpacing(0);
    m_openFiles = new OpenFilesList(m_delegate, *m_thumbnails, *m_tips);
    m_header = new FilmHeader(m_delegate, *m_thumbnails, *m_tips);
    m_tracks = new TracksPane(m_delegate, *m_tips);
    m_inspector = new Inspector(m_delegate, *m_tips);
    m_inspectorLine = separatorLine(Qt::Vertical);
    auto *centre = new QVBoxLayout;
    centre->setContentsMargins(space::large, 0, space::large, 0);
    centre->setSpacing(0);
    centre->addWidget(m_header);
    centre->addWidget(m_tracks, 1);
    m_film->addWidget(m_openFiles);
    m_film->addLayout(centre, 1);
    m_film->addWidget(m_inspectorLine);
    m_film->addWidget(m_inspector);
    return page;
}

void MainWindow::connectParts()
{
    app::Program &program = m_delegate.program();
    KXSelectionController &controller = program.selectionController();
    connect(&controller, &KXSelectionController::stateChanged, this, &MainWindow::scheduleRefresh);
    connect(&controller, &KXSelectionController::trackTicksChanged, this, &MainWindow::scheduleRefresh);
    connect(&program.presets(), &KXPresetsController::methodsChanged, this, &MainWindow::scheduleRefresh);
    connect(&program.preferences(), &KXPreferences::toolTipsModified, this, &MainWindow::scheduleRefresh);
    connect(&program.preferences(), &KXPreferences::toolsUnpacked, this, &MainWindow::scheduleRefresh);
    connect(&m_delegate.intake(), &app::FileIntake::busyChanged, this, &MainWindow::scheduleRefresh);
    connect(&m_delegate.intake(), &app::FileIntake::busyChanged, this,
            [this] { m_tracks->setHeld(m_delegate.intake().isBusy()); });
    connect(&m_delegate.intake(), &app::FileIntake::firstFilmOpened, this, &MainWindow::showFirstFilm);
    connect(&m_delegate.intake(), &app::FileIntake::tracksChanged, this, &MainWindow::scheduleRefresh);
    connect(&m_delegate.starter(), &app::JobStarter::finishingChanged, this, &MainWindow::scheduleRefresh);
    connect(&m_delegate.openQueue(), &app::OpenQueue::entriesChanged, this, &MainWindow::scheduleRefresh);
    connect(&m_delegate.openQueue(), &app::OpenQueue::canOpenQueuePopoverChanged, this,
            &MainWindow::scheduleRefresh);
    connect(&m_delegate.openQueue(), &app::OpenQueue::popoverWanted, this, [this](bool open) {
        if (open)
            m_openFilesWanted = true;
        scheduleRefresh();
    });
    connect(&m_delegate.starter(), &app::JobStarter::editingEndWanted, this, [this] {
        if (QWidget *edited = focusWidget())
            edited->clearFocus();
    });
    connect(&m_delegate.starter(), &app::JobStarter::jobQueued, m_drawer, qOverload<>(&QWidget::repaint));
    connect(&m_delegate, &KXAppDelegate::windowWanted, this, [this] {
        if (!isVisible() && m_delegate.program().watchMode().appIsInWatchMode())
            return; // the watch window stands in its place
        show();
        raise();
        activateWindow();
        m_pages->currentIndex() == FilesPage ? m_editFiles->focusTable() : m_tracks->focusTable();
    });
    // Names that jobs have spoken for are not free for the next one.
    for (auto change :
         {&KXQueueController::jobAdded, &KXQueueController::jobChanged, &KXQueueController::jobRemoved})
        connect(&program.queue(), change, this, &MainWindow::scheduleRefresh);
    const auto wantDrawer = [this](bool open) {
        m_drawerWanted = open;
        arrange();
    };
    connect(&program.queue(), &KXQueueController::drawerWanted, this, wantDrawer);
    connect(&program.watchMode(), &KXWatchModeController::drawerWanted, this, wantDrawer);
    connect(&program.watchMode(), &KXWatchModeController::watchModeEnded, this,
            [this, wantDrawer] { wantDrawer(!m_delegate.program().queue().qJobList().isEmpty()); });
    connect(&m_delegate.queueWatch(), &app::QueueWatch::queueEnded, m_strip->line(), &StatusLine::say);
    connect(m_sheets, &Sheets::preferencesChanged, this, &MainWindow::scheduleRefresh);
    connect(m_notices, &Notices::toolsWanted, m_sheets, &Sheets::tools);
    connect(m_notices, &Notices::refusedListWanted, m_sheets, &Sheets::refusedFiles);
    connect(&program.preferences(), &KXPreferences::toolsUnpacked, m_notices, &Notices::tellMissingTools);
}

void MainWindow::connectAreas()
{
    connect(m_tools, &ToolRow::openWanted, &m_delegate, [this] { m_delegate.openFilePanel(u"Open"_s); });
    connect(m_tools, &ToolRow::tabChosen, this, &MainWindow::showTab);
    connect(m_tools, &ToolRow::watchWanted, this, &MainWindow::showWatchPopover);
    connect(m_tools, &ToolRow::preferencesWanted, m_sheets, &Sheets::preferences);
    connect(m_tools, &ToolRow::openFilesWanted, this, [this](bool shown) {
        m_openFilesWanted = shown;
        arrange();
    });
    connect(m_empty, &EmptyState::openWanted, &m_delegate, [this] { m_delegate.openFilePanel(u"Open"_s); });
    connect(m_empty, &EmptyState::editFilesWanted, this, [this] { showTab(1); });
    connect(m_empty, &EmptyState::watchWanted, this, &MainWindow::showWatchPopover);
    connect(m_openFiles, &OpenFilesList::seasonWanted, this, [this] { showSeason(true); });
    connect(m_season, &SeasonPage::closeWanted, this, [this] { showSeason(false); });
    connect(m_season, &SeasonPage::filmChosen, this, [this](int row) {
        m_delegate.openQueue().select(row);
        showSeason(false);
    });
    connect(m_tracks, &TracksPane::presetsSheetWanted, m_sheets, &Sheets::trackPresets);
    connect(m_inspector, &Inspector::presetsSheetWanted, m_sheets, &Sheets::settingsPresets);
    connect(m_inspector, &Inspector::startWanted, this, &MainWindow::start);
    connect(m_editFiles, &EditFilesPanel::startWanted, this, &MainWindow::start);
    connect(m_actions, &ActionBar::convertWanted, this, [this] { start(u"Convert"_s); });
    connect(m_actions, &ActionBar::commandsWanted, m_sheets, &Sheets::commands);
    connect(m_actions, &ActionBar::folderWanted, m_sheets, &Sheets::chooseSaveFolder);
    connect(m_actions, &ActionBar::noFolderWanted, m_sheets, &Sheets::clearSaveFolder);
    connect(m_actions, &ActionBar::filmWanted, &m_delegate.openQueue(), &app::OpenQueue::select);
    connect(m_actions, &ActionBar::nameChosen, this, &MainWindow::scheduleRefresh);
    connect(m_strip, &QueueStrip::pauseWanted, m_drawer, &QueueDrawer::togglePause);
    connect(m_strip, &QueueStrip::listWanted, this, [this] { m_drawer->setVisible(!m_drawer->isVisible()); });
    connect(m_drawer, &QueueDrawer::changed, m_strip, &QueueStrip::refresh);
    connect(m_drawer, &QueueDrawer::cleared, m_notices, &Notices::tellCleared);
    connect(m_drawer, &QueueDrawer::refused, m_notices,
            [this](const QString &reason) { m_notices->say(MessageBar::Kind::Warning, reason); });
    connect(m_drawer, &QueueDrawer::detailsWanted, m_sheets, &Sheets::details);
    for (KXDropScrollView *table : {m_tracks->table(), m_editFiles->table()}) {
        connect(table, &KXDropScrollView::dragged, this, &MainWindow::showDrag);
        connect(table, &KXDropScrollView::dragLeft, this, &MainWindow::endDrag);
    }
}

void MainWindow::start(const QString &title)
{
    m_delegate.starter().startProcess(title);
}

void MainWindow::showTab(int index)
{
    m_notices->changeTab(tabNames().value(index));
}

/// The sheet of all films takes the place of the current one; it needs two of them.
void MainWindow::showSeason(bool shown)
{
    const bool wasShown = std::exchange(m_wantsSeason, shown);
    refresh();
    if (m_pages->currentIndex() == AllFilmsPage)
        m_season->open();
    else if (wasShown)
        m_tracks->focusTable();
}

/// One update of the rules announces many changes; they are shown at once.
void MainWindow::scheduleRefresh()
{
    if (m_refreshScheduled)
        return;
    m_refreshScheduled = true;
    QMetaObject::invokeMethod(this, &MainWindow::refresh, Qt::QueuedConnection);
}

MainMenu::Commands MainWindow::menuCommands()
{
    MainMenu::Commands commands;
    commands.openPreferences = [this] { m_sheets->preferences(); };
    commands.editTrackPresets = [this] { m_sheets->trackPresets(); };
    commands.editSettingsPresets = [this] { m_sheets->settingsPresets(); };
    commands.convert = [this] {
        if (m_pages->currentIndex() != FilesPage)
            m_actions->convert()->click();
    };
    commands.pauseOrResume = [this] { m_drawer->togglePause(); };
    commands.clearJobs = [this] { m_drawer->clear(); };
    commands.deleteSelectedJob = [this] { m_drawer->deleteSelected(); };
    commands.season = [this] { showSeason(m_pages->currentIndex() != AllFilmsPage); };
    commands.watchFolder = [this] { showWatchPopover(); };
    commands.showTab = [this](int index) { showTab(index); };
    commands.nextFilm = [this](int by) {
        const app::OpenQueue &queue = m_delegate.openQueue();
        m_delegate.openQueue().select(queue.selectedRow() + by);
    };
    commands.nextArea = [this](bool forward) {
        walkAreas({m_tools, m_bars, m_openFiles, m_tracks, m_season, m_empty, m_editFiles, m_inspector,
                   m_actions, m_drawer, m_strip},
                  focusWidget(), forward);
    };
    commands.quit = [this] { Q_EMIT quitWanted(); };
    return commands;
}

void MainWindow::showWatchPopover()
{
    m_watch->showBelow(m_tools->watchButton());
}

void MainWindow::refresh()
{
    m_refreshScheduled = false;
    const bool isIdle = !m_delegate.intake().isBusy() && !m_delegate.starter().isFinishing();
    m_whileIdle->setEnabled(isIdle);
    m_tools->setIdle(isIdle);
    m_menu->setIdle(isIdle);
    if (!m_delegate.intake().isBusy()) // then one film after the other is current
        showCurrent();
    arrange();
}

/// While the others are still being opened.
void MainWindow::showFirstFilm()
{
    m_tracks->setHeld(false);
    showCurrent();
    m_tracks->setHeld(true);
}

void MainWindow::showCurrent()
{
    const KXSelectionController &controller = m_delegate.program().selectionController();
    const bool isIdle = m_whileIdle->isEnabled();
    const int tab = std::max(0, static_cast<int>(tabNames().indexOf(controller.currentTab())));
    const bool isOpen = !controller.currentVideoFile()->trackList().isEmpty();
    m_tools->showTab(tab);
    m_wantsSeason = m_wantsSeason && isOpen && tab == 0 && m_delegate.openQueue().canOpenQueuePopover();
    const int page = tab == 1 ? FilesPage : m_wantsSeason ? AllFilmsPage : isOpen ? FilmPage : EmptyPage;
    if (page != m_pages->currentIndex()) {
        m_pages->setCurrentIndex(page);
        if (page == EmptyPage)
            m_empty->focusOpen();
    }
    m_thumbnails->setTool(m_delegate.program().preferences().urlOfApp(u"ffmpeg"_s).toLocalFile());
    setWindowTitle(isOpen && tab == 0 ? controller.currentVideoFile()->theFileName() + u" – Tessaray"_s
                                      : u"Tessaray"_s);
    m_menu->setCanAdd(isIdle && controller.canAddTrack() && tab == 0);
    m_menu->setToolTipsTitle(m_delegate.program().preferences().toolTipsMenuItemTitle());
    refreshFilm();
    m_editFiles->refresh();
    m_actions->refresh();
    m_watch->refresh();
}

void MainWindow::refreshFilm()
{
    m_header->refresh();
    m_tracks->refresh();
    m_inspector->refresh();
    m_openFiles->refreshStates();
}

/// Areas change only where the rules say so, all at once.
void MainWindow::arrange()
{
    const Arrangement wanted = arrangementFor(size(), m_drawerWanted);
    setUpdatesEnabled(false);
    const bool full = m_drawerWanted && !wanted.drawerIsStrip;
    if (m_drawerWanted != m_drawer->isVisibleTo(this) || m_arrangement.drawerIsStrip != wanted.drawerIsStrip)
        m_drawer->setVisible(full);
    m_strip->setVisible(m_drawerWanted && wanted.drawerIsStrip);
    m_header->setCompact(wanted.isCompact);
    m_tracks->setShape(wanted.allColumns, wanted.shortWords, wanted.isCompact);
    m_actions->setShape(wanted.isCompact, wanted.shortWords);
    m_tools->setShortWords(width() < 900);
    if (wanted.inspectorIsPage != m_arrangement.inspectorIsPage) {
        if (wanted.inspectorIsPage) {
            m_inspector->setMinimumWidth(0);
            m_inspector->setMaximumWidth(QWIDGETSIZE_MAX);
            m_tracks->setPage(m_inspector);
        } else {
            m_tracks->setPage(nullptr);
            m_film->addWidget(m_inspector);
            m_inspector->show();
        }
    }
    if (!wanted.inspectorIsPage)
        m_inspector->setFixedWidth(wanted.inspectorWidth);
    m_inspectorLine->setVisible(!wanted.inspectorIsPage);
    m_arrangement = wanted;
    showOpenFiles();
    setUpdatesEnabled(true);
}

void MainWindow::showOpenFiles()
{
    const bool can = m_delegate.openQueue().canOpenQueuePopover();
    const bool hasRoom = m_arrangement.openFiles != Arrangement::OpenFiles::Hidden;
    m_openFiles->setRail(m_arrangement.openFiles != Arrangement::OpenFiles::List);
    // Where there is no room beside the tracks it is shown only when it is asked for.
    m_openFiles->setVisible(can && m_openFilesWanted && hasRoom);
    m_tools->setOpenFiles(can && m_whileIdle->isEnabled() && m_pages->currentIndex() == FilmPage,
                          m_openFiles->isVisibleTo(this), m_delegate.openQueue().openFileCount());
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    arrange();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->ignore(); // it closes when the program may end
    rememberPlace(*this, {m_openFilesWanted}, m_delegate.program().defaults());
    Q_EMIT quitWanted();
}

/// A click that no control took: editing ends, and the settings preset is left.
void MainWindow::mousePressEvent(QMouseEvent *event)
{
    QMainWindow::mousePressEvent(event);
    if (QWidget *edited = focusWidget())
        edited->clearFocus();
    m_delegate.program().selectionController().deselectAllTrackRows();
    if (m_whileIdle->isEnabled())
        m_delegate.program().selectionController().guiClickedTrap();
}

void MainWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Escape || !m_bars->closeTopmost())
        QMainWindow::keyPressEvent(event);
}

void MainWindow::showDrag(const QList<QUrl> &files)
{
    const KXSelectionController &controller = m_delegate.program().selectionController();
    const bool isOpen = !controller.currentVideoFile()->trackList().isEmpty();
    const QString name = controller.currentVideoFile()->theFileName();
    const QString words = files.isEmpty()               ? tr("Folders can’t be opened")
                          : isOpen && isAddition(files) ? tr("Drop to add · to %1").arg(name)
                          : m_delegate.openQueue().openFileCount() > 0
                              ? tr("Drop to open · replaces the Open Files list")
                              : tr("Drop to open");
    m_empty->showDrag(words);
    m_tracks->table()->showDrag(words);
    m_editFiles->table()->showDrag(files.isEmpty() ? words : tr("Drop to list"));
}

void MainWindow::endDrag()
{
    m_empty->showDrag({});
    m_tracks->table()->showDrag({});
    m_editFiles->table()->showDrag({});
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    showDrag(KXDropScrollView::filesIn(event->mimeData()));
    if (!KXDropScrollView::takes(event->mimeData()) || !m_whileIdle->isEnabled())
        return event->ignore();
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void MainWindow::dragLeaveEvent(QDragLeaveEvent *event)
{
    QMainWindow::dragLeaveEvent(event);
    endDrag();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    endDrag();
    event->setDropAction(Qt::CopyAction);
    event->accept();
    m_delegate.filesDropped(KXDropScrollView::filesIn(event->mimeData()));
}

} // namespace window
