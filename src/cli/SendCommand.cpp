#include "cli/SendCommand.h"

#include "cli/FileSelection.h"
#include "cli/JobSubmission.h"
#include "cli/Session.h"

using namespace Qt::StringLiterals;

namespace cli {

QStringList SendCommand::options() const
{
    return {u"force"_s, u"verify"_s, u"dry-run"_s, u"print"_s, u"exec"_s};
}

ExitStatus SendCommand::execute(Session &session) const
{
    if (session.line().arguments().size() != 1)
        return session.wrongUsage(u"One file is sent at a time. See tessaray-cli send --help."_s);
    return submitEachFile(session, [&](const QString &path, ExitStatus &status) -> MaybeRequest {
        const FileSelection file = selectFile(session, path, {});
        if (!file.selection) {
            status = session.failed(u"%1: %2"_s.arg(path, file.refusal));
            return std::nullopt;
        }
        return jobs::requestFor(jobs::JobKind::SubtitleSending, file.selection);
    });
}

} // namespace cli
