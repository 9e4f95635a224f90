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
        converters.append(dumper);
    }
    setStepConverterList(converters);
    for (const ConverterPointer &converter : std::as_const(converters)) {
        const auto task = converter->startConversionForSelectionWithSaveDirectoryURL(
            jobSelection(), appPreferences().saveDirectoryURL());
        stepStarted(converter, task);
    }
    postProgress(progressList());
    endIfNothingRuns();
}

void KXExtractTracksJob::monitorNotifications(const KXNotification &notification)
{
    followNotification(notification, monitorName);
}
