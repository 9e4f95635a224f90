#include "cli/WatchCommand.h"

#include "app/FileWork.h"
#include "cli/FinishedFiles.h"
#include "cli/PresetChoice.h"
#include "cli/Session.h"

#include <QEventLoop>
#include <QFileInfo>

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

void followProgress(Session &session, QObject *context)
{
    KXQueueController &queue = session.program().queue();
    QObject::connect(&queue, &KXQueueController::jobProgressListChanged, context, [&session, &queue] {
        QStringList steps;
        for (const jobs::ProgressItem &item : queue.jobProgressList())
            steps.append(item.step + u' ' + item.progress);
        if (queue.currentJob() && !steps.isEmpty())
            session.console().progress(queue.currentJob()->jobFileName() + u": "_s + steps.join(u", "_s),
                                       queue.currentJob()->jobFileName());
        else
            session.console().endProgress();
    });
}

/// Hands the outputs of each job on that ends well, and forgets it: a watch runs for months.
void followFiles(Session &session, FinishedFiles &files)
{
    KXQueueController &queue = session.program().queue();
    QObject::connect(&queue, &KXQueueController::jobChanged, &files,
                     [&queue, &files, taken = std::weak_ptr<KXJob>()](int row) mutable {
                         const JobPointer job = queue.qJobList().value(row);
                         if (!job || !job->hasEnded() || taken.lock() == job)
                             return;
                         taken = job;
                         files.take(*job);
                         QMetaObject::invokeMethod(&queue, &KXQueueController::clearQueueButton,
                                                   Qt::QueuedConnection);
                     });
}

} // namespace

ExitStatus WatchCommand::execute(Session &session) const
{
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
