#include "engines/ffmpeg/KXTrackDumper.h"

#include "engines/UpdateNames.h"
#include "engines/ffmpeg/ExtractionArguments.h"
#include "engines/ffmpeg/ExtractionFates.h"
#include "engines/ffmpeg/FfmpegOutcome.h"
#include "media/KXVideoTrack.h"
#include "platform/FileIdentity.h"
#include "prefs/KXPreferences.h"
#include "prefs/SaveFolder.h"
#include "steps/OutputGuard.h"
#include "tools/Numbers.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

KXTrackDumper::KXTrackDumper(const steps::ConverterContext &context)
    : KXConverter(context)
{
}

const KXVideoTrack *KXTrackDumper::track() const
{
    const TrackList tracks = converterSelection()->trackList();
    const bool isThere = trackItemToProcess() >= 0 && trackItemToProcess() < tracks.size();
    return isThere ? tracks.at(trackItemToProcess()).get() : nullptr;
}

/// The second file of the two has no name but this one.
bool KXTrackDumper::takesCompanion(const QUrl &companion)
{
    if (!platform::isTakenName(companion)) {
        const auto claim = context().guard.claimOutput(companion);
        if (claim.refusal.isNull() && claim.url == companion)
            return true;
    }
    refuse(u"%1 exists already, so nothing was started."_s.arg(companion.toLocalFile()));
    return false;
}

/// Names for output and log, by the base path.
bool KXTrackDumper::prepare(const QString &base, Naming naming)
{
    if (track() == nullptr) {
        refuse(u"The track to extract is not there."_s);
        return false;
    }
    const QUrl wanted = engines::extractionOutput(base, *track());
    if (naming == Naming::Intermediate)
        setOutputFileURL(context().guard.claimFree(wanted));
    else if (!claimOutput(wanted))
        return false;
    const QUrl companion = engines::extractionCompanion(outputFileURL(), *track());
    if (!isEmpty(companion) && !takesCompanion(companion))
        return false;
    claimLog(QUrl::fromLocalFile(outputFileURL().toLocalFile() + u".log"_s));
    setTempFileToDeleteURL(isTemporaryOutput() ? outputFileURL() : QUrl());
    setExtractorName(engines::isForMkvextract(*track()) ? u"mkvextractor"_s : u"ffmpeg"_s);
    return true;
}

bool KXTrackDumper::prepareForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                            const QUrl &folder)
{
    setConverterSelection(selection);
    if (track() != nullptr)
        setInputFileURL(track()->trackFileURL());
    setSaveDirectoryURL(prefs::SaveFolder(folder).forSource(selection->videoTrackFileURL()));
    const QString path = saveDirectoryURL().toLocalFile();
    return prepare((path.endsWith(u'/') ? path : path + u'/') + inputFileURL().fileName(), Naming::Output);
}

bool KXTrackDumper::prepareForSelection(const SelectionPointer &selection)
{
    initializeFor(selection);
    return prepare(outputFileURL().toLocalFile(), Naming::Output);
}

tools::ToolProcessPointer
KXTrackDumper::startConversionForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                               const QUrl &folder)
{
    return prepareForSelectionWithSaveDirectoryURL(selection, folder) ? startPrepared() : nullptr;
}

tools::ToolProcessPointer KXTrackDumper::startConversionForSelection(const SelectionPointer &selection)
{
    return prepareForSelection(selection) ? startPrepared() : nullptr;
}

QUrl KXTrackDumper::tool() const
{
    return urlOfApp(extractorName() == u"ffmpeg"_s ? u"ffmpeg"_s : u"mkvextract"_s);
}

tools::OptionList KXTrackDumper::arguments() const
{
    return extractorName() == u"ffmpeg"_s ? engines::ffmpegExtractionArguments(*track(), outputFileURL())
                                          : engines::mkvextractArguments(*track(), outputFileURL());
}

tools::OptionList KXTrackDumper::shellItems() const
{
    return extractorName() == u"ffmpeg"_s
               ? engines::ffmpegExtractionShellItems(*track(), outputFileURL(), logFileURL())
               : engines::mkvextractShellItems(*track(), outputFileURL(), logFileURL());
}

QList<steps::Launch> KXTrackDumper::launches()
{
    if (extractorName() == u"mp4box"_s)
        return {};
    return {m_isInBackground ? launchOfLine(tool(), shellItems()) : launchOf(tool(), arguments())};
}

tools::ToolProcessPointer KXTrackDumper::startPrepared()
{
    postConversionStarted();
    if (extractorName() == u"ffmpeg"_s)
        setOldProgress(u"00:00:00"_s);
    m_progress.clear();
    return runAndMonitorBinaryURLWithOptionsShouldWait(tool(), arguments(), ShouldWait::No);
}

bool KXTrackDumper::prepareInBackground(const SelectionPointer &selection)
{
    m_isInBackground = true;
    initializeFor(selection);
    setDoShell_ID({});
    if (!prepare(outputFileURL().toLocalFile(), isTemporaryOutput() ? Naming::Intermediate : Naming::Output))
        return false;
    if (engines::isForMp4box(*track()))
        setExtractorName(u"mp4box"_s); // and no tool: nothing writes such a subtitle
    return true;
}

QString KXTrackDumper::startConversionFor(const SelectionPointer &selection)
{
    return prepareInBackground(selection) ? startPreparedInBackground() : QString();
}

