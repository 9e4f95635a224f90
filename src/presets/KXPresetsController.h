#pragma once

#include "presets/FilterEditor.h"
#include "presets/KXPresetSelections.h"
#include "presets/KXPresetSettings.h"
#include "presets/SheetSnapshot.h"
#include "selection/PresetDriver.h"

#include <optional>

class KXPreferences;

/// Owns the two lists of presets, knows which of each is chosen, applies them and stores the user's. The
/// program makes it once. The sheets show its lists without "Manual": their rows count from the entry
/// behind it.
class KXPresetsController final : public QObject, public PresetDriver
{
    Q_OBJECT
    Q_PROPERTY(QStringList presetSelectionsNamesList READ presetSelectionsNamesList NOTIFY listsChanged)
    Q_PROPERTY(QStringList presetSettingsNamesList READ presetSettingsNamesList NOTIFY listsChanged)
    Q_PROPERTY(int selectionMethodIndex READ selectionMethodIndex WRITE setSelectionMethodIndex NOTIFY
                   methodsChanged)
    Q_PROPERTY(
        int settingMethodIndex READ settingMethodIndex WRITE setSettingMethodIndex NOTIFY methodsChanged)

public:
    /// All are the program's and outlive the controller.
    KXPresetsController(KXPreferences &preferences, const VideoFilePointer &currentVideoFile,
                        KXSelectionController &selectionController);

    /// Builds both lists from what is stored. Once, when the preferences are loaded.
    void initialize();
    void initializeSelectionsList();
    void initializeSettingsList();
    // The missing letter is meant.
    void creatSelectionsNamesList();
    void creatSettingsNamesList();
    /// Both store the user's presets and answer a null text, or a sentence when that failed.
    QString savePresetSelectionsListToUserDefaults();
    QString savePresetSettingsListToUserDefaults();

    const QList<PresetSelectionsPointer> &presetSelectionsList() const { return m_selections; }
    const QList<PresetSettingsPointer> &presetSettingsList() const { return m_settings; }
    const QStringList &presetSelectionsNamesList() const { return m_selectionsNames; }
    const QStringList &presetSettingsNamesList() const { return m_settingsNames; }

    // Which preset is chosen: 0 is "Manual". Choosing another one applies it. An index outside the list
    // counts as 0.
    int selectionMethodIndex() const { return m_selectionMethodIndex; }
    void setSelectionMethodIndex(int index) override;
    int settingMethodIndex() const override { return m_settingMethodIndex; }
    void setSettingMethodIndex(int index) override;
    bool changingPresetSetting() const override { return m_changingPresetSetting; }
    void applyCurrentPresetSelections();
    void applyCurrentPresetSettings() override;
    QString currentPresetSettingName() const;
    PresetSettingsPointer currentPresetSettings() const;

    /// The index to store: the one that the chosen preset has in the list as the next start builds it,
    /// where removed built-ins are back.
    int selectionMethodIndexToStore() const;
    int settingMethodIndexToStore() const;

    // The sheets. Rows count without "Manual"; -1 is none.
    void openPresetSelectionPanel();
    void openPresetSettingsPanel();
    int selectionPanelRow() const { return m_selectionRow; }
    int settingsPanelRow() const { return m_settingsRow; }
    void selectionListTableClicked(int row);
    void settingsListTableClicked(int row);
    void addPresetSelection();
    void addPresetSettings();
    /// Removes the selected row and selects the one before; built-ins come back at the next start.
    void removePresetSelection();
    void removePresetSettings();
    /// Both answer a null text, or say why the preset can't have that name.
    QString renamePresetSelection(int row, const QString &name);
    QString renamePresetSettings(int row, const QString &name);
    /// Both close the sheet: names, storing, and the selected row is chosen. They answer like the saving.
    QString okPresetSelectionPanel();
    QString okPresetSettingsPanel();
    /// What OK does with the row that is selected now, as sentences.
    QString okPresetSelectionSentence() const;
    QString okPresetSettingsSentence() const;
    /// Both close the sheet as if it had not been opened: presets, their values and the choice are as before.
    void cancelPresetSelectionPanel();
    void cancelPresetSettingsPanel();
    FilterEditor &filterEditor() { return m_filterEditor; }
    /// The film that presets are applied to.
    VideoFilePointer currentVideoFile() const { return m_currentVideoFile; }

    /// Adds presets made from records to both lists and stores them; on failure the lists are as before.
    QString addUserPresets(const QVariantList &selections, const QVariantList &settings);

Q_SIGNALS:
    void listsChanged();
    void methodsChanged();
    /// Another row is selected in a sheet.
    void panelRowsChanged();

private:
    void guess(const KXPresetSettings &preset);
    PresetSelectionsPointer newSelections() const;
    PresetSettingsPointer newSettings() const;
    PresetSelectionsPointer selectionsAtRow(int row) const;
    void selectSelectionsRow(int row);
    void selectSettingsRow(int row);

    KXPreferences &m_preferences;
    VideoFilePointer m_currentVideoFile;
    KXSelectionController &m_selectionController;
    QList<PresetSelectionsPointer> m_selections;
    QList<PresetSettingsPointer> m_settings;
    QStringList m_selectionsNames;
    QStringList m_settingsNames;
    FilterEditor m_filterEditor;
    std::optional<presets::SheetSnapshot<KXPresetSelections>> m_selectionsBefore; ///< while the sheet is open
    std::optional<presets::SheetSnapshot<KXPresetSettings>> m_settingsBefore;
    int m_selectionMethodIndex = 0;
    int m_settingMethodIndex = 0;
    int m_selectionRow = -1;
    int m_settingsRow = -1;
    bool m_changingPresetSetting = false;
};
