#include "presets/KXPresetsController.h"

#include "prefs/KXPreferences.h"
#include "presets/PresetRecord.h"
#include "presets/PresetSentence.h"
#include "selection/KXSelectionController.h"

#include <QScopedValueRollback>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

template <typename List>
QStringList namesOf(const List &presets)
{
    QStringList names;
    for (const auto &preset : presets)
        names.append(preset->pName());
    return names;
}

template <typename List>
QVariantList recordsOf(const List &presets)
{
    QVariantList records;
    for (const auto &preset : presets) {
        if (preset->isEditable())
            records.append(preset->recordToStore());
    }
    return records;
}

/// The place of a preset once the built-ins that were removed are back in front of the user's.
template <typename List>
int indexAtNextStart(const List &presets, int index, const QStringList &builtIn)
{
    if (index < 0 || index >= presets.size())
        return 0;
    if (!presets.at(index)->isEditable())
        return std::max(0, static_cast<int>(builtIn.indexOf(presets.at(index)->pName())));
    const auto before = std::count_if(presets.begin(), presets.begin() + index,
                                      [](const auto &preset) { return preset->isEditable(); });
    return static_cast<int>(builtIn.size() + before);
}

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

/// What OK in a sheet does. Without a row nothing is chosen: "Manual".
template <typename List>
QString okSentence(const List &presets, int row)
{
    const auto preset = row < 0 ? presets.constFirst() : presets.value(row + hidden, presets.constFirst());
    return u"OK saves your presets and applies \"%1\". %2"_s.arg(preset->pName(),
                                                                 presets::sentenceFor(*preset));
}

} // namespace

KXPresetsController::KXPresetsController(KXPreferences &preferences, const VideoFilePointer &currentVideoFile,
                                         KXSelectionController &selectionController)
    : m_preferences(preferences)
    , m_currentVideoFile(currentVideoFile)
    , m_selectionController(selectionController)
{
}

void KXPresetsController::initialize()
{
    initializeSelectionsList();
    initializeSettingsList();
    setSettingMethodIndex(m_settingMethodIndex);
}

PresetSelectionsPointer KXPresetsController::newSelections() const
{
    return std::make_shared<KXPresetSelections>(m_currentVideoFile, m_selectionController);
}

PresetSettingsPointer KXPresetsController::newSettings() const
{
    return std::make_shared<KXPresetSettings>(m_currentVideoFile, m_selectionController);
}

void KXPresetsController::initializeSelectionsList()
{
    m_selections = {newSelections(), newSelections(), newSelections()};
    m_selections.at(0)->initializeAsByID();
    m_selections.at(1)->initializeAsFirst();
    m_selections.at(2)->initializeAsAll();
    for (const QVariant &record : m_preferences.userPresetSelectionsList()) {
        m_selections.append(newSelections());
        m_selections.constLast()->initFromRecord(record.toMap());
    }
    creatSelectionsNamesList();
}

void KXPresetsController::initializeSettingsList()
{
    m_settings = {newSettings(), newSettings()};
    m_settings.at(0)->initializeAsByID();
    m_settings.at(1)->initializeAsExtract();
    for (const QVariant &record : m_preferences.userPresetSettingsList()) {
        m_settings.append(newSettings());
        m_settings.constLast()->initFromRecord(record.toMap());
    }
    creatSettingsNamesList();
}

void KXPresetsController::creatSelectionsNamesList()
{
    m_selectionsNames = namesOf(m_selections);
    Q_EMIT listsChanged();
}

void KXPresetsController::creatSettingsNamesList()
{
    m_settingsNames = namesOf(m_settings);
    Q_EMIT listsChanged();
}

QString KXPresetsController::savePresetSelectionsListToUserDefaults()
{
    return m_preferences.saveUserPresetSelectionsListFor(recordsOf(m_selections));
}

QString KXPresetsController::savePresetSettingsListToUserDefaults()
{
    return m_preferences.saveUserPresetSettingsListFor(recordsOf(m_settings));
}

void KXPresetsController::setSelectionMethodIndex(int index)
{
    m_selectionMethodIndex = index >= 0 && index < m_selections.size() ? index : 0;
    Q_EMIT methodsChanged();
    if (m_selectionMethodIndex != 0)
        m_selections.at(m_selectionMethodIndex)->makeSelections();
}

void KXPresetsController::setSettingMethodIndex(int index)
{
    m_settingMethodIndex = index >= 0 && index < m_settings.size() ? index : 0;
    Q_EMIT methodsChanged();
    if (m_settingMethodIndex == 0)
        return;
    const QScopedValueRollback changing(m_changingPresetSetting, true);
    applyCurrentPresetSettings();
}

