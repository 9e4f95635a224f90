#pragma once

#include "jobs/Intervals.h"
#include "platform/AlertPresenter.h"
#include "steps/OutputGuard.h"

#include <QThread>

class KXNotificationCenter;
class KXPreferences;

namespace platform {
class AlertPresenter;
class Volumes;
class Workspace;
} // namespace platform

namespace steps {
class OutputRegistry;
class ScratchFolder;
class StepLauncher;
} // namespace steps

namespace jobs {

/// Whether finished files are held against what was meant. A test whose tools play something wants that left
/// out.
enum class Checking { Outputs, Nothing };

/// What every job is handed. There is one of each per program, and all of them outlive the jobs.
struct JobContext
{
    KXPreferences &preferences;
    KXNotificationCenter &notifications;
    platform::AlertPresenter &alerts;
    const platform::Volumes &volumes;
    platform::Workspace &workspace;
    steps::StepLauncher &launcher;
    steps::OutputRegistry &outputs;
    steps::ScratchFolder &scratch;
    steps::WhenTaken whenTaken = steps::WhenTaken::NextFreeName;
    int toolsAtOnce = QThread::idealThreadCount(); ///< of one job
    Intervals intervals = {};
    Checking checking = Checking::Outputs;
};

} // namespace jobs
