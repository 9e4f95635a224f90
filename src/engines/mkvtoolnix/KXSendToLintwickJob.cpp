#include "engines/mkvtoolnix/KXSendToLintwickJob.h"

#include "engines/UpdateNames.h"
#include "engines/ffmpeg/FfmpegSubtitles.h"
#include "engines/ffmpeg/KXTrackDumper.h"
#include "engines/mkvtoolnix/SubtitleHandOver.h"
#include "prefs/KXPreferences.h"
#include "selection/Refusals.h"

#include <algorithm>

using namespace Qt::StringLiterals;

KXSendToLintwickJob::KXSendToLintwickJob(const jobs::JobContext &context)
    : KXJob(context)
{
    observe(engines::updates::sending);
}

QList<ConverterPointer> KXSendToLintwickJob::preparedSteps()
{
    const TrackList tracks = jobSelection()->trackList();
    const auto subtitle = std::find_if(tracks.begin(), tracks.end(),
                                       [](const TrackPointer &track) { return engines::isSubtitle(*track); });
    if (subtitle == tracks.end()) {
        addOutcome(steps::Outcome::failed(selection::refusalToSend(*jobSelection())));
        return {};
    }
    const auto dumper = std::make_shared<KXTrackDumper>(converterContext());
    dumper->inititializeForTrackWithStepLabelKeepingTheOutput(
        subtitle - tracks.begin(), u"Extracting Subtitle Track"_s, KXConverter::Keeping::TheOutput);
    dumper->prepareForSelectionWithSaveDirectoryURL(jobSelection(), appPreferences().saveDirectoryURL());
    return {dumper};
}

void KXSendToLintwickJob::startJob()
{
    const QList<ConverterPointer> steps = preparedSteps();
    if (!steps.isEmpty())
        return startSingleStep(steps.constFirst());
    setStepConverterList({});
    setProgressList({});
    endIfNothingRuns();
}

void KXSendToLintwickJob::monitorNotifications(const KXNotification &notification)
{
    followNotification(notification, engines::updates::sending);
}

/// A subtitle that was not written is nothing to send.
void KXSendToLintwickJob::published()
{
    if (!outputs().isEmpty())
        handOver();
}

/// On the main thread, and before the job says that it is done.
void KXSendToLintwickJob::handOver()
{
    const QString path = appPreferences().panelValue(u"lintwickPath"_s).toString();
    const auto problem = engines::handOver(context().workspace, path, outputs().constFirst(),
                                           QUrl::fromLocalFile(jobSelection()->videoTrackFilePath()));
    if (!problem)
        return;
    openAlertSheet(problem);
    addOutcome(steps::Outcome::failed(problem->message + u". "_s + problem->informativeText));
}
