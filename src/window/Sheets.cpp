#include "window/Sheets.h"

#include "app/ConvertForecast.h"
#include "app/JobPlan.h"
#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "prefs/KXPreferencesController.h"
#include "window/Notices.h"
#include "window/PreferencesPanel.h"
#include "window/PresetSelectionsSheet.h"
#include "window/PresetSettingsSheet.h"
#include "window/TextSheet.h"

#include <QDesktopServices>
#include <QDir>

using namespace Qt::StringLiterals;

namespace window {

Sheets::Sheets(const Parts &parts, QWidget *window)
    : QObject(window)
    , m_parts(parts)
    , m_window(window)
{
    connect(&m_parts.preferences, &KXPreferencesController::panelWanted, this, &Sheets::panelWanted);
    connect(&m_parts.preferences, &KXPreferencesController::stateChanged, this, &Sheets::stateChanged);
    connect(&m_parts.delegate, &KXAppDelegate::documentWanted, this, &Sheets::document);
}

void Sheets::trackPresets()
{
    auto *sheet = new PresetSelectionsSheet(m_parts.delegate.program().presets(), m_parts.tips, m_window);
    sheet->open();
}

void Sheets::settingsPresets()
{
    auto *sheet = new PresetSettingsSheet(m_parts.delegate.program().presets(), m_parts.tips, m_window);
    sheet->open();
}

void Sheets::commands()
{
    app::Program &program = m_parts.delegate.program();
    QStringList numbered;
    for (const app::PlannedJob &job : app::plannedJobs(program, app::jobSelection(program))) {
        for (const QString &command : job.commands)
            numbered.append(u"%1  %2"_s.arg(numbered.size() + 1).arg(command));
    }
    const QString film = program.selectionController().currentVideoFile()->theFileName();
    auto *sheet = new TextSheet(tr("Commands"), tr("What Convert would run for %1, in this order:").arg(film),
                                numbered.join(u"\n\n"_s), TextSheet::Letters::Commands, m_window);
    sheet->open();
}

void Sheets::details(const QString &title, const QStringList &lines)
{
    auto *sheet = new TextSheet(title, tr("What became of every track of the source:"), lines.join(u'\n'),
                                TextSheet::Letters::Plain, m_window);
    sheet->open();
}

void Sheets::refusedFiles(const QStringList &lines)
{
    auto *sheet = new TextSheet(tr("Not Opened"), tr("These files could not be opened:"), lines.join(u'\n'),
                                TextSheet::Letters::Plain, m_window);
    sheet->open();
}

void Sheets::document(const QString &name)
{
    const QUrl folder = m_parts.delegate.program().preferences().resourcesLocation();
    const QString path = QDir(folder.toLocalFile()).filePath(u"docs/%1.html"_s.arg(name));
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        m_parts.notices.say(MessageBar::Kind::Warning, tr("No browser could open %1.").arg(path));
}

void Sheets::preferences()
{
    m_parts.preferences.openPreferencesPanel();
}

void Sheets::tools()
{
    m_wantsTools = true;
    preferences();
}

void Sheets::panelWanted(bool open)
{
    if (!open) {
        Q_EMIT preferencesChanged();
        return;
    }
    auto *panel = new PreferencesPanel(m_parts.preferences, m_parts.delegate.program().preferences(),
                                       m_parts.tips, m_window);
    if (std::exchange(m_wantsTools, false))
        panel->showTools();
    panel->open();
}

void Sheets::chooseSaveFolder()
{
    m_parts.preferences.loadPropertiesFromPreferences();
    m_choosingFolder = true;
    m_parts.preferences.changeSaveButton();
}

void Sheets::stateChanged()
{
    if (!std::exchange(m_choosingFolder, false))
        return;
    m_parts.preferences.savePropertiesToPreferences();
    Q_EMIT preferencesChanged();
}

void Sheets::clearSaveFolder()
{
    m_parts.preferences.loadPropertiesFromPreferences();
    m_parts.preferences.clearSaveDirectory();
    m_parts.preferences.savePropertiesToPreferences();
    Q_EMIT preferencesChanged();
}

} // namespace window
