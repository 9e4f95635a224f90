#include "cli/RemoveCommand.h"

#include "cli/Choices.h"
#include "cli/FileSelection.h"
#include "cli/JobSubmission.h"
#include "cli/Session.h"
#include "media/KXVideoFile.h"
#include "selection/Refusals.h"

using namespace Qt::StringLiterals;

namespace cli {

QStringList RemoveCommand::options() const
{
    return {u"tracks"_s, u"force"_s, u"verify"_s, u"dry-run"_s, u"print"_s, u"exec"_s};
}

ExitStatus RemoveCommand::execute(Session &session) const
{
    if (session.line().arguments().size() != 1 || !session.line().has(u"tracks"_s))
        return session.wrongUsage(
            u"One file, and with --tracks what is to go. See tessaray-cli remove --help."_s);
    QString error;
    const auto tracks = trackIndexes(session.line().value(u"tracks"_s), error);
    if (!tracks)
        return session.wrongUsage(error);
    const TrackChoice choice{TrackChoice::Way::ByHand, *tracks, {}};
    return submitEachFile(session, [&](const QString &path, ExitStatus &status) -> MaybeRequest {
        const FileSelection file = selectFile(session, path, choice);
        if (!file.selection) {
            status = session.failed(u"%1: %2"_s.arg(path, file.refusal));
            return std::nullopt;
        }
        const QStringList missing = missingTracks(*file.selection, choice);
        const QString refusal = missing.isEmpty() ? selection::refusalToRemove(*file.selection)
                                                  : u"There is no track %1."_s.arg(missing.join(u", "_s));
        if (!refusal.isNull()) {
            status = session.wrongUsage(u"%1: %2"_s.arg(path, refusal));
            return std::nullopt;
        }
        session.program().currentFile().file()->takeFlagsOfSource(); // what stays, stays as it was
        return jobs::requestFor(jobs::JobKind::MkvEditing, file.selection);
    });
}

} // namespace cli
