#include "engines/EngineJobs.h"

#include "engines/KXConvertToMkvJob.h"
#include "engines/KXConvertWithFfmpegJob.h"
#include "engines/KXEditMkvJob.h"
#include "engines/KXExtractTracksJob.h"
#include "engines/KXJoinVideosJob.h"
#include "engines/KXRemuxVideoJob.h"
#include "engines/KXSendToLintwickJob.h"
#include "engines/KXSplitVideosJob.h"
#include "jobs/JobFactory.h"

namespace engines {

void registerJobs(jobs::JobFactory &factory)
{
    factory.add<KXConvertWithFfmpegJob>();
    factory.add<KXConvertToMkvJob>();
    factory.add<KXEditMkvJob>();
    factory.add<KXExtractTracksJob>();
    factory.add<KXJoinVideosJob>();
    factory.add<KXRemuxVideoJob>();
    factory.add<KXSendToLintwickJob>();
    factory.add<KXSplitVideosJob>();
}

} // namespace engines
