#include "engines/ffmpeg/KXConvertWithFfmpegJob.h"

#include "engines/UpdateNames.h"
#include "engines/ffmpeg/FfmpegSubtitles.h"
#include "engines/ffmpeg/KXMetadataPadder.h"
#include "engines/ffmpeg/KXTrackDumper.h"
#include "media/KXVideoTrack.h"
#include "prefs/KXPreferences.h"
#include "selection/Refusals.h"
#include "tools/Numbers.h"

#include <QEventLoop>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int extractionPollMs = 100;

bool isText(const KXVideoTrack &track)
{
    return QStringList{u"srt"_s, u"ssa"_s, u"ass"_s, u"ttxt"_s}.contains(track.trackCodec().toLower());
}

constexpr int errorDelayMs = 100;

/// Phase answers and how they are shown.
struct Phase
{
    const char16_t *answer;
    const char16_t *step;
    const char16_t *progress;
};

constexpr Phase phases[] = {
    {u"no fontconfig 1", u"Fontconfig Cache", u"Rebuilding"},
    {u"no fontconfig 2", u"Fontconfig Cache", u""},
    {u"Moving MOOV Atom 1", u"MOOV Atom", u"Moving"},
    {u"Moving MOOV Atom 2", u"MOOV Atom", u""},
};

} // namespace

KXConvertWithFfmpegJob::KXConvertWithFfmpegJob(const jobs::JobContext &context)
    : KXJob(context)
{
    observe(engines::updates::conversion);
}

QString KXConvertWithFfmpegJob::refusal() const
{
    return selection::refusalToEncode(*jobSelection());
}

/// The converter, without names; null, with an outcome, when the job may not start.
std::shared_ptr<KXFfmpegConverter> KXConvertWithFfmpegJob::begin()
{
    setTheTracks(jobSelection()->trackList());
    setSubWasBurned(false);
    const QString refused = refusal();
    if (!refused.isNull()) {
        addOutcome(steps::Outcome::failed(refused));
        return nullptr;
    }
    const auto converter = std::make_shared<KXFfmpegConverter>(converterContext());
    converter->setStepName(u"Video Conversion"_s);
    setStepConverterList({converter});
    return converter;
}

void KXConvertWithFfmpegJob::startJob()
{
    const auto self = shared_from_this(); // a wait in here serves timers, and our row may go meanwhile
    m_converter = begin();
    if (!m_converter) {
        setProgressList({});
        return requestJobDone();
    }
    prepareSubtitles(*m_converter);
    if (!jobIsCancelled())
        startConversion(m_converter);
}

QList<steps::Launch> KXConvertWithFfmpegJob::planned()
{
    const auto converter = begin();
    if (!converter)
        return {};
    QList<steps::Launch> launches = planSubtitles(*converter);
    converter->prepareConversion(jobSelection());
    return launches += planOf({converter});
}

void KXConvertWithFfmpegJob::startConversion(const std::shared_ptr<KXFfmpegConverter> &converter)
{
    setStepTaskList({});
    setProgressList({});
    stepStarted(converter, converter->startConversionForSelection(jobSelection()));
    setFfmpegOutputURL(converter->outputFileURL());
    postProgress(progressList());
    endIfNothingRuns();
}

/// Walks up to the first subtitle that is burned; only that one is.
KXConvertWithFfmpegJob::SubtitleWork KXConvertWithFfmpegJob::subtitleWork()
{
    SubtitleWork work;
    const bool hasAny = tools::leadingInteger(jobSelection()->subCount()) >= 1;
    for (qsizetype index = 0; hasAny && index < theTracks().size(); ++index) {
        KXVideoTrack &track = *theTracks().at(index);
        track.initializeForMuxing();
        if (selection::isBurned(track)) {
            work.burned = index;
            setSubWasBurned(true);
            break;
        }
        if (engines::isSubtitle(track) && track.userCodec().toLower() == u"extract"_s &&
            !track.externalTrackFlag())
            work.extracted.append(index);
    }
    return work;
}

void KXConvertWithFfmpegJob::prepareSubtitles(KXFfmpegConverter &converter)
{
    const SubtitleWork work = subtitleWork();
    for (const qsizetype index : work.extracted) {
        if (!jobIsCancelled())
            extracted(index, KXConverter::Keeping::TheOutput);
    }
    if (work.burned && !jobIsCancelled())
        prepareBurning(converter, *work.burned);
}

/// What prepareSubtitles() would run, and what would be burned then.
QList<steps::Launch> KXConvertWithFfmpegJob::planSubtitles(KXFfmpegConverter &converter)
{
    const SubtitleWork work = subtitleWork();
    QList<steps::Launch> launches;
    const auto planned = [&](qsizetype index) {
        const auto dumper = preparedDumper(index);
        if (dumper->refusal().isNull())
            launches += dumper->launches();
        return dumper->outputFileURL();
    };
    for (const qsizetype index : work.extracted)
        planned(index);
    if (!work.burned)
        return launches;
    const KXVideoTrack &track = *theTracks().at(*work.burned);
    const bool isInside = isText(track) && !track.externalTrackFlag();
    const QUrl file = isInside ? planned(*work.burned) : track.trackFileURL();
    if (isText(track))
        converter.planBurning(file);
    else
        converter.setSubToBurnURL(file);
    return launches;
}

