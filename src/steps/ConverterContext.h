#pragma once

#include "platform/AlertPresenter.h"
#include "tools/ShellRunner.h"

#include <QString>
#include <QThread>

class KXNotificationCenter;
class KXPreferences;

namespace platform {
class AlertPresenter;
}

namespace steps {

class DurationLooks;
class OutputGuard;
class StepLauncher;

/// What a job hands to each of its converters. Everything in it outlives the converter.
struct ConverterContext
{
    KXPreferences &preferences;
    KXNotificationCenter &notifications;
    StepLauncher &launcher;
    OutputGuard &guard;
    QString temporaryFolder;                    ///< the job's own; ends in "/"
    platform::AlertPresenter *alerts = nullptr; ///< may be absent: then nothing is shown
    int toolsAtOnce = QThread::idealThreadCount();
    DurationLooks *durations = nullptr; ///< of the job; without one the converter has its own
    tools::StopFlag stop = nullptr;
};

} // namespace steps
