#include "cli/JobSubmission.h"

#include "cli/JobRun.h"
#include "cli/RehearsalRun.h"
#include "cli/Session.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

/// Without a save folder results go next to the source, which must then be writable.
QString folderProblem(Session &session, const KXSelection &selection)
{
    if (!session.program().preferences().saveDirectoryPath().isEmpty())
        return {};
    const QFileInfo source(selection.videoTrackFilePath());
    if (QFileInfo(source.absolutePath()).isWritable())
        return {};
    return u"The application does not have permision to write to the save folder for this job. "
           "Either move the file, change the save location, or edit the permissions for the output folder."_s;
}

QList<SelectionPointer> makeSelections(Session &session, const SelectionMaker &makeSelection,
                                       ExitStatus &worst)
{
    QList<SelectionPointer> selections;
    for (const QString &argument : session.line().arguments()) {
        ExitStatus status = ExitStatus::AllWell;
        SelectionPointer selection = makeSelection(absolutePath(argument), status);
        if (session.isInterrupted())
            return {};
        if (selection) {
            const QString problem = folderProblem(session, *selection);
            if (!problem.isNull()) {
                status = session.failed(u"%1: %2"_s.arg(selection->videoTrackFilePath(), problem));
                selection.reset();
            }
        }
        if (selection)
            selections.append(selection);
        worst = worse(worst, status);
    }
    return selections;
}

ExitStatus runAll(Session &session, const QList<SelectionPointer> &selections)
{
    JobRun run(session);
    ExitStatus worst = ExitStatus::AllWell;
    for (const SelectionPointer &selection : selections) {
        if (!run.add(selection)) {
            worst = session.failed(u"%1: this version has no job for it (%2)."_s.arg(
                selection->videoTrackFilePath(), selection->jobType()));
        }
    }
    return worse(worst, run.run());
}

} // namespace

ExitStatus submitEachFile(Session &session, const SelectionMaker &makeSelection)
{
    if (session.line().arguments().isEmpty())
        return session.wrongUsage(
            u"No file was named. See tessaray-cli %1 --help."_s.arg(session.line().command()));
    const QString problem = session.saveFolderProblem();
    if (!problem.isNull())
        return session.failed(problem);
    ExitStatus worst = ExitStatus::AllWell;
    const QList<SelectionPointer> selections = makeSelections(session, makeSelection, worst);
    if (worst == ExitStatus::WrongUsage || session.isInterrupted())
        return worst;
    RehearsalRun rehearsal(session);
    const QString clash = rehearsal.clash(selections);
    if (!clash.isNull())
        return session.wrongUsage(clash);
    if (session.line().has(u"dry-run"_s))
        return rehearsal.print(selections) ? worst : worse(worst, ExitStatus::Failed);
    return worse(worst, runAll(session, selections));
}

} // namespace cli