void KXPresetsController::applyCurrentPresetSelections()
{
    if (m_selectionMethodIndex < m_selections.size())
        m_selections.at(m_selectionMethodIndex)->makeSelections();
}

void KXPresetsController::applyCurrentPresetSettings()
{
    if (m_settingMethodIndex < m_settings.size()) {
        if (m_settingMethodIndex != 0)
            selection::forgetReasons(m_currentVideoFile->trackList());
        m_settings.at(m_settingMethodIndex)->makeSettings();
        guess(*m_settings.at(m_settingMethodIndex));
    }
    m_selectionController.updateTabs();
}

/// A preset that leaves the video to a guess, once its own settings are made.
void KXPresetsController::guess(const KXPresetSettings &preset)
{
    const KXSelection &selection = *m_selectionController.currentSelection();
    if (!preset.aim() || selection.trackList().isEmpty())
        return;
    if (const auto made =
            selection::bestGuess(selection, preset.pDevice(), *preset.aim(), preset.heldByGuess()))
        m_selectionController.takeGuess(*made);
}

PresetSettingsPointer KXPresetsController::currentPresetSettings() const
{
    return m_settings.value(m_settingMethodIndex);
}

QString KXPresetsController::currentPresetSettingName() const
{
    return m_settingMethodIndex < m_settings.size() ? m_settings.at(m_settingMethodIndex)->pName()
                                                    : QString();
}

int KXPresetsController::selectionMethodIndexToStore() const
{
    return indexAtNextStart(m_selections, m_selectionMethodIndex,
                            {u"Manual"_s, u"First Track"_s, u"All Tracks"_s});
}

int KXPresetsController::settingMethodIndexToStore() const
{
    return indexAtNextStart(m_settings, m_settingMethodIndex, {u"Manual"_s, u"Extract Tracks"_s});
}

QString KXPresetsController::addUserPresets(const QVariantList &selections, const QVariantList &settings)
{
    const QString problem = m_preferences.saveUserPresetListsFor(recordsOf(m_selections) + selections,
                                                                 recordsOf(m_settings) + settings);
    if (!problem.isNull())
        return problem;
    for (const QVariant &record : selections) {
        m_selections.append(newSelections());
        m_selections.constLast()->initFromRecord(record.toMap());
    }
    for (const QVariant &record : settings) {
        m_settings.append(newSettings());
        m_settings.constLast()->initFromRecord(record.toMap());
    }
    creatSelectionsNamesList();
    creatSettingsNamesList();
    return {};
}

// The two sheets in which presets are edited.

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
    m_selectionsBefore.emplace(m_selections, m_selectionMethodIndex);
    Q_EMIT listsChanged();
    selectSelectionsRow(rowOfIndex(m_selections, m_selectionMethodIndex));
}

void KXPresetsController::openPresetSettingsPanel()
{
    m_settingsBefore.emplace(m_settings, m_settingMethodIndex);
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
    if (problem.isNull())
        m_selectionsBefore.reset();
    setSelectionMethodIndex(m_selectionRow + hidden);
    return problem;
}

QString KXPresetsController::okPresetSettingsPanel()
{
    creatSettingsNamesList();
    const QString problem = savePresetSettingsListToUserDefaults();
    if (problem.isNull())
        m_settingsBefore.reset();
    setSettingMethodIndex(m_settingsRow + hidden);
    return problem;
}

QString KXPresetsController::okPresetSelectionSentence() const
{
    return okSentence(m_selections, m_selectionRow);
}

QString KXPresetsController::okPresetSettingsSentence() const
{
    return okSentence(m_settings, m_settingsRow);
}

void KXPresetsController::cancelPresetSelectionPanel()
{
    if (!m_selectionsBefore)
        return;
    m_filterEditor.setPreset(nullptr); // what is being edited goes to its preset before that is restored
    m_selections = m_selectionsBefore->restored();
    const int index = m_selectionsBefore->methodIndex();
    m_selectionsBefore.reset();
    creatSelectionsNamesList();
    if (index != m_selectionMethodIndex) // after an OK that could not save
        setSelectionMethodIndex(index);
}

void KXPresetsController::cancelPresetSettingsPanel()
{
    if (!m_settingsBefore)
        return;
    m_settings = m_settingsBefore->restored();
    const int index = m_settingsBefore->methodIndex();
    m_settingsBefore.reset();
    creatSettingsNamesList();
    if (index != m_settingMethodIndex)
        setSettingMethodIndex(index);
}
