#include "cli/JoinCommand.h"

#include "cli/FileJobs.h"
#include "cli/JobSubmission.h"
#include "cli/Session.h"
#include "selection/Refusals.h"

using namespace Qt::StringLiterals;

namespace cli {

QStringList JoinCommand::options() const
{
    return {u"force"_s, u"verify"_s, u"dry-run"_s, u"list"_s, u"print"_s, u"exec"_s};
}

ExitStatus JoinCommand::execute(Session &session) const
{
    if (session.line().arguments().size() < 2)
        return session.wrongUsage(selection::refusalToJoin(1) + u" See tessaray-cli join --help."_s);
    QStringList paths;
    for (const QString &argument : session.line().arguments()) {
        paths.append(absolutePath(argument));
        const QString refusal = refusalOfFile(paths.constLast());
        if (!refusal.isNull())
            return session.failed(u"%1: %2"_s.arg(paths.constLast(), refusal));
    }
    return submit(session, [&](ExitStatus &) {
        return QList<jobs::JobRequest>{requestForFiles(jobs::JobKind::Joining, paths)};
    });
}

} // namespace cli
