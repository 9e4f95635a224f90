#include "engines/ffmpeg/FfmpegOutcome.h"

#include "steps/FailureCause.h"
#include "steps/ToolLog.h"
#include "tools/Numbers.h"

using namespace Qt::StringLiterals;
using steps::Outcome;

namespace engines {

namespace {

steps::ToolLog saidIn(const FfmpegRun &run)
{
    QString log = run.log;
    for (const QString &file : run.files) {
        if (!file.isEmpty())
            log.replace(file, u"the file"_s);
    }
    return steps::ToolLog(log);
}

/// The last status line counts the pictures that were written. Of a damaged AVI that can be none without a
/// word.
bool lacksPictures(const FfmpegRun &run, const steps::ToolLog &log)
{
    const QString line = log.lastStatusLine();
    return run.hasVideo && line.startsWith(u"frame="_s) && tools::leadingInteger(line.mid(6).trimmed()) == 0;
}

/// Two lines tell of a file that was cut.
QString damageSentence(const QString &line)
{
    const bool isCut = line.contains(u"File ended prematurely"_s) || line.contains(u"partial file"_s);
    const QString said = steps::FailureCause::cleaned(line);
    const QString sentence = (isCut ? u"The source ends early: "_s : u"The source seems damaged: "_s) + said;
    return sentence.endsWith(u'.') ? sentence : sentence + u'.';
}

} // namespace

Outcome outcomeOfMessages(const FfmpegRun &run)
{
    const steps::ToolLog log = saidIn(run);
    if (log.hasLineContaining(u"No space left on device"_s))
        return Outcome::failed(u"ffmpeg failed: %1"_s.arg(steps::FailureCause::noRoomFor(run.output)));
    if (log.hasLineContaining(u"Output file is empty, nothing was encoded"_s))
        return Outcome::failed(u"ffmpeg wrote only headers, and nothing of any track."_s);
    Outcome outcome = Outcome::ok();
    const QString damage = log.firstLineContaining(
        {u"File ended prematurely"_s, u"partial file"_s, u"Packet corrupt"_s, u"Packet mismatch"_s,
         u"ff asf bad header"_s, u"Error while decoding stream"_s, u"error while decoding MB"_s,
         u"corrupt decoded frame"_s, u"corrupt input packet"_s, u"invalid as first byte of an EBML number"_s,
         u"exceeds containing master element"_s, u"Invalid data found when processing input"_s});
    if (!damage.isNull())
        outcome = outcome.joinedWith(Outcome::damaged(damageSentence(damage)));
    if (lacksPictures(run, log))
        outcome =
            outcome.joinedWith(Outcome::warnings(u"There is nothing in the video track of the output."_s));
    return outcome;
}

bool hasWriteError(const FfmpegRun &run)
{
    const steps::ToolLog log = saidIn(run);
    return !log.hasLineContaining(u"frame="_s) ||
           log.hasLineContaining(u"av_interleaved_write_frame(): Invalid argument"_s);
}

bool hasTimestampError(const QString &log)
{
    return steps::ToolLog(log).hasLineContaining(u"packet with unknown timestamp"_s);
}

} // namespace engines
