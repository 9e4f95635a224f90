#pragma once

namespace jobs {
class JobFactory;
}

namespace engines {

/// Registers every job class of this module with the queue's factory.
void registerJobs(jobs::JobFactory &factory);

} // namespace engines
