#pragma once

#include "jobs/KXJob.h"

namespace platform {
class Volumes;
}

namespace app {

/// Below that many free bytes a job that needs more is paused.
constexpr qint64 littleRoom = 200'000'000;

/// What is missing on a volume before those of the jobs run that have not ended: "The results need about 1.4
/// GB, and 300 MB are free in /out." A null text where there is room, or the need or the room is not known.
QString shortageBefore(const QList<JobPointer> &jobs, const platform::Volumes &volumes);

/// Why a running job should not write on: there is little room, and less than it still needs. A null text
/// where it may.
QString shortageOf(const KXJob &running, const platform::Volumes &volumes);

} // namespace app
