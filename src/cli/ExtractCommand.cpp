#include "cli/ExtractCommand.h"

#include "cli/Choices.h"
#include "cli/FileSelection.h"
#include "cli/JobSubmission.h"
#include "cli/Session.h"

using namespace Qt::StringLiterals;

namespace cli {

QStringList ExtractCommand::options() const
{
    return {u"tracks"_s, u"force"_s, u"verify"_s, u"dry-run"_s, u"list"_s, u"print"_s, u"exec"_s};
}

ExitStatus ExtractCommand::execute(Session &session) const
{
    TrackChoice choice;
    if (session.line().has(u"tracks"_s)) {
        QString error;
        const auto tracks = trackIndexes(session.line().value(u"tracks"_s), error);
        if (!tracks)
            return session.wrongUsage(error);
        choice = {TrackChoice::Way::ByHand, *tracks, {}};
    }
    return submitEachFile(session, [&](const QString &path, ExitStatus &status) -> MaybeRequest {
        const FileSelection file = selectFile(session, path, choice);
        if (!file.selection) {
            status = refused(session, file);
            return std::nullopt;
        }
        const QStringList missing = missingTracks(*file.selection, choice);
        if (!missing.isEmpty()) {
            status = session.wrongUsage(u"%1 has no track %2."_s.arg(path, missing.join(u", "_s)));
            return std::nullopt;
        }
        return jobs::requestFor(jobs::JobKind::TrackExtraction, file.selection);
    });
}

} // namespace cli
