#include "cli/ProbeCommand.h"

#include "cli/FileSelection.h"
#include "cli/Records.h"
#include "cli/Session.h"
#include "media/KXVideoFile.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

constexpr qsizetype longestShown = 500;

/// A title may have any length; the table shows its beginning.
QString shownTitle(const QString &title)
{
    return title.size() <= longestShown ? title : title.left(longestShown) + u'…';
}

QString trackLine(const KXVideoTrack &track)
{
    QString line = u"  %1  %2  %3  \"%4\""_s.arg(track.trackFfmpegID().rightJustified(3), track.trackInfo(),
                                                 track.trackLanguage(), shownTitle(track.trackTitle()));
    if (track.trackBitRate() != u"0"_s)
        line += u"  %1 kb/s"_s.arg(track.trackBitRate());
    return line;
}

void show(Console &console, const QString &path, const KXVideoFile &file)
{
    console.result(path);
    console.result(u"  %1 x %2, %3 frames/s, %4"_s.arg(file.theWidth(), file.theHeight(), file.theFPS(),
                                                       file.codecProfile()));
    for (const TrackPointer &track : file.trackList())
        console.result(trackLine(*track));
}

ExitStatus probeOne(Session &session, const QString &path)
{
    QString status;
    const auto file = probed(session, path, status);
    const bool isOk = status == u"OK"_s;
    if (session.isInterrupted())
        return ExitStatus::Failed;
    QJsonArray tracks;
    if (isOk) {
        for (const TrackPointer &track : file->trackList())
            tracks.append(trackRecord(*track));
    }
    session.console().object({{u"file"_s, fileRecord(*file)}, {u"tracks"_s, tracks}, {u"status"_s, status}});
    if (!isOk)
        return refused(session, {path, status, file->wayOut(), nullptr});
    show(session.console(), path, *file);
    return ExitStatus::AllWell;
}

} // namespace

ExitStatus ProbeCommand::execute(Session &session) const
{
    if (session.line().arguments().isEmpty())
        return session.wrongUsage(u"No file was named. See tessaray-cli probe --help."_s);
    ExitStatus worst = ExitStatus::AllWell;
    for (const QString &argument : session.line().arguments()) {
        worst = worse(worst, probeOne(session, absolutePath(argument)));
        if (session.isInterrupted())
            break;
    }
    return worst;
}

} // namespace cli
