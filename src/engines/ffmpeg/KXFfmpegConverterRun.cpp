// How ffmpeg is followed, and what its end means.
#include "engines/ffmpeg/KXFfmpegConverter.h"

#include "engines/UpdateNames.h"
#include "engines/ffmpeg/FfmpegOutcome.h"
#include "engines/ffmpeg/FfmpegSubtitles.h"
#include "media/KXVideoTrack.h"
#include "steps/OutputGuard.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

bool hasVideo(const KXSelection &selection)
{
    const TrackList tracks = selection.trackList();
    return std::any_of(tracks.begin(), tracks.end(),
                       [](const TrackPointer &track) { return track->trackType() == u"Video"_s; });
}

} // namespace

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
    if (!reading.time.isNull())
        m_lastTime = reading.time;
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
        setOldProgress(reading.time);
    } else if (reading.movesMoov) {
        post(engines::updates::conversion, u"moving moov atom"_s);
        return;
    }
    const int percent = steps::percentOfDuration(oldProgress(), durationInSeconds());
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
    return QString::asprintf("%i%%", steps::percentOfDuration(oldProgress(), durationInSeconds()));
}

steps::Outcome KXFfmpegConverter::outcome() const
{
    if (!refusal().isNull())
        return steps::Outcome::failed(refusal());
    engines::FfmpegRun run;
    run.log = logString();
    run.files = namesInLog();
    run.lastTime = m_lastTime;
    run.durationInSeconds = durationIsAssumed() ? QString() : durationInSeconds();
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
