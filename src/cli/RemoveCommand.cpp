#include "cli/RemoveCommand.h"

#include "cli/Choices.h"
#include "cli/FileSelection.h"
#include "cli/JobSubmission.h"
#include "cli/Session.h"
#include "media/KXVideoFile.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

/// Why the tracks can't be taken out of the file; a null text when they can.
QString refusalOf(const KXSelection &selection)
{
    if (selection.videoTrackFileExtension().toLower() != u"mkv"_s)
        return u"Tracks can only be removed from MKV files."_s;
    const TrackList tracks = selection.trackList();
    const bool hasVideo = std::any_of(tracks.begin(), tracks.end(), [](const TrackPointer &track) {
        return track->trackType() == u"Video"_s;
    });
    return hasVideo ? u"A video track can't be removed."_s : QString();
}

} // namespace

QStringList RemoveCommand::options() const
{
    return {u"tracks"_s, u"force"_s, u"dry-run"_s};
}

ExitStatus RemoveCommand::execute(Session &session) const
{
    if (session.line().arguments().size() != 1 || !session.line().has(u"tracks"_s))
        return session.wrongUsage(
            u"One file, and with --tracks what is to go. See tessaray-cli remove --help."_s);
    QString error;
    const auto tracks = trackIndexes(session.line().value(u"tracks"_s), error);
    if (!tracks)
        return session.wrongUsage(error);
    const TrackChoice choice{TrackChoice::Way::ByHand, *tracks, {}};
    return submitEachFile(session, [&](const QString &path, ExitStatus &status) -> SelectionPointer {
        const FileSelection file = selectFile(session, path, choice);
        if (!file.selection) {
            status = session.failed(u"%1: %2"_s.arg(path, file.problem));
            return nullptr;
        }
        const QStringList missing = missingTracks(*file.selection, choice);
        const QString problem = missing.isEmpty() ? refusalOf(*file.selection)
                                                  : u"There is no track %1."_s.arg(missing.join(u", "_s));
        if (!problem.isNull()) {
            status = session.wrongUsage(u"%1: %2"_s.arg(path, problem));
            return nullptr;
        }
        session.program().currentFile().file()->takeFlagsOfSource(); // what stays, stays as it was
        file.selection->setJobType(u"MKV Track Removal"_s);
        return file.selection;
    });
}

} // namespace cli
