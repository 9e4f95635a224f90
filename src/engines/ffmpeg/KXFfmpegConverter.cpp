#include "engines/ffmpeg/KXFfmpegConverter.h"

#include "engines/OutputBase.h"
#include "engines/UpdateNames.h"
#include "engines/ffmpeg/FfmpegArguments.h"
#include "engines/ffmpeg/FfmpegDevices.h"
#include "engines/ffmpeg/FfmpegFates.h"
#include "engines/ffmpeg/FfmpegOutcome.h"
#include "engines/ffmpeg/FfmpegSingleTrack.h"
#include "engines/ffmpeg/FfmpegSubtitles.h"
#include "media/KXVideoTrack.h"
#include "prefs/KXPreferences.h"
#include "steps/OutputGuard.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using engines::OutputKind;

namespace {

bool hasVideo(const KXSelection &selection)
{
    const TrackList tracks = selection.trackList();
    return std::any_of(tracks.begin(), tracks.end(),
                       [](const TrackPointer &track) { return track->trackType() == u"Video"_s; });
}

} // namespace

KXFfmpegConverter::KXFfmpegConverter(const steps::ConverterContext &context)
    : KXConverter(context)
{
    setConverterName(u"ffmpegConverter"_s);
    setIsTemporaryOutput(false);
    setDurationInSeconds(u"0"_s);
    setSubCanBurnList({u"srt"_s, u"ass"_s, u"ssa"_s, u"ttxt"_s});
    setFontconfigDirectoryExists(true);
}

void KXFfmpegConverter::initializeFor(const SelectionPointer &selection)
{
    KXConverter::initializeFor(selection);
    setAppName(engines::appNameForDevice(selection->theDevice()));
}

QUrl KXFfmpegConverter::wantedOutput() const
{
    const OutputKind kind = engines::outputKindNamed(appName());
    const QString device = converterSelection()->theDevice();
    if (const QString name = converterSelection()->outputName(); !name.isEmpty())
        return besideSources(QUrl::fromLocalFile(engines::pathInFolder(saveDirectoryURL(), name)));
    return besideSources(engines::outputForBase(engines::withoutExtension(outputFileURL()), kind, device));
}

/// Where that is a source, the job's own name is "a (2).mkv".
QUrl KXFfmpegConverter::besideSources(const QUrl &wanted) const
{
    const bool needsMark = context().guard.isInput(wanted) && !context().guard.takesNextFree();
    return needsMark ? steps::withMark(wanted, u" (2)"_s) : wanted;
}

void KXFfmpegConverter::prepareNames(const QUrl &wanted)
{
    const QUrl log = QUrl::fromLocalFile(logFileURL().toLocalFile() + u".log"_s);
    if (isTemporaryOutput())
        setOutputFileURL(context().guard.claimFree(wanted));
    else if (!claimOutput(wanted))
        return;
    setPasslogfileString(privateFile(u"passLog"_s, u".passlog"_s).toLocalFile());
    claimLog(log);
    setLogModifiedDateOld(QDateTime::currentDateTime());
    setTempFileToDeleteURL(isTemporaryOutput() ? outputFileURL() : QUrl());
    setMonitorCounter(0);
}

tools::ToolProcessPointer KXFfmpegConverter::startConversionForSelection(const SelectionPointer &selection)
{
    return prepareConversion(selection) ? startPrepared() : nullptr;
}

bool KXFfmpegConverter::prepareConversion(const SelectionPointer &selection)
{
    initializeFor(selection);
    prepareNames(wantedOutput());
    if (!refusal().isNull())
        return false;
    engines::ConversionRequest request;
    request.kind = engines::outputKindNamed(appName());
    request.output = outputFileURL();
    request.subToBurn = subToBurnURL();
    request.passlogfile = passlogfileString();
    request.useDplii = appPreferences().panelFlag(u"useDpliiFlag"_s);
    request.moovInFront = appPreferences().panelFlag(u"moovInFrontFlag"_s);
    if (!isEmpty(subToBurnURL()))
        checkFontCache();
    engines::applyDeviceCaps(*selection, request.kind);
    const auto lists = engines::conversionLists(*selection, request);
    setOptionArray1(lists.first);
    setOptionArray2(lists.second);
    setCurrentPass(lists.currentPass);
    m_request = request;
    m_isShellLine = false;
    noteSubtitlesWithoutPlace();
    return true;
}

