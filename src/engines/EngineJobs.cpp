#include "engines/EngineJobs.h"

#include "engines/ffmpeg/KXConvertWithFfmpegJob.h"
#include "engines/ffmpeg/KXExtractTracksJob.h"
#include "engines/join/KXJoinVideosJob.h"
#include "engines/mkvtoolnix/KXConvertToMkvJob.h"
#include "engines/mkvtoolnix/KXEditMkvJob.h"
#include "engines/mkvtoolnix/KXRemuxVideoJob.h"
#include "engines/mkvtoolnix/KXSendToLintwickJob.h"
#include "engines/mkvtoolnix/KXSplitVideosJob.h"
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