QString KXTrackDumper::startPreparedInBackground()
{
    if (extractorName() == u"mp4box"_s)
        return {};
    if (extractorName() == u"ffmpeg"_s)
        setOldProgress(u"00:00:00"_s);
    postConversionStarted();
    setDoShell_ID(startInBackground(tool(), shellItems()));
    return doShell_ID();
}

tools::OptionList KXTrackDumper::launchForm(const tools::OptionList &meant)
{
    return extractorName() == u"ffmpeg"_s ? engines::extractionLaunchForm(meant, outputFileURL()) : meant;
}

void KXTrackDumper::handleNewTaskResult(const steps::ReadEvent &event)
{
    const bool isProgress = event.channel == tools::ToolProcess::Channel::Error && !event.data.isEmpty() &&
                            extractorName() == u"ffmpeg"_s;
    if (isProgress && (durationInSeconds() == u"0"_s || durationInSeconds().isEmpty())) {
        if (holdsUntilDurationsAreKnown(event))
            return;
        takeDurationOf(inputFileURL());
    }
    KXConverter::handleNewTaskResult(event);
    if (!isProgress)
        return;
    const steps::FfmpegReading reading = m_progress.feed(event.data);
    takeProgress(reading);
    const QString text = QString::asprintf("%i%%", percentDone());
    post(engines::updates::extraction, text);
    if (converterSelection() && converterSelection()->jobType() == u"Send To Lintwick"_s)
        post(engines::updates::sending, text);
}

/// A VobSub is two files.
QList<QUrl> KXTrackDumper::outputFiles() const
{
    const KXVideoTrack *source = converterSelection() ? track() : nullptr;
    const QUrl companion =
        source != nullptr ? engines::extractionCompanion(outputFileURL(), *source) : QUrl();
    return isEmpty(companion) ? QList<QUrl>{outputFileURL()} : QList<QUrl>{outputFileURL(), companion};
}

/// The film of a VobSub is its index.
QList<media::MeantOutput> KXTrackDumper::meantOutputs() const
{
    const KXVideoTrack *source = converterSelection() ? track() : nullptr;
    if (source == nullptr || !refusal().isNull())
        return {};
    const TrackList notWanted = converterSelection()->keepTracksList();
    return {extractorName() == u"mp4box"_s ? engines::impossibleExtraction(*source, notWanted)
                                           : engines::extractionMeant(*source, notWanted, outputFileURL())};
}

QList<QUrl> KXTrackDumper::temporaryFiles() const
{
    return isEmpty(tempFileToDeleteURL()) ? QList<QUrl>() : outputFiles();
}

void KXTrackDumper::backgroundReadingCompleted()
{
    KXConverter::backgroundReadingCompleted();
    post(u"taskCompletion"_s, u"Complete"_s);
}

QString KXTrackDumper::monitorConversion()
{
    if (!backgroundRuns())
        return u"Complete"_s;
    if (extractorName() == u"ffmpeg"_s)
        return pollFfmpeg();
    if (extractorName() == u"mkvextractor"_s)
        return pollMkvextract();
    const QString line = lastLogLine();
    return isStringInteger(line) ? u"%1%"_s.arg(tools::leadingInteger(line)) : u"error"_s;
}

QString KXTrackDumper::pollFfmpeg()
{
    if (durationInSeconds() == u"0"_s || durationInSeconds().isEmpty())
        findDurationInSeconds();
    const QString line = lastStatusInLog();
    takeProgress({steps::timeInStatusLine(line), false, steps::bytesInStatusLine(line)});
    return QString::asprintf("%i%%", percentDone());
}

QString KXTrackDumper::pollMkvextract()
{
    const QString piece = lastLogLine().section(u": "_s, -1);
    if (piece.endsWith(u'%'))
        setOldProgress(piece);
    return oldProgress();
}

/// What ffmpeg's lines say of a run that ended so; a full disk is the reason, whatever the exit status.
steps::Outcome KXTrackDumper::outcomeBeside(const steps::Outcome &ended, const KXVideoTrack &source) const
{
    engines::FfmpegRun run;
    run.output = outputFileURL();
    run.log = toldLog();
    run.files = {inputFileURL().toLocalFile(), outputFileURL().toLocalFile()};
    run.hasVideo = source.trackType() == u"Video"_s && doShell_ID().isEmpty();
    const steps::Outcome said = engines::outcomeOfMessages(run);
    return ended.verdict == steps::Verdict::Ok || said.verdict == steps::Verdict::Failed ? said : ended;
}

steps::Outcome KXTrackDumper::outcome() const
{
    if (extractorName() == u"mp4box"_s)
        return steps::Outcome::failed(u"No tool here writes that kind of subtitle out of this container."_s);
    steps::Outcome ended = KXConverter::outcome();
    const KXVideoTrack *source = converterSelection() ? track() : nullptr;
    if (source != nullptr && refusal().isNull() && extractorName() == u"ffmpeg"_s)
        ended = outcomeBeside(ended, *source);
    if (ended.verdict != steps::Verdict::Failed || source == nullptr)
        return ended;
    return steps::Outcome::failed(u"Track %1, %2, was not written. %3"_s.arg(
        source->trackFfmpegID(), source->trackInfo(), ended.sentence));
}