void KXConvertWithFfmpegJob::prepareBurning(KXFfmpegConverter &converter, qsizetype index)
{
    const KXVideoTrack &track = *theTracks().at(index);
    if (!isText(track)) {
        converter.setSubToBurnURL(track.trackFileURL());
        return noteUnlessDrawn(converter, track);
    }
    const QUrl file =
        track.externalTrackFlag() ? track.trackFileURL() : extracted(index, KXConverter::Keeping::Temporary);
    converter.prepSubtitleForBurning(file);
    noteUnlessDrawn(converter, track);
    if (!isEmpty(converter.tempFileToDeleteURL()))
        setTempFilesToDeleteList(tempFilesToDeleteList() << converter.tempFileToDeleteURL());
}

/// Of added files only plain text is drawn; a user who chose another one is told.
void KXConvertWithFfmpegJob::noteUnlessDrawn(const KXFfmpegConverter &converter, const KXVideoTrack &track)
{
    const bool isDrawn = isText(track) && !isEmpty(converter.subToBurnURL());
    if (track.externalTrackFlag() && !isDrawn)
        addOutcome(steps::Outcome::warnings(
            u"The subtitle %1 can't be drawn into the picture and was left out."_s.arg(
                track.trackFileURL().fileName())));
}

std::shared_ptr<KXTrackDumper> KXConvertWithFfmpegJob::preparedDumper(qsizetype index)
{
    const auto dumper = std::make_shared<KXTrackDumper>(converterContext());
    dumper->inititializeForTrackWithStepLabelKeepingTheOutput(index, u"Extracting Subtitle"_s,
                                                              KXConverter::Keeping::Temporary);
    dumper->setIsTemporaryOutput(true);
    dumper->prepareInBackground(jobSelection());
    return dumper;
}

/// Extracts a subtitle of the source into a file beside the output and answers where it is. One that is
/// to be burned is gone with the job; one that the user wants to have stays. A failed extraction leaves
/// it missing; the conversion still runs and says so.
QUrl KXConvertWithFfmpegJob::extracted(qsizetype index, KXConverter::Keeping keeping)
{
    const auto dumper = preparedDumper(index);
    if (dumper->refusal().isNull())
        dumper->startPreparedInBackground();
    noteFilesOf(*dumper);
    waitForBackground(*dumper);
    if (jobIsCancelled())
        return dumper->outputFileURL();
    const steps::Outcome outcome = outcomeOfStep(*dumper);
    if (outcome.verdict == steps::Verdict::Failed)
        addOutcome(outcome);
    else if (keeping == KXConverter::Keeping::TheOutput)
        keepOutputOf(*dumper);
    return dumper->outputFileURL();
}

/// Keeps a window painting while it waits. A missing id counts as finished.
void KXConvertWithFfmpegJob::waitForBackground(KXConverter &converter)
{
    if (converter.doShell_ID().isEmpty())
        return;
    followBackground(converter);
    while (!jobIsCancelled() && converter.backgroundRuns()) {
        QEventLoop loop;
        connect(&converter, &KXConverter::toolEnded, &loop, &QEventLoop::quit);
        QTimer::singleShot(extractionPollMs, &loop, &QEventLoop::quit);
        loop.exec();
    }
}

void KXConvertWithFfmpegJob::monitorNotifications(const KXNotification &notification)
{
    const qsizetype index = stepOf(notification);
    if (index < 0)
        return;
    const QString label = notification.userInfo.value(u"stepName"_s).toString();
    const QString text = notification.object.toString();
    if (notification.name == u"taskCompletion"_s)
        completion(notification, index);
    else if (text.contains(u'%'))
        updateProgressWithProgressItem({index, {label, text}});
    else if (text == u"Initializing Fontconfig"_s || text == u"moving moov atom"_s)
        flashProgressWithProgressItem({index, {label, text}});
}

void KXConvertWithFfmpegJob::completion(const KXNotification &notification, qsizetype index)
{
    const QString label = notification.userInfo.value(u"stepName"_s).toString();
    const QString text = notification.object.toString();
    if (text == u"Complete"_s) {
        completeStep(index, label);
    } else if (text == u"Pass 1 Complete"_s && m_converter) {
        startPass2SelectorFor(*m_converter);
        if (!progressList().at(index).isComplete())
            updateProgressWithProgressItem({index, {label, text}});
    } else if (text == u"timestamp error"_s && m_converter) {
        retryForTimeStampError(*m_converter);
    }
    if (everyStepIsComplete())
        conversionCompleted();
}

