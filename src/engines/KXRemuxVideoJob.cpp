#include "engines/KXRemuxVideoJob.h"

#include "engines/KXMkvReMuxer.h"
#include "prefs/KXPreferences.h"

using namespace Qt::StringLiterals;

namespace {

const QString monitorName = u"monitorSplitUpdate"_s; // the splitter's, on purpose

} // namespace

KXRemuxVideoJob::KXRemuxVideoJob(const jobs::JobContext &context)
    : KXJob(context)
{
    observe(monitorName);
}

void KXRemuxVideoJob::startJob()
{
    const auto remuxer = std::make_shared<KXMkvReMuxer>(converterContext());
    remuxer->setStepName(u"Re-Muxing MKV"_s);
    startSingleStep(remuxer, [&] {
        return remuxer->startConversionForSelectionWithSaveDirectoryURL(jobSelection(),
                                                                        appPreferences().saveDirectoryURL());
    });
}

void KXRemuxVideoJob::monitorNotifications(const KXNotification &notification)
{
    followNotification(notification, monitorName);
}
