#include "cli/JobSubmission.h"

#include "cli/DryRunPrinter.h"
#include "cli/JobRun.h"
#include "cli/Session.h"

using namespace Qt::StringLiterals;
using jobs::JobRequest;

namespace cli {

namespace {

QList<JobRequest> makeEachRequest(Session &session, const RequestMaker &makeRequest, ExitStatus &worst)
{
    QList<JobRequest> requests;
    for (const QString &argument : session.line().arguments()) {
        ExitStatus status = ExitStatus::AllWell;
        const auto request = makeRequest(absolutePath(argument), status);
        if (session.isInterrupted())
            return {};
        if (request)
            requests.append(*request);
        worst = worse(worst, status);
    }
    return requests;
}

/// A folder of a mirrored tree is made by who mirrors it; a dry run makes none.
bool takesResult(Session &session, const KXSelection &selection)
{
    const QUrl own = selection.outputFolder();
    if (own.isEmpty())
        return session.saveFolder().takesResultsOf(selection.videoTrackFileURL());
    const bool isComing = session.line().has(u"dry-run"_s) && selection.outputName().isNull();
    return isComing || prefs::SaveFolder(own).takesResultsOf(selection.videoTrackFileURL());
}

QList<JobRequest> withWritableFolders(Session &session, const QList<JobRequest> &requests, ExitStatus &worst)
{
    QList<JobRequest> writable;
    for (const JobRequest &request : requests) {
        if (takesResult(session, *request.selection))
            writable.append(request);
        else
            worst = worse(worst, session.failed(u"%1: %2 %3"_s.arg(request.selection->videoTrackFilePath(),
                                                                   prefs::SaveFolder::notWritable(),
                                                                   prefs::SaveFolder::notWritableAdvice())));
    }
    return writable;
}

ExitStatus runAll(Session &session, const QList<JobRequest> &requests)
{
    JobRun run(session);
    ExitStatus worst = ExitStatus::AllWell;
    for (const JobRequest &request : requests) {
        if (!run.add(request)) {
            worst = session.failed(u"%1: this version has no job for it (%2)."_s.arg(
                request.selection->videoTrackFilePath(), request.selection->jobType()));
        }
    }
    return worse(worst, run.run());
}

} // namespace

ExitStatus submitEachFile(Session &session, const RequestMaker &makeRequest)
{
    if (session.line().arguments().isEmpty())
        return session.wrongUsage(
            u"No file was named. See tessaray-cli %1 --help."_s.arg(session.line().command()));
    return submit(session, [&](ExitStatus &worst) { return makeEachRequest(session, makeRequest, worst); });
}

ExitStatus submit(Session &session, const RequestsMaker &makeRequests)
{
    const QString problem = session.saveFolder().refusal();
    if (!problem.isNull())
        return session.failed(problem);
    ExitStatus worst = ExitStatus::AllWell;
    const QList<JobRequest> requests = withWritableFolders(session, makeRequests(worst), worst);
    if (worst == ExitStatus::WrongUsage || session.isInterrupted())
        return worst;
    DryRunPrinter dryRun(session);
    const QString clash = requests.size() > 1 ? dryRun.clash(requests) : QString();
    if (!clash.isNull())
        return session.wrongUsage(clash);
    if (session.line().has(u"dry-run"_s))
        return dryRun.print(requests) ? worst : worse(worst, ExitStatus::Failed);
    return worse(worst, runAll(session, requests));
}

} // namespace cli