QList<steps::Launch> KXFfmpegConverter::launches()
{
    if (m_isShellLine)
        return {launchOfLine(urlOfApp(u"ffmpeg"_s), optionArray1())};
    QList<steps::Launch> runs{launchOf(urlOfApp(u"ffmpeg"_s), optionArray1())};
    runs.first().before = m_before;
    if (currentPass() == 1) {
        beginSecondPass();
        runs.append(launchOf(urlOfApp(u"ffmpeg"_s), optionArray2()));
    }
    return runs;
}

tools::ToolProcessPointer KXFfmpegConverter::startPrepared()
{
    postConversionStarted();
    const auto task =
        runAndMonitorBinaryURLWithOptionsShouldWait(urlOfApp(u"ffmpeg"_s), optionArray1(), ShouldWait::No);
    setOldProgress(u"00:00:00"_s);
    return task;
}

/// An AVI carries no subtitles; a user who chose one is told.
void KXFfmpegConverter::noteSubtitlesWithoutPlace()
{
    if (engines::outputKindNamed(appName()) != OutputKind::Avi || !isEmpty(subToBurnURL()))
        return;
    for (const TrackPointer &track : converterSelection()->trackList()) {
        if (!engines::isSubtitle(*track) || track->userCodec() != u"mux"_s)
            continue;
        const QString name = track->externalTrackFlag()
                                 ? u"the subtitle "_s + track->trackFileURL().fileName()
                                 : u"track "_s + track->trackFfmpegID();
        m_warnings.append(QString(u"An AVI carries no subtitles, so "_s + name + u" was left out."_s));
    }
}

void KXFfmpegConverter::beginSecondPass()
{
    setCurrentPass(2);
    m_repeatsFirstPass = false;
    m_isShellLine = false;
    m_startsSecondPass = true;
}

tools::ToolProcessPointer KXFfmpegConverter::startSecondPass()
{
    beginSecondPass();
    m_progress.clear();
    m_secondPassPercent = percentDone();
    const auto task =
        runAndMonitorBinaryURLWithOptionsShouldWait(urlOfApp(u"ffmpeg"_s), optionArray2(), ShouldWait::No);
    m_secondPassRuns = task != nullptr;
    return task;
}

tools::ToolProcessPointer KXFfmpegConverter::startTimeStampRetry()
{
    tools::OptionList list = optionArray1();
    list.prepend(u"genpts");
    list.prepend(u"-fflags");
    setOptionArray1(list);
    m_repeatsFirstPass = currentPass() == 2;
    m_generatesTimestamps = true;
    m_isShellLine = false;
    m_startsSecondPass = false;
    m_progress.clear();
    return runAndMonitorBinaryURLWithOptionsShouldWait(urlOfApp(u"ffmpeg"_s), optionArray1(), ShouldWait::No);
}

QString KXFfmpegConverter::startConvertingTrackItemToProcess(const SelectionPointer &selection)
{
    return prepareTrackItemToProcess(selection) ? startPreparedInBackground() : QString();
}

bool KXFfmpegConverter::prepareTrackItemToProcess(const SelectionPointer &selection)
{
    initializeFor(selection);
    const TrackList tracks = selection->trackList();
    if (trackItemToProcess() < 0 || trackItemToProcess() >= tracks.size()) {
        refuse(u"The track to convert is not there."_s);
        return false;
    }
    const KXVideoTrack &track = *tracks.at(trackItemToProcess());
    const QString suffix = engines::singleTrackSuffix(track);
    // No device has a file extension of its own here, "Xbox" included.
    const OutputKind kind = engines::outputKindNamed(appName());
    prepareNames(
        besideSources(engines::outputForBase(engines::withoutExtension(outputFileURL()) + suffix, kind, {})));
    if (!refusal().isNull())
        return false;
    const auto lists = engines::singleTrackLists(*selection, track, outputFileURL(), logFileURL());
    setOptionArray1(lists.first);
    setOptionArray2(lists.second);
    setCurrentPass(lists.currentPass);
    m_request.reset();
    m_isShellLine = true;
    return true;
}

QString KXFfmpegConverter::startPreparedInBackground()
{
    postConversionStarted();
    setDoShell_ID(startInBackground(urlOfApp(u"ffmpeg"_s), optionArray1()));
    setOldProgress(u"00:00:00"_s);
    return doShell_ID();
}

/// The copy keeps its content whatever its format; only its name ends in ".ass".
QUrl KXFfmpegConverter::fileToBurn(const QUrl &subtitle) const
{
    const QString path = subtitle.toLocalFile();
    if (!subCanBurnList().contains(QFileInfo(path).suffix().toLower()))
        return {};
    return engines::filterCanTake(path) ? subtitle : copyToBurn();
}

