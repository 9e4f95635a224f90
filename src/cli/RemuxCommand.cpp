#include "cli/RemuxCommand.h"

#include "cli/FileJobs.h"
#include "cli/JobSubmission.h"
#include "cli/Session.h"

using namespace Qt::StringLiterals;

namespace cli {

QStringList RemuxCommand::options() const
{
    return {u"force"_s, u"verify"_s, u"dry-run"_s, u"list"_s, u"print"_s, u"exec"_s};
}

ExitStatus RemuxCommand::execute(Session &session) const
{
    return submitEachFile(session, [&](const QString &path, ExitStatus &status) -> MaybeRequest {
        const QString refusal = refusalOfFile(path);
        if (refusal.isNull())
            return requestForFiles(jobs::JobKind::Remux, {path});
        status = session.failed(u"%1: %2"_s.arg(path, refusal));
        return std::nullopt;
    });
}

} // namespace cli
