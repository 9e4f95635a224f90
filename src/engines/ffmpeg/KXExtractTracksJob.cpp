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
    followNotification(notification, engines::updates::extraction);
}
