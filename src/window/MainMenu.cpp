#include "window/MainMenu.h"

#include "app/KXAppDelegate.h"
#include "app/Program.h"

#include <QAbstractButton>
#include <QActionGroup>
#include <QMainWindow>
#include <QMenuBar>
#include <QMessageBox>

using namespace Qt::StringLiterals;

namespace window {

MainMenu::MainMenu(QMainWindow &window, KXAppDelegate &delegate, const Commands &commands)
    : m_window(window)
    , m_delegate(delegate)
    , m_commands(commands)
{
    addFileMenu();
    addTrackMenu();
    addPresetsMenu();
    addQueueMenu();
    addHelpMenu();
}

void MainMenu::setIdle(bool idle)
{
    for (QMenu *menu : std::as_const(m_idleMenus))
        menu->menuAction()->setEnabled(idle);
}

void MainMenu::setCanAdd(bool can)
{
    m_add->setEnabled(can);
}

void MainMenu::setToolTipsTitle(const QString &title)
{
    m_toolTips->setText(title);
}

QMenu *MainMenu::addMenu(const QString &title)
{
    return m_window.menuBar()->addMenu(title);
}

QAction *MainMenu::addCommand(QMenu *menu, const QString &text, const QKeySequence &keys,
                              const std::function<void()> &run)
{
    QAction *action = menu->addAction(text);
    action->setShortcut(keys);
    action->setMenuRole(QAction::NoRole);
    QObject::connect(action, &QAction::triggered, &m_window, run);
    return action;
}

void MainMenu::addFileMenu()
{
    QMenu *menu = addMenu(tr("&File"));
    addCommand(menu, tr("&Open…"), QKeySequence::Open, [this] { m_delegate.openFilePanel(u"Open"_s); });
    m_add = addCommand(menu, tr("&Add Tracks…"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O),
                       [this] { m_delegate.openFilePanel(u"Add"_s); });
    addCommand(menu, tr("Save File &Info"), QKeySequence(Qt::CTRL | Qt::Key_I),
               [this] { m_delegate.helpMenuItemSelected(u"Save File Info"_s); });
    menu->addSeparator();
    addWindowCommands();
    menu->addSeparator();
    QAction *preferences = addCommand(menu, tr("&Preferences…"), QKeySequence(Qt::CTRL | Qt::Key_Comma),
                                      m_commands.openPreferences);
    preferences->setMenuRole(QAction::PreferencesRole);
    menu->addSeparator();
    addCommand(menu, tr("&Close Window"), QKeySequence::Close, [this] { m_window.close(); });
    QAction *quit = addCommand(menu, tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), m_commands.quit);
    quit->setMenuRole(QAction::QuitRole);
}

/// Where the window goes: also what it draws as tabs, lists and areas.
void MainMenu::addWindowCommands()
{
    QMenu *menu = m_window.menuBar()->actions().constFirst()->menu();
    addCommand(menu, tr("&MKV"), QKeySequence(Qt::CTRL | Qt::Key_1), [this] { m_commands.showTab(0); });
    addCommand(menu, tr("&Edit Files"), QKeySequence(Qt::CTRL | Qt::Key_2),
               [this] { m_commands.showTab(1); });
    addCommand(menu, tr("&Watch Folder…"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_W),
               m_commands.watchFolder);
    addCommand(menu, tr("P&revious Film"), QKeySequence(Qt::CTRL | Qt::Key_PageUp),
               [this] { m_commands.nextFilm(-1); });
    addCommand(menu, tr("&Next Film"), QKeySequence(Qt::CTRL | Qt::Key_PageDown),
               [this] { m_commands.nextFilm(1); });
    addCommand(menu, tr("&Season"), QKeySequence(Qt::Key_F8), m_commands.season);
    addCommand(menu, tr("Next Ar&ea"), QKeySequence(Qt::Key_F6), [this] { m_commands.nextArea(true); });
    addCommand(menu, tr("Previous Are&a"), QKeySequence(Qt::SHIFT | Qt::Key_F6),
               [this] { m_commands.nextArea(false); });
}

