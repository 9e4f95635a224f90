#pragma once

#include "app/FileIntake.h"
#include "app/JobStarter.h"
#include "app/OpenQueue.h"
#include "app/WatchSession.h"

namespace app {

class Program;

/// The way of a file into the queue: it comes in, waits among the open files and becomes a job, by hand or
/// in watch mode. Window and command line each make one for their program; the parts know each other here.
class FileWork final
{
public:
    /// Both outlive it.
    FileWork(Program &program, platform::AlertPresenter &alerts);

    OpenQueue &openQueue() { return m_openQueue; }
    FileIntake &intake() { return m_intake; }
    JobStarter &starter() { return m_starter; }
    WatchSession &watchSession() { return m_watchSession; }

private:
    OpenQueue m_openQueue;
    FileIntake m_intake;
    JobStarter m_starter;
    WatchSession m_watchSession;
};

} // namespace app
