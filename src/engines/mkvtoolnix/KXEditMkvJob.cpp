#include "engines/mkvtoolnix/KXEditMkvJob.h"

#include "engines/StepPolling.h"
#include "engines/UpdateNames.h"
#include "engines/ffmpeg/ExtractionArguments.h"
#include "engines/ffmpeg/KXTrackDumper.h"
#include "engines/mkvtoolnix/KXMkvEditor.h"
#include "engines/mkvtoolnix/KXMkvMuxer.h"
#include "engines/mkvtoolnix/KXMkvReMuxer.h"
#include "engines/mkvtoolnix/SubtitleHandOver.h"
#include "media/KXVideoTrack.h"
#include "prefs/KXPreferences.h"

using namespace Qt::StringLiterals;

namespace {

} // namespace

KXEditMkvJob::KXEditMkvJob(const jobs::JobContext &context)
    : KXJob(context)
{
    for (const QString &name :
         {engines::updates::extraction, engines::updates::joining, engines::updates::splitting})
        observe(name);
}

void KXEditMkvJob::startJob()
{
    setStepTaskList({});
    setProgressList({});
    setStepConverterList({});
    setTheTracks(jobSelection()->trackList());
    setProgressStepCounter(1);
    setMuxStepCounter(1);
    setOldStepProgress(0);
    const QString type = jobSelection()->jobType();
    if (type == u"MKV Track Extraction"_s || type == u"Send To Lintwick"_s)
        return startExtraction();
    if (type == u"MKV Joining"_s)
        return startJoin();
    if (type == u"MKV Track Removal"_s)
        return startRemoval();
    if (type == u"MKV Splitting"_s)
        return startBackground(std::make_shared<KXMkvEditor>(converterContext()), u"Splitting Videos"_s);
    if (type == u"MKV Remux"_s)
        return startBackground(std::make_shared<KXMkvReMuxer>(converterContext()), u"Re-Muxing MKV"_s);
    addOutcome(steps::Outcome::failed(u"There is no job of the type \"%1\"."_s.arg(type)));
    endIfNothingRuns();
}

void KXEditMkvJob::startExtraction()
{
    QList<ConverterPointer> converters;
    for (qsizetype index = 0; index < theTracks().size(); ++index) {
        const auto dumper = std::make_shared<KXTrackDumper>(converterContext());
        dumper->setIsTemporaryOutput(false);
        dumper->inititializeForTrackWithStepLabelKeepingTheOutput(
            index, engines::extractionLabel(*theTracks().at(index)), KXConverter::Keeping::TheOutput);
        dumper->prepareForSelection(jobSelection());
        converters.append(dumper);
    }
    startInTurn(converters, [](KXConverter &converter) {
        return static_cast<KXTrackDumper &>(converter).startPrepared();
    });
}

void KXEditMkvJob::startJoin()
{
    const auto self = shared_from_this(); // looking at the files serves timers, and our row may go
    const auto editor = std::make_shared<KXMkvEditor>(converterContext());
    editor->setStepName(u"Joining Videos"_s);
    editor->setStopFlag(cancelFlag());
    startSingleStep(editor, [&] { return editor->startConversionForSelection(jobSelection()); });
}

void KXEditMkvJob::startRemoval()
{
    const auto muxer = std::make_shared<KXMkvMuxer>(converterContext());
    muxer->inititializeForTrackWithStepLabelKeepingTheOutput(0, u"Removing Tracks"_s,
                                                             KXConverter::Keeping::TheOutput);
    startBackground(muxer, u"Removing Tracks"_s);
}

void KXEditMkvJob::startBackground(const ConverterPointer &converter, const QString &label)
{
    converter->setStepName(label);
    setStepConverterList({converter});
    converter->startConversionFor(jobSelection());
    backgroundStepStarted(converter, converter->doShell_ID());
    postProgress(progressList());
    if (!context().launcher.isDryRun())
        followSoon([this] { monitorMuxStep(); });
}

void KXEditMkvJob::monitorNotifications(const KXNotification &notification)
{
    followNotification(notification, notification.name);
}

/// Whatever the operation, the step is called so, on purpose.
void KXEditMkvJob::monitorMuxStep()
{
    const auto counter = std::make_shared<engines::StepCounter>(
        [](const KXConverter &, int step) { return u"Muxing Step #%1"_s.arg(step); });
    const auto cycle = [this, counter](const jobs::ProgressList &previous, jobs::ProgressList &current) {
        const bool finished = counter->poll(stepConverterList(), previous, current);
        setMuxStepCounter(counter->step());
        return finished;
    };
    poll(firstProgress(), cycle, [this] { jobDone(); });
}

void KXEditMkvJob::monitorStartJob()
{
    const auto cycle = [this](const jobs::ProgressList &previous, jobs::ProgressList &current) {
        return engines::pollSteps(stepConverterList(), previous, current);
    };
    poll(firstProgress(), cycle, [this] {
        if (jobSelection()->jobType() == u"Send To Lintwick"_s)
            handOver();
        jobDone();
    });
}

void KXEditMkvJob::monitorStartJobWithMultipleSteps()
{
    const auto counter = std::make_shared<engines::StepCounter>([](const KXConverter &converter, int step) {
        return u"%1 Step #%2"_s.arg(converter.stepName(), QString::number(step));
    });
    const auto cycle = [this, counter](const jobs::ProgressList &previous, jobs::ProgressList &current) {
        const bool finished = counter->poll(stepConverterList(), previous, current);
        setProgressStepCounter(counter->step());
        return finished;
    };
    poll(firstProgress(), cycle, [this] { jobDone(); });
}

void KXEditMkvJob::handOver()
{
    if (stepConverterList().isEmpty() || !stepConverterList().constLast())
        return;
    const QString path = appPreferences().panelValue(u"lintwickPath"_s).toString();
    const auto problem =
        engines::handOver(context().workspace, path, stepConverterList().constLast()->outputFileURL(),
                          QUrl::fromLocalFile(jobSelection()->videoTrackFilePath()));
    if (problem)
        openAlertSheet(problem);
}