/// A film that came out well gets its padding as a last step, where that is asked for.
void KXConvertWithFfmpegJob::conversionCompleted()
{
    if (m_padder)
        m_padder->finishPadding();
    const bool pads = !m_padder && m_converter && !m_converter->isTemporaryOutput() &&
                      KXMetadataPadder::isWantedFor(ffmpegOutputURL(), appPreferences()) &&
                      m_converter->outcome().verdict == steps::Verdict::Ok;
    if (!pads)
        return requestJobDone();
    m_padder = std::make_shared<KXMetadataPadder>(converterContext());
    setStepConverterList(stepConverterList() << m_padder);
    const auto task = m_padder->startPadding(ffmpegOutputURL());
    stepStarted(m_padder, task);
    postProgress(progressList());
    if (!task)
        conversionCompleted();
}

/// A failed first pass leaves no statistics, or those of another run: pass 2 must not run on them.
void KXConvertWithFfmpegJob::startPass2SelectorFor(KXFfmpegConverter &converter)
{
    const auto first = converter.converterTask();
    removeTask(first);
    const bool mayGoOn = !first || first->exitStatus() == 0;
    if (!mayGoOn && converter.asksForTimestamps())
        return retryForTimeStampError(converter); // else a copied picture would never come through
    const auto task = mayGoOn ? converter.startSecondPass() : nullptr;
    if (task)
        addTask(task);
    else
        completeStep(0, converter.stepName());
}

void KXConvertWithFfmpegJob::retryForTimeStampError(KXFfmpegConverter &converter)
{
    removeTask(converter.converterTask());
    const bool givesUp = ++m_retries > mostRetries;
    const auto task = givesUp ? nullptr : converter.startTimeStampRetry();
    if (task) {
        addTask(task);
        return;
    }
    if (givesUp)
        addOutcome(steps::Outcome::failed(
            u"The source has packets without timestamps, and generating them did not help."_s));
    completeStep(0, converter.stepName());
}

jobs::ProgressItem KXConvertWithFfmpegJob::itemFor(KXConverter &converter, const QString &answer,
                                                   const jobs::ProgressItem *previous, bool &adds)
{
    for (const Phase &phase : phases) {
        if (answer == QStringView(phase.answer))
            return {QString::fromUtf16(phase.step), QString::fromUtf16(phase.progress)};
    }
    auto *ffmpeg = qobject_cast<KXFfmpegConverter *>(&converter);
    if (answer == u"Pass 1 Complete"_s && ffmpeg != nullptr)
        runOnMain([this, ffmpeg] { startPass2SelectorFor(*ffmpeg); }, Qt::BlockingQueuedConnection);
    if (answer == u"timestamp error"_s) {
        adds = false;
        if (ffmpeg != nullptr)
            runOnMain([this, ffmpeg] { retryForTimeStampError(*ffmpeg); }, Qt::BlockingQueuedConnection);
    }
    if (answer == u"error"_s)
        return previous != nullptr ? *previous : jobs::ProgressItem{converter.stepName(), u""_s};
    return {converter.stepName(), answer};
}

bool KXConvertWithFfmpegJob::pollOnce(const jobs::ProgressList &previous, jobs::ProgressList &current)
{
    qsizetype finished = 0;
    const auto converters = stepConverterList();
    for (const ConverterPointer &converter : converters) {
        if (!converter) {
            ++finished;
            continue;
        }
        const QString answer = converter->monitorConversion();
        if (answer == u"Complete"_s)
            ++finished;
        const qsizetype position = current.size();
        bool adds = true;
        const auto item =
            itemFor(*converter, answer, position < previous.size() ? &previous.at(position) : nullptr, adds);
        if (adds)
            current.append(item);
    }
    return finished >= converters.size();
}

void KXConvertWithFfmpegJob::monitorStartJob()
{
    const auto cycle = [this](const jobs::ProgressList &previous, jobs::ProgressList &current) {
        return pollOnce(previous, current);
    };
    poll(firstProgress(), cycle, [this] { errorCheck(); });
}

void KXConvertWithFfmpegJob::errorCheck()
{
    for (const ConverterPointer &converter : stepConverterList()) {
        if (!converter || converter->converterName() != u"ffmpegConverter"_s || !converter->conversionError())
            continue;
        platform::Alert alert;
        alert.message = u"An error occured during the processing of this video."_s; // spelled so on purpose
        alert.informativeText = u"Check the created log file for error messages."_s;
        alert.style = platform::AlertStyle::Warning;
        const auto self = weak_from_this();
        context().alerts.show(std::make_shared<const platform::Alert>(alert), [self, this](int returnCode) {
            if (self.lock())
                handleConversionErrorReturnCode(returnCode);
        });
        requestJobDone(errorDelayMs);
        postProgress(progressList());
        return;
    }
    jobDone();
}

void KXConvertWithFfmpegJob::handleConversionErrorReturnCode(int) {}
