#include "cli/ExtractCommand.h"

#include "cli/Choices.h"
#include "cli/FileSelection.h"
#include "cli/JobSubmission.h"
#include "cli/Session.h"

using namespace Qt::StringLiterals;

namespace cli {

QStringList ExtractCommand::options() const
{
    return {u"tracks"_s, u"force"_s, u"dry-run"_s};
}

ExitStatus ExtractCommand::execute(Session &session) const
{
    std::optional<QStringList> tracks;
    QString error;
    if (session.line().has(u"tracks"_s))
        tracks = trackIndexes(session.line().value(u"tracks"_s), error);
    if (!error.isNull())
        return session.wrongUsage(error);
    return submitEachFile(session, [&](const QString &path, ExitStatus &status) -> SelectionPointer {
        const FileSelection file = selectFile(session, path, tracks, DefaultTracks::All);
        if (!file.selection) {
            status = session.failed(u"%1: %2"_s.arg(path, file.status));
            return nullptr;
        }
        const QStringList missing = missingTracks(*file.selection, tracks);
        if (!missing.isEmpty()) {
            status = session.wrongUsage(u"%1 has no track %2."_s.arg(path, missing.join(u", "_s)));
            return nullptr;
        }
        file.selection->setJobType(u"MKV Track Extraction"_s);
        return file.selection;
    });
}

} // namespace cli
