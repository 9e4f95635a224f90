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

bool isExtraction(const QString &jobType)
{
    return jobType == u"MKV Track Extraction"_s || jobType == u"Send To Lintwick"_s;
}

} // namespace

KXEditMkvJob::KXEditMkvJob(const jobs::JobContext &context)
    : KXJob(context)
    , m_look(context.preferences, toolsAtOnce())
{
    connect(&m_look, &engines::JoinLook::answered, this, &KXEditMkvJob::looked);
    connect(this, &KXJob::outcomeChanged, &m_look, &engines::JoinLook::end);
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
    const QList<ConverterPointer> steps = preparedSteps();
    const QString type = jobSelection()->jobType();
    if (isExtraction(type))
        return startInTurn(steps);
    if (steps.isEmpty())
        return endIfNothingRuns();
    if (type == u"MKV Joining"_s)
        return startJoin(steps.constFirst());
    startBackground(steps.constFirst());
}

QList<ConverterPointer> KXEditMkvJob::preparedSteps()
{
    const QString type = jobSelection()->jobType();
    if (isExtraction(type))
        return preparedExtraction();
    if (type == u"MKV Joining"_s)
        return {preparedJoin()};
    if (type == u"MKV Track Removal"_s)
        return {preparedRemoval()};
    if (type == u"MKV Splitting"_s)
        return {preparedSplit()};
    if (type == u"MKV Remux"_s)
        return {preparedRemux()};
    addOutcome(steps::Outcome::failed(u"There is no job of the type \"%1\"."_s.arg(type)));
    return {};
}

QList<ConverterPointer> KXEditMkvJob::preparedExtraction()
{
    QList<ConverterPointer> converters;
    const TrackList tracks = jobSelection()->trackList();
    for (qsizetype index = 0; index < tracks.size(); ++index) {
        const auto dumper = std::make_shared<KXTrackDumper>(converterContext());
        dumper->setIsTemporaryOutput(false);
        dumper->inititializeForTrackWithStepLabelKeepingTheOutput(
            index, engines::extractionLabel(*tracks.at(index)), KXConverter::Keeping::TheOutput);
        dumper->prepareForSelection(jobSelection());
        converters.append(dumper);
    }
    return converters;
}

ConverterPointer KXEditMkvJob::preparedJoin()
{
    const auto editor = std::make_shared<KXMkvEditor>(converterContext());
    editor->setStepName(u"Joining Videos"_s);
    editor->setStopFlag(cancelFlag());
    editor->prepareJoin(jobSelection());
    return editor;
}

ConverterPointer KXEditMkvJob::preparedRemoval()
{
    const auto muxer = std::make_shared<KXMkvMuxer>(converterContext());
    muxer->inititializeForTrackWithStepLabelKeepingTheOutput(0, u"Removing Tracks"_s,
                                                             KXConverter::Keeping::TheOutput);
    muxer->prepareFor(jobSelection());
    return muxer;
}

ConverterPointer KXEditMkvJob::preparedSplit()
{
    const auto editor = std::make_shared<KXMkvEditor>(converterContext());
    editor->setStepName(u"Splitting Videos"_s);
    editor->prepareSplit(jobSelection());
    return editor;
}

ConverterPointer KXEditMkvJob::preparedRemux()
{
    const auto remuxer = std::make_shared<KXMkvReMuxer>(converterContext());
    remuxer->setStepName(u"Re-Muxing MKV"_s);
    remuxer->prepareInBackground(jobSelection());
    return remuxer;
}

/// It is shown while its files are looked at.
void KXEditMkvJob::startJoin(const ConverterPointer &editor)
{
    if (!editor->refusal().isNull())
        return startSingleStep(editor);
    setStepConverterList({editor});
    m_look.begin(jobSelection()->editFilesURLsList());
    setProgressList({{editor->stepName(), u"0%"_s}});
    postProgress(progressList());
}

void KXEditMkvJob::looked()
{
    const auto editor = std::dynamic_pointer_cast<KXMkvEditor>(stepConverterList().value(0));
    if (!editor || jobIsCancelled())
        return;
    editor->takeLook(m_look.files());
    startSingleStep(editor);
    for (const jobs::StepTask &task : stepTaskList()) {
        if (isPaused())
            std::get<tools::ToolProcessPointer>(task)->suspend();
    }
}

void KXEditMkvJob::startBackground(const ConverterPointer &converter)
{
    setStepConverterList({converter});
    if (converter->refusal().isNull())
        converter->startPreparedInBackground();
    backgroundStepStarted(converter, converter->doShell_ID());
    postProgress(progressList());
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
        m_handsOver = jobSelection()->jobType() == u"Send To Lintwick"_s;
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

void KXEditMkvJob::published()
{
    if (m_handsOver)
        handOver();
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
