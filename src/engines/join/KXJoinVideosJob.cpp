#include "engines/join/KXJoinVideosJob.h"

#include "engines/UpdateNames.h"
#include "engines/join/JoinArguments.h"
#include "engines/join/KXVideoJoiner.h"
#include "prefs/KXPreferences.h"

using namespace Qt::StringLiterals;

KXJoinVideosJob::KXJoinVideosJob(const jobs::JobContext &context)
    : KXJob(context)
{
    observe(engines::updates::joining);
}

QList<ConverterPointer> KXJoinVideosJob::preparedSteps()
{
    const auto joiner = std::make_shared<KXVideoJoiner>(converterContext());
    joiner->setStepName(u"Joining Videos"_s);
    joiner->setStopFlag(cancelFlag());
    joiner->setJoinerName(
        engines::joinerFor(jobSelection()->editFilesURLsList(), fileExistsAtURL(urlOfApp(u"mp4box"_s))));
    joiner->prepareForSelectionWithSaveDirectoryURL(jobSelection(), appPreferences().saveDirectoryURL());
    return {joiner};
}

void KXJoinVideosJob::startJob()
{
    startSingleStep(preparedSteps().constFirst());
    if (jobIsCancelled() || progressList().isEmpty() || progressList().constFirst().isComplete())
        return;
    setProgressList({{u"Joining Videos"_s, u"Joining"_s}}); // a word until the first number comes
    postProgress(progressList());
}

void KXJoinVideosJob::monitorNotifications(const KXNotification &notification)
{
    followNotification(notification, engines::updates::joining);
}
