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

using jobs::JobKind;

namespace engines {

void registerJobs(jobs::JobFactory &factory)
{
    factory.add<KXConvertWithFfmpegJob>(JobKind::Conversion);
    factory.add<KXConvertToMkvJob>(JobKind::Muxing);
    factory.add<KXEditMkvJob>(JobKind::MkvEditing);
    factory.add<KXExtractTracksJob>(JobKind::TrackExtraction);
    factory.add<KXJoinVideosJob>(JobKind::Joining);
    factory.add<KXRemuxVideoJob>(JobKind::Remux);
    factory.add<KXSendToLintwickJob>(JobKind::SubtitleSending);
    factory.add<KXSplitVideosJob>(JobKind::Splitting);
}

} // namespace engines
