#include "cli/FileSelection.h"

#include "cli/Session.h"
#include "media/KXVideoFile.h"
#include "selection/ConversionSettings.h"
#include "tools/Numbers.h"

using namespace Qt::StringLiterals;

namespace cli {

namespace {

/// Null when all went in.
QString addAll(Session &session, const QStringList &paths)
{
    for (const QString &path : paths) {
        const QString status = session.program().currentFile().addTrack(QUrl::fromLocalFile(path));
        if (status != u"OK"_s)
            return u"%1 can't be added: %2"_s.arg(path, status);
    }
    return {};
}

bool isTicked(const KXVideoTrack &track, const TrackChoice &choice)
{
    switch (choice.way) {
    case TrackChoice::Way::All:
        return true;
    case TrackChoice::Way::Preset:
        return track.trackSelected() || track.externalTrackFlag();
    case TrackChoice::Way::ByHand:
        break;
    }
    return track.externalTrackFlag() || choice.indexes.contains(track.trackFfmpegID());
}

void selectTracks(app::Program &program, const TrackChoice &choice)
{
    if (choice.way == TrackChoice::Way::Preset)
        program.currentFile().applyPresets();
    for (const TrackPointer &track : program.currentFile().file()->trackList())
        track->setTrackSelected(isTicked(*track, choice));
    program.selectionController().trackTableSelectionChanged(KXSelectionController::Sender::Other);
}

} // namespace

std::shared_ptr<KXVideoFile> probed(Session &session, const QString &path, QString &status)
{
    const auto file = std::make_shared<KXVideoFile>(&session.program().preferences());
    if (session.line().has(u"dry-run"_s))
        file->leaveNoErrorFiles();
    file->setStopFlag(session.interrupts().flag());
    status = file->initializeForURL(QUrl::fromLocalFile(path));
    return file;
}

FileSelection selectFile(Session &session, const QString &path, const TrackChoice &choice)
{
    FileSelection result;
    result.path = path;
    app::Program &program = session.program();
    program.currentFile().file()->setStopFlag(session.interrupts().flag());
    if (session.line().has(u"dry-run"_s))
        program.currentFile().file()->leaveNoErrorFiles();
    const QString status = program.currentFile().load(QUrl::fromLocalFile(path));
    if (status != u"OK"_s) {
        result.refusal = status;
        result.wayOut = program.currentFile().file()->wayOut();
        return result;
    }
    result.refusal = addAll(session, choice.addedPaths);
    if (!result.refusal.isNull()) {
        result.wayOut = program.currentFile().file()->wayOut();
        return result;
    }
    selectTracks(program, choice);
    result.selection = program.selectionController().currentSelection()->copy();
    return result;
}

ExitStatus refused(Session &session, const FileSelection &file)
{
    if (session.isInterrupted())
        return ExitStatus::Failed;
    session.failed(u"%1: %2"_s.arg(file.path, file.refusal));
    if (!file.wayOut.isNull())
        session.console().say(file.wayOut);
    return ExitStatus::Failed;
}

QStringList missingTracks(const KXSelection &selection, const TrackChoice &choice)
{
    QStringList missing = choice.indexes;
    for (const TrackPointer &track : selection.trackList()) {
        if (!track->externalTrackFlag())
            missing.removeAll(track->trackFfmpegID());
    }
    return missing;
}

void leaveOutSubtitles(KXSelection &selection)
{
    TrackList chosen = selection.trackList();
    const auto left = chosen.removeIf([](const TrackPointer &track) {
        return selection::isSubtitle(*track) && !track->externalTrackFlag();
    });
    selection.setTrackList(chosen);
    selection.setSubCount(QString::number(tools::leadingInteger(selection.subCount()) - left));
}

} // namespace cli
