#pragma once

#include "prefs/KXToolTips.h"
#include "tools/ToolPlaces.h"

#include <QVariantList>
#include <QVariantMap>

namespace platform {
class DefaultsStore;
}

namespace prefs {

/// Where the program found itself.
struct Places
{
    QString resources;     ///< fonts, tool archives, single tools; the tools folder too
    QString workingFolder; ///< the folder that contains the application
};

} // namespace prefs

/// The one preferences object of the program, owned by it and handed to everything that needs a
/// setting or a tool. Loads and saves the user's settings, fixes where the tools are and unpacks them,
/// and switches the tool tips. It writes only what was changed here since it was loaded.
class KXPreferences final : public KXToolTips, public tools::ToolPlaces
{
    Q_OBJECT
    /// A location without a path means: next to the source movie.
    Q_PROPERTY(QUrl saveDirectoryURL READ saveDirectoryURL WRITE setSaveDirectoryURL)
    Q_PROPERTY(QString saveDirectoryPath READ saveDirectoryPath WRITE setSaveDirectoryPath)
    Q_PROPERTY(QUrl watchFolderURL READ watchFolderURL WRITE setWatchFolderURL)
    Q_PROPERTY(QString watchFolderPath READ watchFolderPath WRITE setWatchFolderPath)
    KX_FIELD(QVariantList, userPresetSelectionsList, setUserPresetSelectionsList, {})
    KX_FIELD(QVariantList, userPresetSettingsList, setUserPresetSettingsList, {})
    KX_FIELD(QVariantMap, guiSettingsDictionary, setGuiSettingsDictionary, {})
    /// The panel's keys, in their order.
    KX_FIELD(QStringList, preferencePanelPropertiesList, setPreferencePanelPropertiesList, {})
    /// The values that are saved; what holds for this run is answered by panelValue().
    KX_FIELD(QVariantMap, preferencePanelDictionary, setPreferencePanelDictionary, {})
    KX_FIELD(QVariantMap, preferencePanelDefaultsDictionary, setPreferencePanelDefaultsDictionary, {})
    /// "Hide Tool Tips" while tips are shown, "Show Tool Tips" otherwise.
    KX_FIELD(QString, toolTipsMenuItemTitle, setToolTipsMenuItemTitle, {})
    KX_FIELD(QUrl, toolsLocationURL, setToolsLocationURL, {})

public:
    /// The store must outlive the preferences.
    KXPreferences(platform::DefaultsStore &store, const prefs::Places &places);

    platform::DefaultsStore &preferenceDefaults() const { return m_store; }

    enum class Unpack { Now, Later };

    /// Panel keys and defaults, then loadPreferencesFromDefaults(), whose answer is handed on, then the
    /// tools folder. Who unpacks later calls initializeApplicationSupportFolder() before any tool is needed.
    QString initialize(Unpack tools = Unpack::Now);
    /// Answers a null text, or a sentence when the stored settings can't be read (defaults are used).
    QString loadPreferencesFromDefaults();
    /// Answers a null text, or a sentence for the user when nothing could be saved.
    QString savePreferencesToDefaults();
    /// Both replace the list and store it at once; they answer like savePreferencesToDefaults().
    QString saveUserPresetSelectionsListFor(const QVariantList &list);
    QString saveUserPresetSettingsListFor(const QVariantList &list);
    /// Both at once, or, on failure, neither.
    QString saveUserPresetListsFor(const QVariantList &selections, const QVariantList &settings);
    /// Every tool tip's text and the menu item's title, after "showToolTipsFlag".
    void modifyToolTips();
    /// Fixes the tools folder and unpacks the tool archives there.
    void initializeApplicationSupportFolder();
    /// Null, or a sentence: which tools the last unpacking did not give, and why.
    QString toolsProblem() const { return m_toolsProblem; }

    /// A panel value as it holds now: overridden for this run, else set, else its default.
    QVariant panelValue(const QString &key) const;
    bool panelFlag(const QString &key) const { return panelValue(key).toBool(); }
    /// Holds until the program ends and is never saved.
    void overrideForThisRun(const QString &key, const QVariant &value);

    QUrl saveDirectoryURL() const { return m_saveDirectoryURL; }
    void setSaveDirectoryURL(const QUrl &folder) { m_saveDirectoryURL = folder; }
    QString saveDirectoryPath() const { return m_saveDirectoryURL.toLocalFile(); }
    void setSaveDirectoryPath(const QString &path) { m_saveDirectoryURL = QUrl::fromLocalFile(path); }
    QUrl watchFolderURL() const { return m_watchFolderURL; }
    void setWatchFolderURL(const QUrl &folder) { m_watchFolderURL = folder; }
    QString watchFolderPath() const { return m_watchFolderURL.toLocalFile(); }
    void setWatchFolderPath(const QString &path) { m_watchFolderURL = QUrl::fromLocalFile(path); }

    QUrl toolsLocation() const override { return m_toolsLocationURL; }
    QUrl resourcesLocation() const override { return QUrl::fromLocalFile(m_places.resources); }
    QString workingFolder() const override { return m_places.workingFolder; }
    bool takesNewerCodecs() const override { return panelFlag(QStringLiteral("newerCodecsFlag")); }

Q_SIGNALS:
    /// The tool tips or the title of their menu item have other texts now.
    void toolTipsModified();
    /// What was saved is safe, but something was the matter with the store: a sentence for the user.
    void storeMended(const QString &sentence);
    /// The tools are unpacked, as far as they can be.
    void toolsUnpacked();

private:
    void takePanelFrom(const QVariantMap &stored);
    void applySaveDirectory();
    QVariantMap currentValues() const;
    QString saveChanged(const QStringList &keys);

    platform::DefaultsStore &m_store;
    prefs::Places m_places;
    QUrl m_saveDirectoryURL;
    QUrl m_watchFolderURL;
    QString m_toolsProblem;
    QVariantMap m_overrides;
    QVariantMap m_loaded; // by top-level key, as last loaded or saved
};
