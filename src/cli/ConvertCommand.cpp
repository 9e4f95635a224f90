#include "cli/ConvertCommand.h"

#include "cli/ConversionRequests.h"
#include "cli/JobSubmission.h"
#include "cli/Session.h"

using namespace Qt::StringLiterals;

namespace cli {

namespace {

/// Said before anything starts, while there is time to think again.
void tellGrowth(Session &session, const QString &path, const ConversionRequest &request)
{
    const auto size = selection::estimateOf(*request.job.selection, request.film.seconds);
    if (size && size->isLarger())
        session.console().say(u"%1: %2"_s.arg(path, size->wordOfGrowth()));
}

MaybeRequest made(Session &session, ConversionRequests &requests, const QString &path, ExitStatus &status)
{
    const auto request = requests.requestFor(path, status);
    if (!request) {
        if (status == ExitStatus::Failed)
            refused(session, {path, requests.problem(), requests.wayOut(), nullptr});
        return std::nullopt;
    }
    if (request->job.kind == jobs::JobKind::Conversion)
        tellGrowth(session, path, *request);
    return request->job;
}

} // namespace

QString ConvertCommand::example() const
{
    return u"tessaray-cli convert film.mkv --device \"iPhone 4\" --video 1pass --video-bitrate 2500 "
           "--audio 1=aac:2:160"_s;
}

QStringList ConvertCommand::options() const
{
    return ConversionRequests::options() +
           QStringList{u"force"_s, u"verify"_s, u"dry-run"_s, u"list"_s, u"print"_s, u"exec"_s};
}

ExitStatus ConvertCommand::execute(Session &session) const
{
    ConversionRequests requests(session);
    if (const ExitStatus status = requests.begin(); status != ExitStatus::AllWell)
        return status;
    return submitEachFile(session, [&](const QString &path, ExitStatus &status) {
        return made(session, requests, path, status);
    });
}

} // namespace cli
