#pragma once

namespace jobs {
class JobFactory;
}

namespace engines {

/// Registers every job class of this room with the queue's factory.
void registerJobs(jobs::JobFactory &factory);

} // namespace engines
