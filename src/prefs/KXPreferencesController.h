#pragma once

#include "platform/Fields.h"

#include <QObject>

class KXPreferences;

namespace platform {
class Chooser;
}

/// The preferences panel without its widgets: what is entered there until it is saved or cancelled. The
/// program makes it once. Only the tool tips switch while the panel is open, so that one sees the effect.
class KXPreferencesController final : public QObject
{
    Q_OBJECT
    /// Empty: next to the source movie.
    KX_STATE(QString, saveDirectoryPath, setSaveDirectoryPath, {})
    KX_STATE(QString, lintwickPath, setLintwickPath, {})
    KX_STATE(bool, showToolTipsFlag, setShowToolTipsFlag, true)
    KX_STATE(bool, keepLogsFlag, setKeepLogsFlag, true)
    KX_STATE(bool, moovInFrontFlag, setMoovInFrontFlag, true)
    KX_STATE(bool, metadataPaddingFlag, setMetadataPaddingFlag, false)
    KX_STATE(bool, useDpliiFlag, setUseDpliiFlag, true)
    KX_STATE(bool, verifyFlag, setVerifyFlag, false)
    /// Films whose codecs the vocabulary does not know are opened too.
    KX_STATE(bool, newerCodecsFlag, setNewerCodecsFlag, false)
    /// Set where a folder to watch is chosen, not in the panel.
    KX_STATE(bool, watchExistingFlag, setWatchExistingFlag, false)
    KX_STATE(bool, lowPriorityFlag, setLowPriorityFlag, false)
    KX_STATE(bool, pauseOnBatteryFlag, setPauseOnBatteryFlag, false)
    /// "nothing", "sleep" or "quit".
    KX_STATE(QString, whenQueueIsDone, setWhenQueueIsDone, QStringLiteral("nothing"))

public:
    /// Both must outlive the controller.
    KXPreferencesController(KXPreferences &preferences, platform::Chooser &chooser);

    /// Takes what is stored into the properties and asks for the panel.
    void openPreferencesPanel();
    void loadPropertiesFromPreferences();
    /// Answers a null text, or a sentence when nothing could be saved; then the panel's values hold for
    /// this run all the same.
    QString savePropertiesToPreferences();
    void changeSaveButton();
    void clearSaveDirectory();
    void changeLintwickPathButton();
    void tooltipsCheckboxClicked(bool shown);
    /// Saves and closes the panel; it stays open, and the sentence is answered, when that failed.
    QString okPreferencesButton();
    void cancelPreferencesButton();

Q_SIGNALS:
    void stateChanged();
    void panelWanted(bool open);

private:
    KXPreferences &m_preferences;
    platform::Chooser &m_chooser;
    bool m_tipsBefore = true;
};
