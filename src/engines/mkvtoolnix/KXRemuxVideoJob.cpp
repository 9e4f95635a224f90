#include "engines/mkvtoolnix/KXRemuxVideoJob.h"

#include "engines/UpdateNames.h"
#include "engines/mkvtoolnix/KXMkvReMuxer.h"
#include "prefs/KXPreferences.h"

using namespace Qt::StringLiterals;

KXRemuxVideoJob::KXRemuxVideoJob(const jobs::JobContext &context)
    : KXJob(context)
{
    observe(engines::updates::splitting); // the splitter's, on purpose
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
    followNotification(notification, engines::updates::splitting);
}
