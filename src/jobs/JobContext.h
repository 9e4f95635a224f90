#pragma once

#include "tools/step/OutputGuard.h"

#include <QThread>

class KXNotificationCenter;
class KXPreferences;

namespace platform {
class AlertPresenter;
class Volumes;
class Workspace;
} // namespace platform

namespace step {
class OutputRegistry;
class ScratchFolder;
class StepLauncher;
} // namespace step

namespace jobs {

/// What every job is handed. There is one of each per program, and all of them outlive the jobs.
struct JobContext
{
    KXPreferences &preferences;
    KXNotificationCenter &notifications;
    platform::AlertPresenter &alerts;
    const platform::Volumes &volumes;
    platform::Workspace &workspace;
    step::StepLauncher &launcher;
    step::OutputRegistry &outputs;
    step::ScratchFolder &scratch;
    step::WhenTaken whenTaken = step::WhenTaken::NextFreeName;
    int toolsAtOnce = QThread::idealThreadCount(); ///< of one job
};

} // namespace jobs
