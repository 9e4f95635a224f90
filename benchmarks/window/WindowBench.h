#pragma once

#include <QString>

namespace bench {

/// Drops a film under many names: the gaps between two heartbeats of the event loop until all are open, and
/// the memory that it took.
int drop(const QString &film, int count);
/// Progress updates, each until it is painted, while the queue holds that many jobs.
int queue(int count);
/// Steps of the wheel over a queue of that many jobs, each until it is painted.
int wheel(int count);
/// From start to a painted window beside empty Qt windows, alternating.
int startWindow(const QString &program, const QString &empty, const QString &plugins, int rounds);

} // namespace bench
