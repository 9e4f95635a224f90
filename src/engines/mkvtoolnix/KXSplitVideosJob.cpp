#include "engines/mkvtoolnix/KXSplitVideosJob.h"

#include "engines/UpdateNames.h"
#include "engines/mkvtoolnix/KXVideoSplitter.h"
#include "prefs/KXPreferences.h"

using namespace Qt::StringLiterals;

KXSplitVideosJob::KXSplitVideosJob(const jobs::JobContext &context)
    : KXJob(context)
{
    observe(engines::updates::splitting);
}

void KXSplitVideosJob::startJob()
{
    startSingleStep(preparedSteps().constFirst());
}

QList<ConverterPointer> KXSplitVideosJob::preparedSteps()
{
    const auto splitter = std::make_shared<KXVideoSplitter>(converterContext());
    splitter->setStepName(u"Splitting Videos"_s);
    splitter->prepareForSelectionWithSaveDirectoryURL(jobSelection(), appPreferences().saveDirectoryURL());
    return {splitter};
}

void KXSplitVideosJob::monitorNotifications(const KXNotification &notification)
{
    followNotification(notification, engines::updates::splitting);
}
