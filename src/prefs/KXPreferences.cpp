#include "prefs/KXPreferences.h"

#include "platform/DefaultsStore.h"
#include "prefs/StoredChanges.h"
#include "prefs/ToolsUnpacker.h"
#include "tools/ShellRunner.h"

using namespace Qt::StringLiterals;

namespace {

const QString saveDirectoryKey = u"saveDirectoryPath"_s;
const QString panelKey = u"preferencePanelDictionary"_s;
const QString watchFolderKey = u"watchFolder"_s;
const QString selectionsKey = u"presetSelectionsArray"_s;
const QString settingsKey = u"presetSettingsArray"_s;
const QString guiKey = u"guiSettingsDictionary"_s;

/// The panel's keys, in their order, and what each is at first.
const QList<std::pair<QString, QVariant>> &panelFields()
{
    static const QList<std::pair<QString, QVariant>> fields{
        {saveDirectoryKey, u""_s},
        {u"lintwickPath"_s, u""_s},
        {u"showToolTipsFlag"_s, true},
        {u"keepLogsFlag"_s, true},
        {u"moovInFrontFlag"_s, true},
        {u"metadataPaddingFlag"_s, false},
        {u"useDpliiFlag"_s, true},
        {u"verifyFlag"_s, false},
        {u"newerCodecsFlag"_s, false},
        {u"watchExistingFlag"_s, false},
        {u"lowPriorityFlag"_s, false},
        {u"pauseOnBatteryFlag"_s, false},
        {u"whenQueueIsDone"_s, u"nothing"_s},
    };
    return fields;
}

QVariantMap registeredDefaults()
{
    return {
        {panelKey, QVariantMap()},     {watchFolderKey, u""_s}, {selectionsKey, QVariantList()},
        {settingsKey, QVariantList()}, {guiKey, QVariantMap()},
    };
}

} // namespace

KXPreferences::KXPreferences(platform::DefaultsStore &store, const prefs::Places &places)
    : KXToolTips(this)
    , m_store(store)
    , m_places(places)
{
    setToolsLocationURL(resourcesLocation());
    setWaiting(tools::Waiting::Blocking); // it runs at the start only, when nothing could be served yet
}

QString KXPreferences::initialize(Unpack tools)
{
    QStringList keys;
    QVariantMap defaults;
    for (const auto &[key, value] : panelFields()) {
        keys.append(key);
        defaults.insert(key, value);
    }
    setPreferencePanelPropertiesList(keys);
    setPreferencePanelDefaultsDictionary(defaults);
    const QString problem = loadPreferencesFromDefaults();
    if (tools == Unpack::Now)
        initializeApplicationSupportFolder();
    return problem;
}

QString KXPreferences::loadPreferencesFromDefaults()
{
    m_store.registerDefaults(registeredDefaults());
    const QString problem = m_store.load();
    setWatchFolderPath(m_store.value(watchFolderKey).toString());
    setUserPresetSelectionsList(m_store.value(selectionsKey).toList());
    setUserPresetSettingsList(m_store.value(settingsKey).toList());
    setGuiSettingsDictionary(m_store.value(guiKey).toMap());
    takePanelFrom(m_store.value(panelKey).toMap());
    applySaveDirectory();
    m_loaded = currentValues();
    return problem;
}

void KXPreferences::takePanelFrom(const QVariantMap &stored)
{
    QVariantMap panel = preferencePanelDefaultsDictionary();
    for (const QString &key : preferencePanelPropertiesList()) {
        if (stored.contains(key))
            panel.insert(key, stored.value(key));
    }
    setPreferencePanelDictionary(panel);
}

void KXPreferences::applySaveDirectory()
{
    setSaveDirectoryPath(panelValue(saveDirectoryKey).toString());
}

QVariantMap KXPreferences::currentValues() const
{
    return {
        {panelKey, preferencePanelDictionary()},     {watchFolderKey, watchFolderPath()},
        {selectionsKey, userPresetSelectionsList()}, {settingsKey, userPresetSettingsList()},
        {guiKey, guiSettingsDictionary()},
    };
}

QString KXPreferences::savePreferencesToDefaults()
{
    const QString problem = saveChanged({panelKey, watchFolderKey, selectionsKey, settingsKey, guiKey});
    applySaveDirectory();
    return problem;
}

QString KXPreferences::saveChanged(const QStringList &keys)
{
    const QVariantMap now = currentValues();
    const auto changesTo = [&](const QVariantMap &stored) {
        QVariantMap changes;
        for (const QString &key : keys) {
            if (!prefs::storedAlike(m_loaded.value(key), now.value(key)))
                changes.insert(key, prefs::merged(stored.value(key), m_loaded.value(key), now.value(key)));
        }
        return changes;
    };
    const QString problem = m_store.update(changesTo);
    if (!problem.isNull())
        return problem; // what changed stays marked as changed, for the next attempt
    for (const QString &key : keys)
        m_loaded.insert(key, now.value(key));
    if (const QString notice = m_store.takeNotice(); !notice.isNull())
        Q_EMIT storeMended(notice);
    return {};
}

QString KXPreferences::saveUserPresetSelectionsListFor(const QVariantList &list)
{
    setUserPresetSelectionsList(list);
    return saveChanged({selectionsKey});
}

QString KXPreferences::saveUserPresetSettingsListFor(const QVariantList &list)
{
    setUserPresetSettingsList(list);
    return saveChanged({settingsKey});
}

QString KXPreferences::saveUserPresetListsFor(const QVariantList &selections, const QVariantList &settings)
{
    const QVariantList selectionsBefore = userPresetSelectionsList();
    const QVariantList settingsBefore = userPresetSettingsList();
    setUserPresetSelectionsList(selections);
    setUserPresetSettingsList(settings);
    const QString problem = saveChanged({selectionsKey, settingsKey});
    if (!problem.isNull()) {
        setUserPresetSelectionsList(selectionsBefore);
        setUserPresetSettingsList(settingsBefore);
    }
    return problem;
}

void KXPreferences::modifyToolTips()
{
    const bool shown = panelFlag(u"showToolTipsFlag"_s);
    KXToolTips::modifyToolTips(shown ? Tips::Shown : Tips::Hidden);
    setToolTipsMenuItemTitle(shown ? u"Hide Tool Tips"_s : u"Show Tool Tips"_s);
    Q_EMIT toolTipsModified();
}

void KXPreferences::initializeApplicationSupportFolder()
{
    if (toolsLocationURL() != resourcesLocation()) // a window unpacks beside its main thread, which reads it
        setToolsLocationURL(resourcesLocation());
    m_toolsProblem = prefs::ToolsUnpacker(*this, *this).unpack();
    Q_EMIT toolsUnpacked();
}

QVariant KXPreferences::panelValue(const QString &key) const
{
    if (m_overrides.contains(key))
        return m_overrides.value(key);
    return preferencePanelDictionary().value(key, preferencePanelDefaultsDictionary().value(key));
}

void KXPreferences::overrideForThisRun(const QString &key, const QVariant &value)
{
    m_overrides.insert(key, value);
    applySaveDirectory();
}
