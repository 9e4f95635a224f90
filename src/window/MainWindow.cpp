#include "window/MainWindow.h"

#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "prefs/KXPreferencesController.h"
#include "window/AudioBox.h"
#include "window/Controls.h"
#include "window/EditFilesPanel.h"
#include "window/EditTracksBox.h"
#include "window/FilePart.h"
#include "window/MainMenu.h"
#include "window/PreferencesPanel.h"
#include "window/PresetSelectionsSheet.h"
#include "window/PresetSettingsSheet.h"
#include "window/PresetsRow.h"
#include "window/ProbingRow.h"
#include "window/QueueDrawer.h"
#include "window/StatusLine.h"
#include "window/SubtitleBox.h"
#include "window/ToolTipBinder.h"
#include "window/VideoBox.h"
#include "window/WatchRow.h"

#include <QCloseEvent>
#include <QDesktopServices>
#include <QDir>
#include <QGridLayout>
#include <QPushButton>
#include <QStackedWidget>
#include <QStatusBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace window {

namespace {

/// The tabs by their names, which the rules compare.
const QStringList &tabNames()
{
    static const QStringList names{u"MKV"_s, u"Edit Files"_s};
    return names;
}

} // namespace

MainWindow::MainWindow(KXAppDelegate &delegate, KXPreferencesController &preferences)
    : m_delegate(delegate)
    , m_preferences(preferences)
    , m_tips(new ToolTipBinder(delegate.program().preferences(), this))
{
    setObjectName(u"MainWindow"_s);
    setWindowTitle(u"Tessaray"_s);
    setUnifiedTitleAndToolBarOnMac(true);
    setCentralWidget(content());
    m_drawer = new QueueDrawer(delegate.program().queue(), *m_tips, this);
    addDockWidget(Qt::RightDockWidgetArea, m_drawer);
    m_status = new StatusLine(delegate.program().queue());
    statusBar()->setContentsMargins(6, 0, 6, 0);
    statusBar()->addWidget(m_status, 1);
    statusBar()->setSizeGripEnabled(false);
    m_menu = std::make_unique<MainMenu>(*this, delegate, menuCommands());
    connectParts();
    resize(980, 720);
    refresh();
}

MainWindow::~MainWindow() = default;

QWidget *MainWindow::content()
{
    auto *central = new QWidget;
    central->setMinimumWidth(720); // the drawer makes the window wider instead
    auto *layout = new QVBoxLayout(central);
    m_probing = new ProbingRow(m_delegate.intake());
    layout->addWidget(m_probing);
    m_whileIdle = new QWidget;
    layout->addWidget(m_whileIdle, 1);
    auto *idle = new QVBoxLayout(m_whileIdle);
    idle->setContentsMargins(0, 0, 0, 0);
    m_filePart = new FilePart(m_delegate, *m_tips);
    idle->addWidget(m_filePart, 1);
    m_tabs = named(new QTabBar, "Tabs", tr("What to do"));
    m_tabs->setDocumentMode(true);
    m_tabs->setExpanding(false);
    for (const QString &name : tabNames())
        m_tabs->addTab(name);
    idle->addWidget(m_tabs);
    m_pages = new QStackedWidget;
    m_pages->addWidget(conversionPage());
    m_editFiles = new EditFilesPanel(m_delegate.program().selectionController(),
                                     m_delegate.program().notifications(), *m_tips);
    m_pages->addWidget(m_editFiles);
    m_pages->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    idle->addWidget(m_pages);
    return central;
}

QWidget *MainWindow::conversionPage()
{
    KXSelectionController &controller = m_delegate.program().selectionController();
    auto *page = new QWidget;
    auto *layout = new QGridLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *presets = new PresetsRow(m_delegate.program().presets(), *m_tips);
    connect(presets, &PresetsRow::selectionsSheetWanted, this, &MainWindow::openSelectionsSheet);
    connect(presets, &PresetsRow::settingsSheetWanted, this, &MainWindow::openSettingsSheet);
    m_video = new VideoBox(controller, *m_tips);
    m_audio = new AudioBox(controller, *m_tips);
    m_subtitles = new SubtitleBox(controller, *m_tips);
    m_editTracks = new EditTracksBox(controller, m_delegate.starter(), *m_tips);
    m_watch = new WatchRow(m_delegate, *m_tips);
    layout->addWidget(presets, 0, 0, 1, 3);
    layout->addWidget(m_watch, 3, 0, 1, 3);
    layout->addWidget(m_video, 1, 0);
    layout->addWidget(m_audio, 1, 1);
    layout->addWidget(m_subtitles, 1, 2);
    layout->addWidget(m_editTracks, 2, 0, 1, 2);
    layout->addWidget(startRow(), 2, 2, Qt::AlignBottom);
    layout->setColumnStretch(0, 5);
    layout->setColumnStretch(1, 5);
    layout->setColumnStretch(2, 3);
    return page;
}

