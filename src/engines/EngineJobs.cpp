#include "engines/EngineJobs.h"

#include "engines/KXConvertWithFfmpegJob.h"
#include "engines/KXExtractTracksJob.h"
#include "jobs/JobFactory.h"

namespace engines {

void registerJobs(jobs::JobFactory &factory)
{
    factory.add<KXConvertWithFfmpegJob>();
    factory.add<KXExtractTracksJob>();
}

} // namespace engines
