#pragma once

namespace jobs {

/// How often a queue and its jobs look at things when nothing happens, in milliseconds: the slowest pace. The
/// end of a tool, the end of a job and an addition to the queue are acted on when they happen.
struct Intervals
{
    int tick = 1000;     ///< of the queue
    int poll = 500;      ///< of the loop that follows the steps of a job
    int firstPoll = 100; ///< from the start of a step to the loop that follows it
    int flash = 1000;    ///< of a progress item that blinks
};

} // namespace jobs
