#pragma once

#include <QObject>

class KXAppDelegate;
class KXPreferencesController;
class QWidget;

namespace window {

class Notices;
class ToolTipBinder;

/// Opens the sheets of the main window, its documents, and the dialog for the save folder. Owned by the
/// window.
class Sheets final : public QObject
{
    Q_OBJECT

public:
    /// All must outlive it.
    struct Parts
    {
        KXAppDelegate &delegate;
        KXPreferencesController &preferences;
        ToolTipBinder &tips;
        Notices &notices;
    };

    Sheets(const Parts &parts, QWidget *window);

    void trackPresets();
    void settingsPresets();
    /// What a press of Convert would run.
    void commands();
    /// What became of every track of a finished job.
    void details(const QString &title, const QStringList &lines);
    void refusedFiles(const QStringList &lines);
    /// "guide" or "troubleshooting", in the browser.
    void document(const QString &name);
    /// The panel, at the tools where they are asked for.
    void preferences();
    void tools();
    void chooseSaveFolder();
    void clearSaveFolder();

Q_SIGNALS:
    void preferencesChanged();

private:
    void panelWanted(bool open);
    void stateChanged();

    Parts m_parts;
    QWidget *m_window;
    bool m_choosingFolder = false;
    bool m_wantsTools = false;
};

} // namespace window
