#include "cli/ConvertCommand.h"

#include "cli/ConversionRequests.h"
#include "cli/JobSubmission.h"
#include "cli/Session.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

/// Said before anything starts, while there is time to think again. A few megabytes need no word, and a dry
/// run prints commands alone.
void tellGrowth(Session &session, const QString &path, const ConversionRequest &request)
{
    constexpr qint64 worthAWord = 10'000'000;
    const auto size = selection::estimateOf(*request.job.selection, request.film.seconds);
    if (size && size->isLarger() && size->bytes - size->sourceBytes >= worthAWord &&
        !session.line().has(u"dry-run"_s))
        session.console().say(u"%1: %2"_s.arg(path, size->wordOfGrowth()));
}

/// The root of a mirrored tree; in vain where it can't be made, which is said where it is used.
void makeRoot(const CommandLine &line)
{
    if (line.has(u"recursive"_s) && line.has(u"save-dir"_s) && !line.has(u"dry-run"_s))
        QDir().mkpath(absolutePath(line.value(u"save-dir"_s)));
}

/// A mirrored tree grows as it is needed.
bool hasItsFolder(Session &session, const KXSelection &selection)
{
    const QString folder = selection.outputFolder().toLocalFile();
    const bool isMirrored = !folder.isEmpty() && selection.outputName().isNull();
    if (!isMirrored || session.line().has(u"dry-run"_s) || QDir().mkpath(folder))
        return true;
    session.failed(u"%1: the folder %2 can't be made."_s.arg(selection.videoTrackFilePath(), folder));
    return false;
}

std::optional<jobs::JobRequest> jobOf(Session &session, const RequestedFilm &film)
{
    if (!film.request) {
        refused(session, {film.path, film.refusal, film.wayOut, nullptr});
        return std::nullopt;
    }
    if (!hasItsFolder(session, *film.request->job.selection))
        return std::nullopt;
    if (film.request->job.kind == jobs::JobKind::Conversion)
        tellGrowth(session, film.path, *film.request);
    return film.request->job;
}

QList<jobs::JobRequest> jobsOf(Session &session, ConversionRequests &requests, ExitStatus &worst)
{
    QList<jobs::JobRequest> jobs;
    const QList<RequestedFilm> films = requests.films(worst);
    if (worst == ExitStatus::WrongUsage || session.isInterrupted())
        return {};
    for (const RequestedFilm &film : films) {
        if (const auto job = jobOf(session, film))
            jobs.append(*job);
        else
            worst = worse(worst, ExitStatus::Failed);
    }
    return jobs;
}

} // namespace

QString ConvertCommand::example() const
{
    return u"tessaray-cli convert film.mkv --device \"iPhone 4\" --video 1pass --video-bitrate 2500 "
           "--audio 1=aac:2:160"_s;
}

QStringList ConvertCommand::options() const
{
    return ConversionRequests::options() + QStringList{u"dry-run"_s, u"list"_s, u"print"_s, u"exec"_s};
}

ExitStatus ConvertCommand::execute(Session &session) const
{
    ConversionRequests requests(session);
    if (const ExitStatus status = requests.begin(); status != ExitStatus::AllWell)
        return status;
    if (session.line().arguments().isEmpty())
        return session.wrongUsage(u"No file was named. See tessaray-cli convert --help."_s);
    makeRoot(session.line());
    return submit(session, [&](ExitStatus &worst) { return jobsOf(session, requests, worst); });
}

} // namespace cli