/// Beside an output whose path a filter can't take either, a plan has no place for it.
QUrl KXFfmpegConverter::copyToBurn() const
{
    const QUrl copy = privateFile(u"temp.ass"_s, u".ass"_s);
    const bool isOutOfPlace = context().guard.isPlan() && !engines::filterCanTake(copy.toLocalFile());
    return isOutOfPlace ? QUrl::fromLocalFile(QDir::tempPath() + u"/tessaray-temp.ass"_s) : copy;
}

void KXFfmpegConverter::planBurning(const QUrl &subtitle)
{
    const QUrl file = fileToBurn(subtitle);
    setSubToBurnURL(file);
    m_before.clear();
    if (!isEmpty(file) && file != subtitle)
        m_before.append({{u"cp"_s, u"--"_s, subtitle.toLocalFile(), file.toLocalFile()}, {}});
}

void KXFfmpegConverter::prepSubtitleForBurning(const QUrl &subtitle)
{
    const QUrl file = fileToBurn(subtitle);
    const bool isCopy = !isEmpty(file) && file != subtitle;
    setSubToBurnURL(isCopy && !context().guard.files().copy(subtitle, file) ? subtitle : file);
}

tools::OptionList KXFfmpegConverter::launchForm(const tools::OptionList &meant)
{
    const OutputKind kind = engines::outputKindNamed(appName());
    engines::LaunchFacts facts = engines::launchFactsOf(*converterSelection(), kind);
    facts.isSecondPass = m_startsSecondPass;
    facts.isShellLine = m_isShellLine;
    facts.generatesTimestamps = m_generatesTimestamps;
    facts.passlogfile = passlogfileString();
    const TrackPointer single =
        m_request ? nullptr : converterSelection()->trackList().value(trackItemToProcess());
    if (single)
        facts.singleStream = single->streamIndex();
    const engines::LaunchForm form = engines::ffmpegLaunchForm(meant, facts);
    for (const QString &warning : form.warnings) {
        if (!m_warnings.contains(warning))
            m_warnings.append(warning);
    }
    return form.list;
}

/// A subtitle that was extracted for the picture stands within a filter's text, where its path is taken as it
/// is.
tools::OptionList KXFfmpegConverter::workingAside(const tools::OptionList &list) const
{
    const QUrl file = fileOf(subToBurnURL());
    tools::OptionList aside = KXConverter::workingAside(list);
    if (isEmpty(subToBurnURL()) || file == subToBurnURL())
        return aside;
    for (tools::OptionItem &item : aside)
        item = item.withPathReplaced(subToBurnURL().toLocalFile(), file.toLocalFile());
    return aside;
}

bool KXFfmpegConverter::fontCacheIsThere() const
{
    return directoryPathIsNotEmptyFor(u"~/.fontconfig"_s) ||
           directoryPathIsNotEmptyFor(u"/opt/local/var/cache/fontconfig"_s);
}

void KXFfmpegConverter::checkFontCache()
{
    const bool isThere = fontCacheIsThere();
    setFontconfigDirectoryExists(isThere);
    setFontconfigIsRebuilding(!isThere);
}

bool KXFfmpegConverter::goesByDuration(const steps::ReadEvent &event) const
{
    return event.channel == tools::ToolProcess::Channel::Error && !event.data.isEmpty() &&
           durationInSeconds() == u"0"_s && (isEmpty(subToBurnURL()) || fontCacheIsThere());
}

void KXFfmpegConverter::handleNewTaskResult(const steps::ReadEvent &event)
{
    if (goesByDuration(event)) {
        if (holdsUntilDurationsAreKnown(event))
            return;
        takeDurationOf(inputFileURL());
    }
    KXConverter::handleNewTaskResult(event);
    if (event.channel != tools::ToolProcess::Channel::Error || event.data.isEmpty())
        return;
    const steps::FfmpegReading reading = m_progress.feed(event.data);
    takeProgress(reading);
    m_secondPassPercent = percentDone();
    if (!isEmpty(subToBurnURL()) && !fontCacheIsThere()) {
        post(engines::updates::conversion, u"Initializing Fontconfig"_s);
        return;
    }
    postProgress(reading);
}