QWidget *MainWindow::startRow()
{
    m_convert = named(new QPushButton(tr("Convert")), "ConvertButton", tr("Start converting"));
    m_convert->setDefault(true);
    QFont font = m_convert->font();
    font.setBold(true);
    m_convert->setFont(font);
    m_convert->setMinimumHeight(m_convert->sizeHint().height() * 5 / 4);
    m_tips->bind(m_convert, "ttConvertButton");
    connect(m_convert, &QPushButton::clicked, this, [this] { start(u"Convert"_s); });
    auto *row = new QWidget;
    auto *layout = new QVBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addStretch(1);
    layout->addWidget(m_convert);
    return row;
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
    connect(&m_delegate.starter(), &app::JobStarter::finishingChanged, this, &MainWindow::scheduleRefresh);
    connect(&m_delegate.starter(), &app::JobStarter::editingEndWanted, this, [this] {
        if (QWidget *edited = focusWidget())
            edited->clearFocus();
    });
    connect(&m_delegate.starter(), &app::JobStarter::jobQueued, m_drawer, qOverload<>(&QWidget::repaint));
    connect(m_tabs, &QTabBar::currentChanged, this, &MainWindow::showTab);
    connect(m_editFiles, &EditFilesPanel::startWanted, this, &MainWindow::start);
    connect(m_subtitles, &SubtitleBox::startWanted, this, &MainWindow::start);
    connect(&m_delegate, &KXAppDelegate::noteWorthy, m_status, &StatusLine::say);
    connect(&m_delegate, &KXAppDelegate::documentWanted, this, &MainWindow::openDocument);
    connect(&m_delegate, &KXAppDelegate::windowWanted, this, [this] {
        show();
        raise();
        activateWindow();
        m_filePart->focusTable();
    });
    connect(&program.watchMode(), &KXWatchModeController::drawerWanted, m_drawer, &QWidget::setVisible);
    connect(&program.watchMode(), &KXWatchModeController::watchModeEnded, m_drawer,
            [this] { m_drawer->setVisible(!m_delegate.program().queue().qJobList().isEmpty()); });
    connect(&m_delegate.queueWatch(), &app::QueueWatch::queueEnded, m_status, &StatusLine::say);
    connect(&m_preferences, &KXPreferencesController::panelWanted, this, [this](bool open) {
        if (open)
            openPreferences();
    });
}

void MainWindow::start(const QString &title)
{
    m_delegate.starter().startProcess(title);
}

void MainWindow::showTab(int index)
{
    m_delegate.program().selectionController().setCurrentTab(tabNames().value(index));
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
    commands.openPreferences = [this] { m_preferences.openPreferencesPanel(); };
    commands.editTrackPresets = [this] { openSelectionsSheet(); };
    commands.editSettingsPresets = [this] { openSettingsSheet(); };
    commands.convert = [this] {
        if (m_pages->currentIndex() == 0)
            m_convert->click();
    };
    commands.pauseOrResume = [this] { m_drawer->togglePause(); };
    commands.deleteSelectedJob = [this] { m_drawer->deleteSelected(); };
    commands.quit = [this] { Q_EMIT quitWanted(); };
    return commands;
}

void MainWindow::openDocument(const QString &name)
{
    const QUrl folder = m_delegate.program().preferences().resourcesLocation();
    const QString path = QDir(folder.toLocalFile()).filePath(u"docs/%1.html"_s.arg(name));
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        m_status->say(tr("No browser could open %1.").arg(path));
}

void MainWindow::openSelectionsSheet()
{
    auto *sheet = new PresetSelectionsSheet(m_delegate.program().presets(), *m_tips, this);
    sheet->open();
}

void MainWindow::openSettingsSheet()
{
    auto *sheet = new PresetSettingsSheet(m_delegate.program().presets(), *m_tips, this);
    sheet->open();
}

void MainWindow::openPreferences()
{
    auto *panel = new PreferencesPanel(m_preferences, m_delegate.program().preferences(), *m_tips, this);
    panel->open();
}

void MainWindow::refresh()
{
    m_refreshScheduled = false;
    const KXSelectionController &controller = m_delegate.program().selectionController();
    m_whileIdle->setEnabled(!m_delegate.intake().isBusy() && !m_delegate.starter().isFinishing());
    m_menu->setIdle(m_whileIdle->isEnabled());
    const int tab = std::max(0, static_cast<int>(tabNames().indexOf(controller.currentTab())));
    const QSignalBlocker quiet(m_tabs);
    m_tabs->setCurrentIndex(tab);
    m_pages->setCurrentIndex(tab);
    m_filePart->refresh();
    m_video->refresh();
    m_audio->refresh();
    m_subtitles->setSendingRefusal(sendingRefusal());
    m_editTracks->refresh();
    m_watch->refresh();
    m_editFiles->refresh();
    m_menu->setCanAdd(m_whileIdle->isEnabled() && controller.canAddTrack() && tab == 0);
    m_menu->setToolTipsTitle(m_delegate.program().preferences().toolTipsMenuItemTitle());
    refreshConvertButton();
}

void MainWindow::refreshConvertButton()
{
    const KXSelectionController &controller = m_delegate.program().selectionController();
    const bool extracts = app::jobTypeFor(m_delegate.program().presets()) == u"MKV Track Extraction"_s;
    const bool can = extracts ? controller.canEditTracks() : controller.canConvert();
    const bool several = m_delegate.openQueue().openFileCount() >= 2; // another one may be convertible
    m_convert->setEnabled(can || several);
    QString reason;
    if (!can && !several)
        reason = extracts ? tr("The preset extracts tracks: open an MKV file and tick some.")
                          : tr("Open a video and tick exactly one video track.");
    m_tips->setReason(m_convert, reason);
}

QString MainWindow::sendingRefusal() const
{
    const QString path = m_delegate.program().preferences().panelValue(u"lintwickPath"_s).toString();
    return path.isEmpty() ? tr("The preferences don't say where Lintwick is.") : QString();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->ignore(); // it closes when the program may end
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

} // namespace window
