#include "cli/ConvertCommand.h"

#include "cli/Choices.h"
#include "cli/FileSelection.h"
#include "cli/JobSubmission.h"
#include "cli/Session.h"

using namespace Qt::StringLiterals;

namespace cli {

QString ConvertCommand::example() const
{
    return u"tessaray-cli convert film.mkv --device \"iPhone 4\" --video 1pass --video-bitrate 2500 "
           "--audio 1=aac:2:160"_s;
}

QStringList ConvertCommand::options() const
{
    return {u"device"_s, u"kind"_s,      u"video"_s,  u"video-bitrate"_s, u"width"_s,
            u"audio"_s,  u"subtitles"_s, u"tracks"_s, u"force"_s,         u"dry-run"_s};
}

SelectionPointer ConvertCommand::prepared(Session &session, const QString &path, const Choices &choices,
                                          ExitStatus &status) const
{
    const FileSelection file = selectFile(session, path, choices.tracks(), DefaultTracks::FirstOfEachKind);
    if (!file.selection) {
        status = session.failed(u"%1: %2"_s.arg(path, file.status));
        return nullptr;
    }
    if (choices.leavesOutSubtitles() && !choices.tracks())
        leaveOutSubtitles(*file.selection); // an AVI carries none; nobody asked for one by name
    const QStringList missing = missingTracks(*file.selection, choices.tracks());
    if (!missing.isEmpty()) {
        status = session.wrongUsage(u"%1 has no track %2."_s.arg(path, missing.join(u", "_s)));
        return nullptr;
    }
    const QString error = choices.errorFor(*file.selection);
    if (!error.isNull()) {
        status = session.wrongUsage(error);
        return nullptr;
    }
    const QString refusal = choices.refusalFor(*file.selection);
    if (!refusal.isNull()) {
        status = session.failed(u"%1: %2"_s.arg(path, refusal));
        return nullptr;
    }
    choices.applyTo(*file.selection);
    file.selection->setJobType(u"MKV Conversion"_s);
    return file.selection;
}

ExitStatus ConvertCommand::execute(Session &session) const
{
    const Choices choices(session.line());
    if (!choices.error().isNull())
        return session.wrongUsage(choices.error());
    if (!choices.note().isNull())
        session.console().say(choices.note());
    return submitEachFile(session, [&](const QString &path, ExitStatus &status) {
        return prepared(session, path, choices, status);
    });
}

} // namespace cli
