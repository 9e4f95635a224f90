#include "engines/KXExtractTracksJob.h"

#include "engines/ExtractionArguments.h"
#include "engines/KXTrackDumper.h"
#include "media/KXVideoTrack.h"
#include "prefs/KXPreferences.h"

using namespace Qt::StringLiterals;

namespace {

const QString monitorName = u"monitorExtractionUpdate"_s;

} // namespace

KXExtractTracksJob::KXExtractTracksJob(const jobs::JobContext &context)
    : KXJob(context)
{
    observe(monitorName);
}

void KXExtractTracksJob::startJob()
{
    setStepConverterList({});
    setStepTaskList({});
    setProgressList({});
    const TrackList tracks = jobSelection()->trackList();
    QList<ConverterPointer> converters;
    for (qsizetype index = 0; index < tracks.size(); ++index) {
        const auto dumper = std::make_shared<KXTrackDumper>(converterContext());
        dumper->inititializeForTrackWithStepLabelKeepingTheOutput(
            index, engines::extractionLabel(*tracks.at(index)), KXConverter::Keeping::TheOutput);
        dumper->prepareForSelectionWithSaveDirectoryURL(jobSelection(), appPreferences().saveDirectoryURL());
        converters.append(dumper);
    }
    startInTurn(converters, [](KXConverter &converter) {
        return static_cast<KXTrackDumper &>(converter).startPrepared();
    });
}

void KXExtractTracksJob::monitorNotifications(const KXNotification &notification)
{
    followNotification(notification, monitorName);
}
