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
    startSingleStep(preparedSteps().constFirst());
}

QList<ConverterPointer> KXRemuxVideoJob::preparedSteps()
{
    const auto remuxer = std::make_shared<KXMkvReMuxer>(converterContext());
    remuxer->setStepName(u"Re-Muxing MKV"_s);
    remuxer->prepareForSelectionWithSaveDirectoryURL(jobSelection(), appPreferences().saveDirectoryURL());
    return {remuxer};
}

void KXRemuxVideoJob::monitorNotifications(const KXNotification &notification)
{
    followNotification(notification, engines::updates::splitting);
}