void MainMenu::addTrackMenu()
{
    KXSelectionController &controller = m_delegate.program().selectionController();
    QMenu *menu = addMenu(tr("&Tracks"));
    m_idleMenus.append(menu);
    const auto press = [this](const char *button) {
        if (auto *control = m_window.findChild<QAbstractButton *>(QString::fromLatin1(button)))
            control->click(); // off where the button is off
    };
    addCommand(menu, tr("Tick All &Video"), {}, [&controller] { controller.toggleAllVideo(); });
    addCommand(menu, tr("Tick All &Audio"), {}, [&controller] { controller.toggleAllAudio(); });
    addCommand(menu, tr("Tick All &Subtitles"), {}, [&controller] { controller.toggleAllSubtitle(); });
    menu->addSeparator();
    addCommand(menu, tr("&Play"), QKeySequence(Qt::CTRL | Qt::Key_P), [press] { press("PlayButton"); });
    addCommand(menu, tr("S&end"), {}, [press] { press("SendButton"); });
    addCommand(menu, tr("&Edit Tracks: Go"), {}, [press] { press("StartTrackEditButton"); });
    menu->addSeparator();
    addCommand(menu, tr("&Join"), {}, [press] { press("JoinButton"); });
    addCommand(menu, tr("Sp&lit"), {}, [press] { press("SplitButton"); });
    addCommand(menu, tr("&Re-Mux"), {}, [press] { press("RemuxButton"); });
}

void MainMenu::addPresetsMenu()
{
    QMenu *menu = addMenu(tr("&Presets"));
    m_idleMenus.append(menu);
    addCommand(menu, tr("Edit &Track Presets…"), QKeySequence(Qt::CTRL | Qt::Key_T),
               m_commands.editTrackPresets);
    addCommand(menu, tr("Edit &Settings Presets…"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T),
               m_commands.editSettingsPresets);
}

void MainMenu::addQueueMenu()
{
    QMenu *menu = addMenu(tr("&Queue"));
    addCommand(menu, tr("&Convert"), QKeySequence(Qt::CTRL | Qt::Key_Return), m_commands.convert);
    addCommand(menu, tr("Show C&ommand…"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C), [this] {
        if (auto *control = m_window.findChild<QAbstractButton *>(u"ShowCommandButton"_s))
            control->click();
    });
    menu->addSeparator();
    addCommand(menu, tr("&Pause or Resume"), QKeySequence(Qt::CTRL | Qt::Key_Period),
               m_commands.pauseOrResume);
    addCommand(menu, tr("&Delete Selected Job"), {}, m_commands.deleteSelectedJob);
    addCommand(menu, tr("C&lear Completed Jobs"), {}, m_commands.clearJobs);
    menu->addSeparator();
    addWhenDone(menu->addMenu(tr("&When Done")));
}

void MainMenu::addWhenDone(QMenu *menu)
{
    auto *choice = new QActionGroup(menu);
    for (const auto &[title, word] :
         {std::pair(tr("Do &Nothing"), u"nothing"_s), std::pair(tr("&Sleep"), u"sleep"_s),
          std::pair(tr("&Quit"), u"quit"_s)}) {
        QAction *action = choice->addAction(menu->addAction(title));
        action->setCheckable(true);
        action->setMenuRole(QAction::NoRole);
        QObject::connect(action, &QAction::triggered, &m_window,
                         [this, chosen = word] { m_delegate.setWhenQueueIsDone(chosen); });
        QObject::connect(menu, &QMenu::aboutToShow, action, [this, action, shown = word] {
            action->setChecked(m_delegate.whenQueueIsDone() == shown);
        });
    }
}

void MainMenu::addHelpMenu()
{
    QMenu *menu = addMenu(tr("&Help"));
    addCommand(menu, tr("Online Guide"), QKeySequence::HelpContents,
               [this] { m_delegate.helpMenuItemSelected(u"Online Guide"_s); });
    addCommand(menu, tr("Online Troubleshooting"), {},
               [this] { m_delegate.helpMenuItemSelected(u"Online Troubleshooting"_s); });
    menu->addSeparator();
    m_toolTips = addCommand(menu, m_delegate.program().preferences().toolTipsMenuItemTitle(), {},
                            [this] { m_delegate.helpMenuItemSelected(m_toolTips->text()); });
    menu->addSeparator();
    QAction *about = addCommand(menu, tr("About Tessaray"), {}, [this] { showAbout(); });
    about->setMenuRole(QAction::AboutRole);
}

void MainMenu::showAbout()
{
    auto *box = new QMessageBox(QMessageBox::NoIcon, tr("About Tessaray"),
                                tr("Tessaray %1").arg(QCoreApplication::applicationVersion()),
                                QMessageBox::Ok, &m_window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setInformativeText(tr("Prepares video files for other devices and reshapes Matroska files."));
    box->open();
}

} // namespace window
