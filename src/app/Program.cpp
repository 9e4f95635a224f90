#include "app/Program.h"

#include "app/Environment.h"
#include "engines/EngineJobs.h"
#include "engines/player/KXMoviePlayer.h"
#include "steps/OutputGuard.h"

#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace app {

namespace {

jobs::JobFactory makeFactory()
{
    jobs::JobFactory factory;
    engines::registerJobs(factory);
    return factory;
}

QString queueFolderFor(const QString &defaultsPath)
{
    return defaultsPath.isEmpty()
               ? QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + u"/queue"_s
               : defaultsPath + u".queue"_s;
}

} // namespace

Program::Program(const Options &options, platform::AlertPresenter &alerts)
    : m_queueFolder(queueFolderFor(options.defaultsPath))
    , m_whenTaken(options.whenTaken)
    , m_intervals(options.intervals)
    , m_watchIntervals(options.watchIntervals)
    , m_alerts(alerts)
    , m_defaults(options.defaultsPath.isEmpty() ? platform::JsonDefaultsStore::standardPath()
                                                : options.defaultsPath)
    , m_volumes(options.volumes != nullptr ? *options.volumes : m_ownVolumes)
    , m_power(options.power != nullptr ? *options.power : m_ownPower)
    , m_preferences(m_defaults, {resourcesFolder(), workingFolder()})
    , m_watchMode(&m_preferences, options.watchIntervals)
    , m_currentVideoFile(std::make_shared<KXVideoFile>(&m_preferences))
    , m_currentSelection(std::make_shared<KXSelection>())
    , m_selectionController(m_notifications, m_currentVideoFile, m_currentSelection)
    , m_presets(m_preferences, m_currentVideoFile, m_selectionController)
    , m_currentFile(m_currentVideoFile, m_selectionController, m_presets)
    , m_factory(makeFactory())
    , m_queue(contextFor(m_outputs), m_factory, &m_watchMode)
    , m_queuePause({m_queue, m_preferences, m_power, m_volumes})
{
    m_launcher.setLowPriority([this] { return m_preferences.panelFlag(u"lowPriorityFlag"_s); });
    m_queue.initialize();
}

Program::~Program() = default;

jobs::JobContext Program::contextFor(steps::OutputRegistry &outputs)
{
    jobs::JobContext context{m_preferences, m_notifications, m_alerts,  m_volumes,  m_workspace,
                             m_launcher,    outputs,         m_scratch, m_whenTaken};
    context.intervals = m_intervals;
    return context;
}

QString Program::initialize(KXPreferences::Unpack tools)
{
    steps::ScratchFolder::clearLeftOvers();
    const QString problem = m_preferences.initialize(tools);
    m_currentSelection->initialize();
    m_selectionController.initialize();
    m_selectionController.setPresetsController(&m_presets);
    // Nothing can be burned into a video that passes through, and it starts as one.
    m_selectionController.setSubtitleMatrixIndex(1);
    m_selectionController.setCurrentTab(u"MKV"_s);
    m_presets.initialize();
    return problem;
}

void Program::playMovie(const SelectionPointer &selection)
{
    steps::OutputGuard guard(m_outputs, m_whenTaken);
    KXMoviePlayer player({m_preferences, m_notifications, m_launcher, guard, {}, &m_alerts});
    player.playMovie(selection);
}

} // namespace app
