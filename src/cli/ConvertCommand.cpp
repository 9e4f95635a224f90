#include "cli/ConvertCommand.h"

#include "cli/Choices.h"
#include "cli/FileSelection.h"
#include "cli/JobSubmission.h"
#include "cli/PresetChoice.h"
#include "cli/Session.h"
#include "selection/Refusals.h"

using namespace Qt::StringLiterals;
using jobs::JobKind;

namespace cli {

namespace {

TrackChoice trackChoiceOf(const CommandLine &line, const Choices &choices)
{
    TrackChoice choice{TrackChoice::Way::Preset, {}, {}};
    if (choices.tracks())
        choice = {TrackChoice::Way::ByHand, *choices.tracks(), {}};
    for (const QString &path : line.values(u"add"_s))
        choice.addedPaths.append(absolutePath(path));
    return choice;
}

bool extracts(Session &session)
{
    return app::jobTypeFor(session.program().presets()) == u"MKV Track Extraction"_s;
}

/// What the choices make of the selection; a null text, or why that can't be converted.
QString apply(const Choices &choices, bool leavesOut, KXSelection &selection)
{
    const selection::ConversionSettings settings = choices.settingsFor(selection);
    settings.writeTo(selection);
    if (leavesOut && leavesOutSubtitles(selection))
        leaveOutSubtitles(selection); // an AVI carries none, and none was asked for by name
    return selection::refusalToConvert(selection, settings);
}

} // namespace

QString ConvertCommand::example() const
{
    return u"tessaray-cli convert film.mkv --device \"iPhone 4\" --video 1pass --video-bitrate 2500 "
           "--audio 1=aac:2:160"_s;
}

QStringList ConvertCommand::options() const
{
    return {u"device"_s,          u"kind"_s,      u"video"_s,  u"video-bitrate"_s, u"width"_s,
            u"audio"_s,           u"subtitles"_s, u"tracks"_s, u"add"_s,           u"track-preset"_s,
            u"settings-preset"_s, u"force"_s,     u"verify"_s, u"dry-run"_s};
}

std::optional<jobs::JobRequest> ConvertCommand::prepared(Session &session, const QString &path,
                                                         const Choices &choices, const TrackChoice &tracks,
                                                         ExitStatus &status) const
{
    const FileSelection file = selectFile(session, path, tracks);
    if (!file.selection) {
        status = refused(session, file);
        return std::nullopt;
    }
    const QStringList missing = missingTracks(*file.selection, tracks);
    const QString error = missing.isEmpty() ? choices.errorFor(*file.selection)
                                            : u"%1 has no track %2."_s.arg(path, missing.join(u", "_s));
    if (!error.isNull()) {
        status = session.wrongUsage(error);
        return std::nullopt;
    }
    const bool leavesOut = tracks.way != TrackChoice::Way::ByHand;
    const QString refusal = extracts(session) ? selection::refusalToExtract(*file.selection)
                                              : apply(choices, leavesOut, *file.selection);
    if (!refusal.isNull()) {
        status = session.failed(u"%1: %2"_s.arg(path, refusal));
        return std::nullopt;
    }
    return jobs::requestFor(extracts(session) ? JobKind::TrackExtraction : JobKind::Conversion,
                            file.selection);
}

ExitStatus ConvertCommand::execute(Session &session) const
{
    const Choices choices(session.line());
    if (!choices.error().isNull())
        return session.wrongUsage(choices.error());
    const QString problem = choosePresets(session);
    if (!problem.isNull())
        return session.wrongUsage(problem);
    if (extracts(session) && !choices.given().isEmpty())
        return session.wrongUsage(
            u"The preset \"Extract Tracks\" converts nothing, so %1 has no place beside "
            "it."_s.arg(choices.given().join(u", "_s)));
    if (!choices.note().isNull())
        session.console().say(choices.note());
    const TrackChoice tracks = trackChoiceOf(session.line(), choices);
    return submitEachFile(session, [&](const QString &path, ExitStatus &status) {
        return prepared(session, path, choices, tracks, status);
    });
}

} // namespace cli
