#include "app/Program.h"

#include "app/Environment.h"
#include "engines/EngineJobs.h"

namespace app
{

namespace
{

jobs::JobFactory makeFactory()
{
    jobs::JobFactory factory;
    engines::registerJobs(factory);
    return factory;
}

} // namespace

Program::Program(const Options &options, platform::AlertPresenter &alerts)
    : m_whenTaken(options.whenTaken)
    , m_alerts(alerts)
    , m_defaults(options.defaultsPath.isEmpty() ? platform::JsonDefaultsStore::standardPath() : options.defaultsPath)
    , m_preferences(m_defaults, {resourcesFolder(), workingFolder()})
    , m_factory(makeFactory())
    , m_queue(context(), m_factory, &m_watchMode)
{
    m_queue.initialize();
}

Program::~Program() = default;

jobs::JobContext Program::context()
{
    return contextFor(m_launcher, m_outputs);
}

jobs::JobContext Program::contextFor(step::StepLauncher &launcher, step::OutputRegistry &outputs)
{
    return {m_preferences, m_notifications, m_alerts, m_volumes, launcher, outputs, m_scratch, m_whenTaken};
}

QString Program::initialize()
{
    return m_preferences.initialize();
}

} // namespace app
