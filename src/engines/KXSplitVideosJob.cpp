#include "engines/KXSplitVideosJob.h"

#include "engines/KXVideoSplitter.h"
#include "prefs/KXPreferences.h"

using namespace Qt::StringLiterals;

namespace {

const QString monitorName = u"monitorSplitUpdate"_s;

} // namespace

KXSplitVideosJob::KXSplitVideosJob(const jobs::JobContext &context)
    : KXJob(context)
{
    observe(monitorName);
}

void KXSplitVideosJob::startJob()
{
    const auto splitter = std::make_shared<KXVideoSplitter>(converterContext());
    splitter->setStepName(u"Splitting Videos"_s);
    startSingleStep(splitter, [&] {
        return splitter->startConversionForSelectionWithSaveDirectoryURL(jobSelection(),
                                                                         appPreferences().saveDirectoryURL());
    });
}

void KXSplitVideosJob::monitorNotifications(const KXNotification &notification)
{
    followNotification(notification, monitorName);
}
