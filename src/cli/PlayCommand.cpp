#include "cli/PlayCommand.h"

#include "cli/Choices.h"
#include "cli/FileSelection.h"
#include "cli/PresetChoice.h"
#include "cli/Session.h"
#include "platform/Keeper.h"
#include "prefs/ToolCheck.h"

using namespace Qt::StringLiterals;

namespace cli {

namespace {

/// A null text when the player is there.
QString playerProblem(Session &session)
{
    const KXPreferences &preferences = session.program().preferences();
    const prefs::ToolReport player = prefs::ToolCheck(preferences).check(u"mplayer"_s);
    return player.works() ? QString()
                          : u"mplayer %1. %2"_s.arg(prefs::describe(player.state), player.switchesOff);
}

/// No value, with a sentence, when --tracks is no list of stream indexes.
std::optional<TrackChoice> trackChoiceOf(Session &session, QString &problem)
{
    if (!session.line().has(u"tracks"_s)) {
        problem = choosePresets(session);
        return TrackChoice{TrackChoice::Way::Preset, {}, {}};
    }
    const auto tracks = trackIndexes(session.line().value(u"tracks"_s), problem);
    if (!tracks)
        return {};
    return TrackChoice{TrackChoice::Way::ByHand, *tracks, {}};
}

} // namespace

ExitStatus PlayCommand::execute(Session &session) const
{
    if (session.line().arguments().size() != 1)
        return session.wrongUsage(u"One file is played at a time. See tessaray-cli play --help."_s);
    QString problem;
    const auto choice = trackChoiceOf(session, problem);
    if (!problem.isNull())
        return session.wrongUsage(problem);
    const QString path = absolutePath(session.line().arguments().constFirst());
    const FileSelection file = selectFile(session, path, *choice);
    if (!file.selection)
        return refused(session, file);
    const QStringList missing = missingTracks(*file.selection, *choice);
    if (!missing.isEmpty())
        return session.wrongUsage(u"%1 has no track %2."_s.arg(path, missing.join(u", "_s)));
    problem = playerProblem(session);
    if (!problem.isNull())
        return session.failed(problem);
    session.program().playMovie(file.selection);
    platform::keeper::letGroupsRunOn(); // the player is what was asked for: it stays when we are done
    return ExitStatus::AllWell;
}

} // namespace cli
