#include "app/FileWork.h"

#include "app/Program.h"

namespace app {

FileWork::FileWork(Program &program, platform::AlertPresenter &alerts)
    : m_openQueue(program.selectionController())
    , m_intake({program.selectionController(), program.currentFile(), m_openQueue, program.queue(), alerts})
    , m_starter({program.preferences(), program.selectionController(), program.presets(),
                 program.currentFile(), m_openQueue, program.queue(), alerts})
    , m_watchSession({program.watchMode(), program.presets(), program.selectionController(), m_intake,
                      m_starter, program.queue(), program.notifications(), program.queuePause(),
                      program.settingsPath(), program.watchIntervals().start})
{
    QObject::connect(&m_starter, &JobStarter::finishingChanged, &m_intake,
                     [this] { m_intake.setHeld(m_starter.isFinishing()); });
}

} // namespace app
