#include "engines/ffmpeg/KXExtractTracksJob.h"

#include "engines/UpdateNames.h"
#include "engines/ffmpeg/ExtractionArguments.h"
#include "engines/ffmpeg/KXTrackDumper.h"
#include "media/KXVideoTrack.h"
#include "prefs/KXPreferences.h"

using namespace Qt::StringLiterals;

KXExtractTracksJob::KXExtractTracksJob(const jobs::JobContext &context)
    : KXJob(context)
{
    observe(engines::updates::extraction);
}

QList<ConverterPointer> KXExtractTracksJob::preparedSteps()
{
    const TrackList tracks = jobSelection()->trackList();
    QList<ConverterPointer> converters;
    for (qsizetype index = 0; index < tracks.size(); ++index) {
        const auto dumper = std::make_shared<KXTrackDumper>(converterContext());
        dumper->inititializeForTrackWithStepLabelKeepingTheOutput(
            index, engines::extractionLabel(*tracks.at(index)), KXConverter::Keeping::TheOutput);
        dumper->prepareForSelectionWithSaveDirectoryURL(jobSelection(), appPreferences().saveDirectoryURL());
        converters.append(dumper);
    }
    return converters;
}

void KXExtractTracksJob::startJob()
{
    setStepConverterList({});
    setStepTaskList({});
    setProgressList({});
    startInTurn(preparedSteps());
}

void KXExtractTracksJob::monitorNotifications(const KXNotification &notification)
{
    followNotification(notification, engines::updates::extraction);
}
