#include "engines/mkvtoolnix/KXConvertToMkvJob.h"

#include "engines/OutputBase.h"
#include "engines/StepPolling.h"
#include "engines/ffmpeg/FfmpegSubtitles.h"
#include "engines/mkvtoolnix/KXMkvMuxer.h"
#include "media/KXVideoTrack.h"

#include <algorithm>

using namespace Qt::StringLiterals;

KXConvertToMkvJob::KXConvertToMkvJob(const jobs::JobContext &context)
    : KXJob(context)
{
}

ConverterPointer KXConvertToMkvJob::converterFor(KXVideoTrack &track, qsizetype index, const QString &label)
{
    track.initializeForMuxing();
    if (track.userCodec().toLower() == u"passthru"_s)
        return nullptr;
    const auto converter = std::make_shared<KXFfmpegConverter>(converterContext());
    converter->inititializeForTrackWithStepLabelKeepingTheOutput(index, label,
                                                                 KXConverter::Keeping::Temporary);
    track.setMuxingTrackCodec(track.userCodec());
    track.setWasReEncoded(true);
    return converter;
}

/// One place a track; a subtitle that is not muxed gets none.
QList<ConverterPointer> KXConvertToMkvJob::makeConverters()
{
    QList<ConverterPointer> converters;
    for (qsizetype index = 0; index < theTracks().size(); ++index) {
        KXVideoTrack &track = *theTracks().at(index);
        if (track.trackType() == u"Video"_s) {
            converters.append(converterFor(track, index, u"Converting Video"_s));
        } else if (track.trackType() == u"Audio"_s) {
            converters.append(converterFor(track, index, u"Converting Audio"_s));
        } else if (engines::isSubtitle(track)) {
            track.initializeForMuxing();
            if (track.userCodec().toLower() == u"mux"_s)
                converters.append(nullptr);
        }
    }
    return converters;
}

/// The conversions with their names. A track that is converted is muxed from its own file.
QList<ConverterPointer> KXConvertToMkvJob::preparedSteps()
{
    setTheTracks(jobSelection()->trackList());
    const QList<ConverterPointer> converters = makeConverters();
    for (const ConverterPointer &converter : converters) {
        if (converter)
            static_cast<KXFfmpegConverter &>(*converter).prepareTrackItemToProcess(jobSelection());
    }
    setStepConverterList(converters);
    redirectTracks();
    return converters;
}

/// The conversions, and then the muxer, which is the step that counts.
QList<steps::Launch> KXConvertToMkvJob::planned()
{
    QList<steps::Launch> launches = planOf(preparedSteps());
    const auto muxer = makeMuxer();
    muxer->prepareFor(jobSelection());
    return launches += planOf({muxer});
}

void KXConvertToMkvJob::startJob()
{
    setStepTaskList({});
    setProgressList({});
    for (const ConverterPointer &converter : preparedSteps()) {
        if (!converter)
            continue;
        if (converter->refusal().isNull())
            m_waiting.append(static_cast<KXFfmpegConverter *>(converter.get()));
        backgroundStepStarted(converter, {});
    }
    startWaitingConversions(toolsAtOnce());
    postProgress(progressList());
    followSoon([this] { monitorStartJob(); });
}

std::shared_ptr<KXMkvMuxer> KXConvertToMkvJob::makeMuxer()
{
    const auto muxer = std::make_shared<KXMkvMuxer>(converterContext());
    muxer->setStepName(u"Muxing Tracks"_s);
    return muxer;
}

void KXConvertToMkvJob::startWaitingConversions(int most)
{
    for (int started = 0; started < most && !m_waiting.isEmpty() && !isPaused(); ++started) {
        KXFfmpegConverter *converter = m_waiting.takeFirst();
        if (!converter->startPreparedInBackground().isEmpty())
            followBackground(*converter);
    }
}

/// A converted track is taken from its own file, where it is alone. By the track that a converter works
/// on: places in the two lists need not match.
void KXConvertToMkvJob::redirectTracks()
{
    for (const ConverterPointer &converter : stepConverterList()) {
        if (!converter)
            continue;
        KXVideoTrack &track = *theTracks().at(converter->trackItemToProcess());
        track.setMuxingTrackFileURL(converter->outputFileURL());
        track.setMuxingTrackMp4boxID(u"one track"_s);
        track.setMuxingTrackMencoderID(u"one track"_s);
        track.setMuxingTrackExtension(engines::extensionOf(converter->outputFileURL()));
        track.setMuxingTrackFileExtension(engines::extensionOf(track.muxingTrackFileURL()));
        track.setTrackMkvmergeID(u"0"_s);
    }
}

QString KXConvertToMkvJob::answerOf(KXConverter *converter) const
{
    if (converter == nullptr)
        return u"Complete"_s;
    const bool waits = std::any_of(m_waiting.begin(), m_waiting.end(),
                                   [&](const KXFfmpegConverter *waiting) { return waiting == converter; });
    return waits ? u"0%"_s : engines::polled(*converter);
}

bool KXConvertToMkvJob::pollConversions(const jobs::ProgressList &previous, jobs::ProgressList &current)
{
    qsizetype finished = 0;
    const auto converters = stepConverterList();
    const qsizetype waiting = m_waiting.size();
    for (const ConverterPointer &converter : converters) {
        const QString answer = answerOf(converter.get());
        if (answer == u"Complete"_s)
            ++finished;
        if (!converter)
            continue;
        if (answer == u"Pass 1 Complete"_s) {
            auto *ffmpeg = static_cast<KXFfmpegConverter *>(converter.get());
            runOnMain([this, ffmpeg] { startPass2SelectorFor(*ffmpeg); }, Qt::BlockingQueuedConnection);
            continue;
        }
        current.append(engines::itemFor(converter->stepName(), answer, previous, current.size()));
    }
    const auto free = toolsAtOnce() - static_cast<int>(converters.size() - finished - waiting);
    if (waiting > 0 && free > 0)
        runOnMain([this, free] { startWaitingConversions(free); }, Qt::BlockingQueuedConnection);
    return finished >= converters.size();
}

void KXConvertToMkvJob::monitorStartJob()
{
    const auto cycle = [this](const jobs::ProgressList &previous, jobs::ProgressList &current) {
        return pollConversions(previous, current);
    };
    poll(firstProgress(), cycle, [this] { muxStep(); });
}

void KXConvertToMkvJob::startPass2SelectorFor(KXFfmpegConverter &converter)
{
    if (converter.lastRunFailed())
        return; // it left no statistics
    if (const auto task = converter.startSecondPass())
        addTask(task);
}

/// Says how the conversions ended; a file of which a track is missing or broken is not muxed.
bool KXConvertToMkvJob::conversionsSucceeded()
{
    bool allWell = true;
    for (const ConverterPointer &converter : stepConverterList()) {
        if (!converter)
            continue;
        const steps::Outcome outcome = outcomeOfStep(*converter);
        addOutcome(outcome);
        allWell = allWell && outcome.verdict != steps::Verdict::Failed;
    }
    setStepConverterList({});
    return allWell;
}

void KXConvertToMkvJob::muxStep()
{
    if (!conversionsSucceeded())
        return jobDone();
    setStepTaskList({});
    setProgressList({});
    const auto muxer = makeMuxer();
    setStepConverterList({muxer});
    backgroundStepStarted(muxer, muxer->startConversionFor(jobSelection()));
    setMuxStepCounter(1);
    setOldMuxProgress(0);
    followSoon([this] { monitorMuxStep(); });
}

void KXConvertToMkvJob::monitorMuxStep()
{
    setProgressStepCounter(1);
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
