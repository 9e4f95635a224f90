// The two sheets in which presets are edited.
#include "presets/KXPresetsController.h"

#include "presets/PresetRecord.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// The sheets hide the first entry, "Manual".
constexpr int hidden = 1;

template <typename List>
int lastRow(const List &presets)
{
    return static_cast<int>(presets.size()) - hidden - 1;
}

/// "Manual" has no row: the first one is selected in its place.
template <typename List>
int rowOfIndex(const List &presets, int index)
{
    return std::min(std::max(index - hidden, 0), lastRow(presets));
}

/// Answers whether the row was there.
template <typename List>
bool removeRow(List &presets, int row)
{
    if (row < 0 || row > lastRow(presets))
        return false;
    presets.remove(row + hidden);
    return true;
}

template <typename List>
QString renameAt(const List &presets, int row, const QString &name)
{
    if (row < 0 || row > lastRow(presets) || !presets.at(row + hidden)->isEditable())
        return u"This preset can't be renamed."_s;
    if (!presets::isFreeName(name))
        return name.trimmed().isEmpty() ? u"A preset needs a name."_s
                                        : u"The name \"%1\" belongs to a built-in preset."_s.arg(name);
    presets.at(row + hidden)->setPName(name);
    return {};
}

} // namespace

PresetSelectionsPointer KXPresetsController::selectionsAtRow(int row) const
{
    return row < 0 ? nullptr : m_selections.value(row + hidden);
}

void KXPresetsController::selectSelectionsRow(int row)
{
    m_selectionRow = row;
    m_filterEditor.setPreset(selectionsAtRow(row));
    Q_EMIT panelRowsChanged();
}

void KXPresetsController::selectSettingsRow(int row)
{
    m_settingsRow = row;
    Q_EMIT panelRowsChanged();
}

void KXPresetsController::openPresetSelectionPanel()
{
    Q_EMIT listsChanged();
    selectSelectionsRow(rowOfIndex(m_selections, m_selectionMethodIndex));
}

void KXPresetsController::openPresetSettingsPanel()
{
    Q_EMIT listsChanged();
    selectSettingsRow(rowOfIndex(m_settings, m_settingMethodIndex));
}

void KXPresetsController::selectionListTableClicked(int row)
{
    selectSelectionsRow(row);
}

void KXPresetsController::settingsListTableClicked(int row)
{
    selectSettingsRow(row);
}

void KXPresetsController::addPresetSelection()
{
    m_selections.append(newSelections());
    m_selections.constLast()->initializeAsNewUserPreset();
    Q_EMIT listsChanged();
}

void KXPresetsController::addPresetSettings()
{
    m_settings.append(newSettings());
    m_settings.constLast()->initializeAsNewUserPreset();
    Q_EMIT listsChanged();
}

void KXPresetsController::removePresetSelection()
{
    if (!removeRow(m_selections, m_selectionRow))
        return;
    Q_EMIT listsChanged();
    selectSelectionsRow(m_selectionRow - 1);
}

void KXPresetsController::removePresetSettings()
{
    if (!removeRow(m_settings, m_settingsRow))
        return;
    Q_EMIT listsChanged();
    selectSettingsRow(m_settingsRow - 1);
}

QString KXPresetsController::renamePresetSelection(int row, const QString &name)
{
    return renameAt(m_selections, row, name);
}

QString KXPresetsController::renamePresetSettings(int row, const QString &name)
{
    return renameAt(m_settings, row, name);
}

QString KXPresetsController::okPresetSelectionPanel()
{
    m_filterEditor.setPreset(nullptr); // the sheet is gone, and what was being edited counts
    creatSelectionsNamesList();
    const QString problem = savePresetSelectionsListToUserDefaults();
    setSelectionMethodIndex(m_selectionRow + hidden);
    return problem;
}

QString KXPresetsController::okPresetSettingsPanel()
{
    creatSettingsNamesList();
    const QString problem = savePresetSettingsListToUserDefaults();
    setSettingMethodIndex(m_settingsRow + hidden);
    return problem;
}