void KXFfmpegConverter::postProgress(const steps::FfmpegReading &reading)
{
    if (!reading.time.isNull()) {
        setFontconfigDirectoryExists(true);
        setFontconfigIsRebuilding(false);
    } else if (reading.movesMoov) {
        post(engines::updates::conversion, u"moving moov atom"_s);
        return;
    }
    const int percent = percentDone();
    const bool twoPasses = converterSelection() && converterSelection()->userPassNumber() == u"2"_s;
    const int pass = m_repeatsFirstPass ? 1 : currentPass();
    post(engines::updates::conversion,
         twoPasses ? QString::asprintf("Pass #%i %i%%", pass, percent) : QString::asprintf("%i%%", percent));
}

/// A run that ended well has every packet written, whatever a title in its log says.
bool KXFfmpegConverter::asksForTimestamps() const
{
    const auto task = converterTask();
    const bool endedWell = task && task->exitStatus() == 0;
    return !endedWell && engines::hasTimestampError(logString());
}

/// An interrupted first pass leaves these behind; all else in the folder goes with the job.
void KXFfmpegConverter::removeInterruptedStatistics()
{
    for (const QString &ending : {u"-0.log.temp"_s, u"-0.log.mbtree.temp"_s})
        context().guard.files().remove(QUrl::fromLocalFile(passlogfileString() + ending));
}

void KXFfmpegConverter::backgroundReadingCompleted()
{
    KXConverter::backgroundReadingCompleted();
    m_secondPassRuns = false;
    if (currentPass() == 1) {
        setOldProgress(u"00:00:00"_s);
        post(u"taskCompletion"_s, u"Pass 1 Complete"_s);
        return;
    }
    if (currentPass() == 2)
        removeInterruptedStatistics();
    if (asksForTimestamps()) {
        post(u"taskCompletion"_s, u"timestamp error"_s);
        return;
    }
    if (m_repeatsFirstPass) {
        setOldProgress(u"00:00:00"_s);
        post(u"taskCompletion"_s, u"Pass 1 Complete"_s); // else the output would never be written
        return;
    }
    setConversionError(!logString().contains(u"frame="_s) ||
                       logString().contains(u"av_interleaved_write_frame(): Invalid argument"_s));
    post(u"taskCompletion"_s, u"Complete"_s);
}

QList<media::MeantOutput> KXFfmpegConverter::meantOutputs() const
{
    if (!converterSelection() || !refusal().isNull())
        return {};
    if (m_request) {
        engines::ConversionRequest request = *m_request;
        request.output = outputFileURL();
        return {engines::conversionOutput(*converterSelection(), request)};
    }
    const TrackPointer track = converterSelection()->trackList().value(trackItemToProcess());
    if (!track)
        return {};
    return {engines::singleTrackOutput(*track, engines::outputKindNamed(appName()), outputFileURL())};
}

QStringList KXFfmpegConverter::namesInLog() const
{
    QStringList names{inputFileURL().toLocalFile(), outputFileURL().toLocalFile()};
    if (converterSelection()) {
        for (const QUrl &file : engines::externalFiles(converterSelection()->trackList()))
            names.append(file.toLocalFile());
    }
    return names;
}

/// The second pass of a single track is a process of ours: the id that the first one left is history.
QString KXFfmpegConverter::monitorConversion()
{
    if (currentPass() != 2 || doShell_ID().isEmpty())
        return KXConverter::monitorConversion();
    if (!m_secondPassRuns)
        return u"Complete"_s;
    return QString::asprintf("%i%%", m_secondPassPercent.load());
}

steps::Outcome KXFfmpegConverter::outcome() const
{
    if (!refusal().isNull())
        return steps::Outcome::failed(refusal());
    engines::FfmpegRun run;
    run.output = outputFileURL();
    run.log = toldLog();
    run.files = namesInLog();
    run.hasVideo = converterSelection() && hasVideo(*converterSelection()) && doShell_ID().isEmpty();
    steps::Outcome ended = outcomeOfTool();
    // The mark counts words anywhere in the log, also in names and titles, so it is looked at again.
    if (ended.verdict != steps::Verdict::Failed && run.hasVideo && conversionError() &&
        engines::hasWriteError(run))
        ended = steps::Outcome::failed(u"ffmpeg wrote no picture."_s);
    const steps::Outcome said = engines::outcomeOfMessages(run);
    if (said.verdict == steps::Verdict::Failed)
        return said; // tells why, whatever the exit status is
    if (ended.verdict == steps::Verdict::Failed)
        return ended;
    ended = ended.joinedWith(said);
    for (const QString &warning : m_warnings)
        ended = ended.joinedWith(steps::Outcome::warnings(warning));
    return ended;
}
