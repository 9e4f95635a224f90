#include "cli/DryRunPrinter.h"

#include "app/JobPlan.h"
#include "cli/Session.h"
#include "platform/FileIdentity.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

QJsonArray wordsOf(const tools::OptionList &list)
{
    QJsonArray words;
    for (const tools::OptionItem &item : list)
        words.append(item.text());
    return words;
}

QJsonArray argumentWordsOf(const tools::OptionList &list)
{
    return QJsonArray::fromStringList(tools::argumentsOf(list));
}

QJsonObject environmentOf(const steps::Launch &launch)
{
    QJsonObject environment;
    for (const auto &[name, value] : launch.environment)
        environment.insert(name, value);
    return environment;
}

QJsonObject objectOf(const steps::Launch &launch, const KXJob &job, int number)
{
    QJsonObject object{{u"job"_s, number},
                       {u"jobType"_s, job.jobType()},
                       {u"step"_s, launch.stepName},
                       {u"pass"_s, launch.pass},
                       {u"program"_s, launch.tool.toLocalFile()},
                       {u"output"_s, launch.output.toLocalFile()},
                       {u"log"_s, launch.log.toLocalFile()}};
    if (!launch.before.isEmpty())
        object.insert(u"before"_s, QJsonArray::fromStringList(app::commandsBefore(launch)));
    if (launch.line) {
        object.insert(u"line"_s, launch.line->meant);
        object.insert(u"launchedLine"_s, app::commandOf(launch));
        return object;
    }
    object.insert(u"arguments"_s, wordsOf(launch.meant));
    if (argumentWordsOf(launch.launched) != wordsOf(launch.meant))
        object.insert(u"launched"_s, argumentWordsOf(launch.launched));
    if (!launch.environment.isEmpty())
        object.insert(u"environment"_s, environmentOf(launch));
    return object;
}

/// The jobs of the requests as a queue would make them, in a queue that never ticks.
struct Stage
{
    explicit Stage(Session &session)
        : queue(session.program().contextFor(outputs), session.program().factory(), nullptr)
    {
    }

    steps::OutputRegistry outputs;
    KXQueueController queue;
};

} // namespace

QList<JobPointer> plannedJobs(Session &session, steps::OutputRegistry &outputs,
                              const QList<jobs::JobRequest> &requests)
{
    KXQueueController queue(session.program().contextFor(outputs), session.program().factory(), nullptr);
    for (const jobs::JobRequest &request : requests)
        queue.add(request);
    return queue.qJobList();
}

DryRunPrinter::DryRunPrinter(Session &session)
    : m_session(session)
{
}

bool DryRunPrinter::print(const QList<jobs::JobRequest> &requests)
{
    Stage stage(m_session);
    for (const jobs::JobRequest &request : requests)
        stage.queue.add(request);
    bool allStart = true;
    int number = 0;
    for (const JobPointer &job : stage.queue.qJobList()) {
        ++number;
        const QList<steps::Launch> launches = job->plan();
        const QString refusal = job->startProblem();
        if (!refusal.isNull()) {
            m_session.console().say(u"%1: %2"_s.arg(job->jobFileName(), refusal));
            allStart = false;
        }
        for (const steps::Launch &launch : launches) {
            m_session.console().object(objectOf(launch, *job, number));
            for (const QString &command : app::commandsOf(launch))
                m_session.console().command(command);
        }
    }
    return allStart;
}

QString DryRunPrinter::clash(const QList<jobs::JobRequest> &requests)
{
    Stage stage(m_session);
    for (const jobs::JobRequest &request : requests)
        stage.queue.add(request);
    QHash<QString, JobPointer> owners;
    for (const JobPointer &job : stage.queue.qJobList()) {
        job->plan();
        for (const ConverterPointer &converter : job->stepConverterList()) {
            const QUrl output = converter ? converter->outputFileURL() : QUrl();
            if (output.toLocalFile().isEmpty())
                continue;
            const JobPointer other = owners.value(platform::canonicalKey(output));
            if (other && other != job)
                return u"%1 and %2 would both write %3, so nothing was started."_s.arg(
                    other->jobFileName(), job->jobFileName(), output.toLocalFile());
            owners.insert(platform::canonicalKey(output), job);
        }
    }
    return {};
}

} // namespace cli
