#include "cli/JobSubmission.h"

#include "cli/DryRunPrinter.h"
#include "cli/JobRun.h"
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

QList<SelectionPointer> makeEachSelection(Session &session, const SelectionMaker &makeSelection,
                                          ExitStatus &worst)
{
    QList<SelectionPointer> selections;
    for (const QString &argument : session.line().arguments()) {
        ExitStatus status = ExitStatus::AllWell;
        const SelectionPointer selection = makeSelection(absolutePath(argument), status);
        if (session.isInterrupted())
            return {};
        if (selection)
            selections.append(selection);
        worst = worse(worst, status);
    }
    return selections;
}

QList<SelectionPointer> withWritableFolders(Session &session, const QList<SelectionPointer> &selections,
                                            ExitStatus &worst)
{
    QList<SelectionPointer> writable;
    for (const SelectionPointer &selection : selections) {
        const QString problem = folderProblem(session, *selection);
        if (problem.isNull())
            writable.append(selection);
        else
            worst = worse(worst, session.failed(u"%1: %2"_s.arg(selection->videoTrackFilePath(), problem)));
    }
    return writable;
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
    return submit(session,
                  [&](ExitStatus &worst) { return makeEachSelection(session, makeSelection, worst); });
}

ExitStatus submit(Session &session, const SelectionsMaker &makeSelections)
{
    const QString problem = session.saveFolderProblem();
    if (!problem.isNull())
        return session.failed(problem);
    ExitStatus worst = ExitStatus::AllWell;
    const QList<SelectionPointer> selections = withWritableFolders(session, makeSelections(worst), worst);
    if (worst == ExitStatus::WrongUsage || session.isInterrupted())
        return worst;
    DryRunPrinter dryRun(session);
    const QString clash = selections.size() > 1 ? dryRun.clash(selections) : QString();
    if (!clash.isNull())
        return session.wrongUsage(clash);
    if (session.line().has(u"dry-run"_s))
        return dryRun.print(selections) ? worst : worse(worst, ExitStatus::Failed);
    return worse(worst, runAll(session, selections));
}

} // namespace cli
