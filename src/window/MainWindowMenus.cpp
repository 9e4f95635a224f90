// The main window's menus, and the sheets and documents that they open.
#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "prefs/KXPreferencesController.h"
#include "window/MainWindow.h"
#include "window/PreferencesPanel.h"
#include "window/PresetSelectionsSheet.h"
#include "window/PresetSettingsSheet.h"
#include "window/QueueDrawer.h"
#include "window/StatusLine.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QMenuBar>
#include <QMessageBox>
#include <QStackedWidget>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace window {

QAction *MainWindow::addCommand(QMenu *menu, const QString &text, const QKeySequence &keys,
                                const std::function<void()> &run)
{
    QAction *action = menu->addAction(text);
    action->setShortcut(keys);
    action->setMenuRole(QAction::NoRole);
    connect(action, &QAction::triggered, this, run);
    return action;
}

void MainWindow::addMenus()
{
    addFileMenu();
    addTrackMenu();
    addPresetsMenu();
    addQueueMenu();
    addHelpMenu();
}

void MainWindow::addFileMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&File"));
    addCommand(menu, tr("&Open…"), QKeySequence::Open, [this] { m_delegate.openFilePanel(u"Open"_s); });
    m_addAction = addCommand(menu, tr("&Add…"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O),
                             [this] { m_delegate.openFilePanel(u"Add"_s); });
    addCommand(menu, tr("Save File &Info"), QKeySequence(Qt::CTRL | Qt::Key_I),
               [this] { m_delegate.helpMenuItemSelected(u"Save File Info"_s); });
    menu->addSeparator();
    QAction *preferences = addCommand(menu, tr("&Preferences…"), QKeySequence(Qt::CTRL | Qt::Key_Comma),
                                      [this] { m_preferences.openPreferencesPanel(); });
    preferences->setMenuRole(QAction::PreferencesRole);
    menu->addSeparator();
    addCommand(menu, tr("&Close Window"), QKeySequence::Close, [this] { close(); });
    QAction *quit =
        addCommand(menu, tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), [this] { Q_EMIT quitWanted(); });
    quit->setMenuRole(QAction::QuitRole);
}

void MainWindow::addTrackMenu()
{
    KXSelectionController &controller = m_delegate.program().selectionController();
    QMenu *menu = menuBar()->addMenu(tr("&Tracks"));
    m_idleMenus.append(menu);
    const auto press = [this](const char *button) {
        if (auto *control = findChild<QAbstractButton *>(QString::fromLatin1(button)))
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

void MainWindow::addPresetsMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&Presets"));
    m_idleMenus.append(menu);
    addCommand(menu, tr("Edit &Track Presets…"), QKeySequence(Qt::CTRL | Qt::Key_T),
               [this] { openSelectionsSheet(); });
    addCommand(menu, tr("Edit &Settings Presets…"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T),
               [this] { openSettingsSheet(); });
}

void MainWindow::addQueueMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&Queue"));
    addCommand(menu, tr("&Convert"), QKeySequence(Qt::CTRL | Qt::Key_Return), [this] {
        if (m_pages->currentIndex() == 0)
            m_convert->click();
    });
    menu->addSeparator();
    addCommand(menu, tr("&Pause or Resume"), QKeySequence(Qt::CTRL | Qt::Key_Period),
               [this] { m_drawer->togglePause(); });
    addCommand(menu, tr("&Delete Selected Job"), {}, [this] { m_drawer->deleteSelected(); });
    addCommand(menu, tr("C&lear Completed Jobs"), {},
               [this] { m_delegate.program().queue().clearQueueButton(); });
}

void MainWindow::addHelpMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&Help"));
    addCommand(menu, tr("Online Guide"), QKeySequence::HelpContents,
               [this] { m_delegate.helpMenuItemSelected(u"Online Guide"_s); });
    addCommand(menu, tr("Online Troubleshooting"), {},
               [this] { m_delegate.helpMenuItemSelected(u"Online Troubleshooting"_s); });
    menu->addSeparator();
    m_toolTipsAction = addCommand(menu, m_delegate.program().preferences().toolTipsMenuItemTitle(), {},
                                  [this] { m_delegate.helpMenuItemSelected(m_toolTipsAction->text()); });
    menu->addSeparator();
    QAction *about = addCommand(menu, tr("About Tessaray"), {}, [this] {
        auto *box = new QMessageBox(QMessageBox::NoIcon, tr("About Tessaray"),
                                    tr("Tessaray %1").arg(QCoreApplication::applicationVersion()),
                                    QMessageBox::Ok, this);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setInformativeText(tr("Prepares video files for other devices and reshapes Matroska files."));
        box->open();
    });
    about->setMenuRole(QAction::AboutRole);
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

} // namespace window
