#include "prefs/KXPreferencesController.h"

#include "platform/Chooser.h"
#include "prefs/KXPreferences.h"

#include <QPointer>

using namespace Qt::StringLiterals;

namespace {

const QString tipsKey = u"showToolTipsFlag"_s;

void storePanelValue(KXPreferences &preferences, const QString &key, const QVariant &value)
{
    QVariantMap panel = preferences.preferencePanelDictionary();
    panel.insert(key, value);
    preferences.setPreferencePanelDictionary(panel);
}

} // namespace

KXPreferencesController::KXPreferencesController(KXPreferences &preferences, platform::Chooser &chooser)
    : m_preferences(preferences)
    , m_chooser(chooser)
{
}

void KXPreferencesController::openPreferencesPanel()
{
    loadPropertiesFromPreferences();
    m_tipsBefore = m_showToolTipsFlag;
    Q_EMIT panelWanted(true);
}

void KXPreferencesController::loadPropertiesFromPreferences()
{
    const QVariantMap panel = m_preferences.preferencePanelDictionary();
    for (const QString &key : m_preferences.preferencePanelPropertiesList())
        setProperty(key.toUtf8().constData(), panel.value(key));
}

QString KXPreferencesController::savePropertiesToPreferences()
{
    QVariantMap panel;
    for (const QString &key : m_preferences.preferencePanelPropertiesList())
        panel.insert(key, property(key.toUtf8().constData()));
    m_preferences.setPreferencePanelDictionary(panel);
    return m_preferences.savePreferencesToDefaults();
}

void KXPreferencesController::changeSaveButton()
{
    using platform::ChooserRequest;
    m_chooser.choose(
        {u"Select save directory location:"_s, ChooserRequest::What::Folder, m_saveDirectoryPath},
        [self = QPointer(this)](const QList<QUrl> &chosen) {
            if (self && !chosen.isEmpty())
                self->setSaveDirectoryPath(chosen.constFirst().toLocalFile());
        });
}

void KXPreferencesController::clearSaveDirectory()
{
    setSaveDirectoryPath(u""_s);
}

void KXPreferencesController::changeLintwickPathButton()
{
    using platform::ChooserRequest;
    m_chooser.choose({u"Find the Path to Lintwick:"_s, ChooserRequest::What::Application, m_lintwickPath},
                     [self = QPointer(this)](const QList<QUrl> &chosen) {
                         if (self && !chosen.isEmpty())
                             self->setLintwickPath(chosen.constFirst().toLocalFile());
                     });
}

void KXPreferencesController::tooltipsCheckboxClicked(bool shown)
{
    setShowToolTipsFlag(shown);
    storePanelValue(m_preferences, tipsKey, shown);
    m_preferences.modifyToolTips();
}

QString KXPreferencesController::okPreferencesButton()
{
    const QString problem = savePropertiesToPreferences();
    if (problem.isNull())
        Q_EMIT panelWanted(false);
    return problem;
}

void KXPreferencesController::cancelPreferencesButton()
{
    if (m_showToolTipsFlag != m_tipsBefore)
        tooltipsCheckboxClicked(m_tipsBefore);
    Q_EMIT panelWanted(false);
}
