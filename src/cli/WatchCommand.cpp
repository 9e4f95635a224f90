#include "cli/WatchCommand.h"

#include "app/FileWork.h"
#include "cli/FinishedFiles.h"
#include "cli/LiveLine.h"
#include "cli/PresetChoice.h"
#include "cli/Session.h"
#include "prefs/WatchStatus.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QJsonArray>

#include <memory>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

/// A null text when folder and presets are good to begin with.
QString problemWith(Session &session)
{
    const CommandLine &line = session.line();
    if (line.arguments().size() != 1)
        return u"One folder is watched. See tessaray-cli watch --help."_s;
    if (!line.has(u"track-preset"_s) || !line.has(u"settings-preset"_s))
        return u"Both --track-preset and --settings-preset are required."_s;
    if (line.value(u"track-preset"_s) == u"Manual"_s || line.value(u"settings-preset"_s) == u"Manual"_s)
        return u"With the preset \"Manual\" nothing can be watched."_s;
    return choosePresets(session);
}

void tell(Console &console, const app::WatchLog::Line &line)
{
    if (console.isJson())
        console.object({{u"event"_s, u"watch"_s},
                        {u"time"_s, line.time.toString(Qt::ISODate)},
                        {u"kind"_s, app::WatchLog::wordOf(line.kind)},
                        {u"text"_s, line.text}});
    else if (console.printsFilesOnly())
        console.say(app::WatchLog::formatted(line));
    else
        console.result(app::WatchLog::formatted(line));
}

/// Whether somebody watches is the exit status.
ExitStatus showStatus(Session &session)
{
    const CommandLine &line = session.line();
    if (line.arguments().size() != 1)
        return session.wrongUsage(u"The status of one folder is shown. See tessaray-cli watch --help."_s);
    const QString folder = absolutePath(line.arguments().constFirst());
    if (!QFileInfo(folder).isDir())
        return session.failed(u"There is no folder %1."_s.arg(folder));
    const prefs::WatchStatus status =
        prefs::watchStatusOf(folder, QFileInfo(session.program().settingsPath()).absolutePath());
    if (session.console().isJson())
        session.console().object({{u"folder"_s, status.folder},
                                  {u"watched"_s, status.isWatched()},
                                  {u"watcher"_s, status.watcher},
                                  {u"waiting"_s, status.waiting},
                                  {u"refused"_s, status.refused},
                                  {u"known"_s, status.known},
                                  {u"outputs"_s, status.outputs}});
    else
        session.console().result(status.sentence());
    return status.isWatched() ? ExitStatus::AllWell : ExitStatus::Warnings;
}

/// A film with its result, in one object.
void tellEnd(Console &console, const KXJob &job)
{
    QJsonArray outputs;
    for (const QUrl &output : job.outputs())
        outputs.append(output.toLocalFile());
    console.object({{u"event"_s, u"film"_s},
                    {u"source"_s, job.jobSelection()->videoTrackFileURL().toLocalFile()},
                    {u"result"_s, job.outcome().word()},
                    {u"sentence"_s, job.outcome().sentence},
                    {u"outputs"_s, outputs}});
}

void followProgress(Session &session, QObject *context)
{
    KXQueueController &queue = session.program().queue();
    QObject::connect(&queue, &KXQueueController::jobProgressListChanged, context, [&session, &queue] {
        const JobPointer job = queue.currentJob();
        const jobs::ProgressList &steps = queue.jobProgressList();
        if (job && !steps.isEmpty())
            session.console().progress(liveLine(*job, steps, queue.qJobList()), job->jobFileName());
        else
            session.console().endProgress();
    });
}

/// Hands the outputs of each job on that ends well, and forgets it: a watch runs for months.
void followFiles(Session &session, FinishedFiles &files)
{
    KXQueueController &queue = session.program().queue();
    QObject::connect(
        &queue, &KXQueueController::jobChanged, &files,
        [&queue, &files, &console = session.console(), last = std::weak_ptr<KXJob>()](int row) mutable {
            const JobPointer job = queue.qJobList().value(row);
            if (!job || !job->hasEnded() || last.lock() == job)
                return;
            last = job;
            if (console.isJson())
                tellEnd(console, *job);
            files.take(*job);
            QMetaObject::invokeMethod(&queue, &KXQueueController::clearQueueButton, Qt::QueuedConnection);
        });
}

} // namespace

ExitStatus WatchCommand::execute(Session &session) const
{
    if (session.line().has(u"status"_s))
        return showStatus(session);
    QString problem = problemWith(session);
    if (!problem.isNull())
        return session.wrongUsage(problem);
    const QString folder = absolutePath(session.line().arguments().constFirst());
    if (!QFileInfo(folder).isDir())
        return session.failed(u"There is no folder %1."_s.arg(folder));
    problem = session.saveFolder().refusal();
    if (!problem.isNull())
        return session.failed(problem);
    session.program().preferences().setWatchFolderURL(QUrl::fromLocalFile(folder));
    session.program().watchMode().setTakesExisting(session.line().has(u"existing"_s));
    session.program().queuePause().followRoom();
    app::FileWork files(session.program(), session.alerts());
    files.watchSession().log().keepNoLines(); // they are printed
    QEventLoop loop;
    QObject::connect(&files.watchSession().log(), &app::WatchLog::added, &loop,
                     [&session](const app::WatchLog::Line &line) { tell(session.console(), line); });
    followProgress(session, &loop);
    FinishedFiles finished(session);
    followFiles(session, finished);
    if (!files.watchSession().start()) // the log says why
        return session.failed(u"The folder %1 can't be watched."_s.arg(folder));
    // Films may be being opened, each in an event loop of its own within ours.
    QObject::connect(&session.interrupts(), &app::Interrupts::interrupted, &loop, [&] {
        files.intake().stopProbing();
        loop.quit();
    });
    if (!session.isInterrupted())
        loop.exec();
    files.intake().stopProbing();
    session.program().queue().removeAllJobs();
    session.console().endProgress();
    return finished.finish();
}

} // namespace cli
