#pragma once

#include "app/CurrentFile.h"
#include "app/QueuePause.h"
#include "jobs/JobContext.h"
#include "jobs/JobFactory.h"
#include "jobs/KXQueueController.h"
#include "platform/AlertPresenter.h"
#include "platform/DefaultsStore.h"
#include "platform/KXNotificationCenter.h"
#include "platform/Power.h"
#include "platform/Volumes.h"
#include "platform/Workspace.h"
#include "prefs/KXPreferences.h"
#include "prefs/KXWatchModeController.h"
#include "presets/KXPresetsController.h"
#include "selection/KXSelectionController.h"
#include "steps/OutputRegistry.h"
#include "steps/ScratchFolder.h"
#include "steps/StepLauncher.h"

#include <memory>

namespace app {

/// Makes everything that exists once per program and hands it around. Both programs own one; it shows
/// nothing and decides nothing.
class Program final
{
public:
    struct Options
    {
        QString defaultsPath; ///< empty: the user's own
        steps::WhenTaken whenTaken = steps::WhenTaken::NextFreeName;
        jobs::Intervals intervals = {};
        prefs::WatchIntervals watchIntervals = {};
        // What is asked of the machine, where that is not to be the machine itself. They outlive the program.
        const platform::Volumes *volumes = nullptr;
        const platform::Power *power = nullptr;
    };

    /// The presenter must outlive the program.
    Program(const Options &options, platform::AlertPresenter &alerts);
    ~Program();

    /// Loads the settings and unpacks the tools. Answers a null text, or what is wrong with the settings.
    QString initialize(KXPreferences::Unpack tools = KXPreferences::Unpack::Now);
    platform::DefaultsStore &defaults() { return m_defaults; }
    /// Where the settings lie; what else is remembered lies beside them.
    QString settingsPath() const { return m_defaults.path(); }
    /// Where the window keeps the jobs that are not done: in the data folder of the user, or beside settings
    /// of another place.
    QString queueFolder() const { return m_queueFolder; }
    KXPreferences &preferences() { return m_preferences; }
    KXNotificationCenter &notifications() { return m_notifications; }
    KXQueueController &queue() { return m_queue; }
    KXSelectionController &selectionController() { return m_selectionController; }
    KXPresetsController &presets() { return m_presets; }
    /// The file that is worked on.
    CurrentFile &currentFile() { return m_currentFile; }
    const jobs::JobFactory &factory() const { return m_factory; }
    /// Where names are kept that no job may write to.
    steps::OutputRegistry &outputs() { return m_outputs; }
    KXWatchModeController &watchMode() { return m_watchMode; }
    const prefs::WatchIntervals &watchIntervals() const { return m_watchIntervals; }
    const platform::Volumes &volumes() const { return m_volumes; }
    /// What pauses the running job but a person.
    QueuePause &queuePause() { return m_queuePause; }
    /// Starts the player with the selection's tracks, and forgets it.
    void playMovie(const SelectionPointer &selection);
    /// What jobs are handed, with another registry where only their plans are wanted.
    jobs::JobContext contextFor(steps::OutputRegistry &outputs);

private:
    QString m_queueFolder;
    steps::WhenTaken m_whenTaken;
    jobs::Intervals m_intervals;
    prefs::WatchIntervals m_watchIntervals;
    platform::AlertPresenter &m_alerts;
    platform::JsonDefaultsStore m_defaults;
    platform::Volumes m_ownVolumes;
    platform::Power m_ownPower;
    const platform::Volumes &m_volumes;
    const platform::Power &m_power;
    platform::Workspace m_workspace;
    KXNotificationCenter m_notifications;
    KXPreferences m_preferences;
    KXWatchModeController m_watchMode;
    // Made before the presets that look at them; their contents change, the objects stay.
    VideoFilePointer m_currentVideoFile;
    SelectionPointer m_currentSelection;
    KXSelectionController m_selectionController;
    KXPresetsController m_presets;
    CurrentFile m_currentFile;
    steps::StepLauncher m_launcher;
    steps::OutputRegistry m_outputs;
    steps::ScratchFolder m_scratch;
    jobs::JobFactory m_factory;
    KXQueueController m_queue;
    QueuePause m_queuePause;
};

} // namespace app
