#include "summary/EditForecast.h"

#include "media/KXVideoFile.h"
#include "selection/KXSelectionController.h"
#include "summary/Figures.h"
#include "summary/TrackLook.h"
#include "tools/Numbers.h"
#include "tools/Times.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using selection::TrackEdit;

namespace summary {

namespace {

qsizetype countOf(const TrackList &tracks, bool added)
{
    return std::count_if(tracks.begin(), tracks.end(),
                         [added](const TrackPointer &track) { return track->externalTrackFlag() == added; });
}

/// "1 track goes", "2 tracks go"
QString counted(qsizetype count, const QString &one, const QString &more)
{
    return count == 1 ? one : more.arg(count);
}

/// "AC3 5.1", "H.264"
QString shortText(const KXVideoTrack &track)
{
    const QString channels =
        kindOf(track) == media::TrackKind::Audio ? channelsText(track.trackNumberOfChannels()) : QString();
    return channels.isEmpty() ? codecText(track) : codecText(track) + u' ' + channels;
}

Forecast reason(const QString &text)
{
    return {text, true};
}

Forecast removal(const KXVideoFile &film, qsizetype going)
{
    const qsizetype staying = countOf(film.trackList(), false) - going;
    return {counted(going, u"1 track goes"_s, u"%1 tracks go"_s) + u", "_s +
                counted(staying, u"1 stays"_s, u"%1 stay"_s),
            false};
}

qsizetype fileCount(const KXSelectionController &controller)
{
    return controller.currentSelection()->editFilesURLsList().size();
}

QString splitReason(const KXSelectionController &controller)
{
    if (fileCount(controller) == 0)
        return u"Drop MKV files first."_s;
    switch (controller.splitTypeMatrixIndex()) {
    case 0:
        return u"The end must lie after the start."_s;
    case 1:
        return u"Enter a size."_s;
    default:
        return u"Enter a duration."_s;
    }
}

QString jobsText(qsizetype count)
{
    return count == 1 ? u"1 job"_s : u"%1 jobs"_s.arg(count);
}

QString partsText(const KXSelectionController &controller)
{
    switch (controller.splitTypeMatrixIndex()) {
    case 0:
        return u"a part of %1"_s.arg(elapsedText(tools::secondsIn(controller.enteredSplitEndTime()) -
                                                 tools::secondsIn(controller.enteredSplitStartTime())));
    case 1:
        return u"parts of up to %1 MB"_s.arg(controller.enteredSplitSize());
    default:
        return u"parts of up to %1"_s.arg(elapsedText(tools::secondsIn(controller.enteredSplitDuration())));
    }
}

} // namespace

Forecast trackEditForecast(const KXVideoFile &film, const KXSelection &selection, TrackEdit edit)
{
    if (film.trackList().isEmpty())
        return reason(u"Open an MKV file first."_s);
    if (film.theFileExtension() != u"mkv"_s)
        return reason(u"This is no MKV file."_s);
    const TrackList ticked = selection.trackList();
    if (edit == TrackEdit::Add && countOf(film.trackList(), true) == 0)
        return reason(u"Add tracks first."_s);
    if (ticked.isEmpty())
        return reason(u"Nothing is ticked."_s);
    const bool hasVideo = std::any_of(ticked.begin(), ticked.end(),
                                      [](const TrackPointer &track) { return selection::isVideo(*track); });
    if (edit == TrackEdit::Remove && hasVideo)
        return reason(u"The video track can’t be removed: untick it."_s);
    if (const QString refusal = selection::refusalToEdit(selection, edit); !refusal.isNull())
        return reason(refusal);
    const qsizetype own = countOf(ticked, false);
    if (edit == TrackEdit::Remove)
        return removal(film, own);
    if (edit == TrackEdit::Extract)
        return {
            counted(own, u"1 track into a file of its own"_s, u"%1 tracks, each into a file of its own"_s),
            false};
    return {counted(countOf(ticked, true), u"1 track is added to a copy of the film"_s,
                    u"%1 tracks are added to a copy of the film"_s),
            false};
}

Forecast joinForecast(const KXSelectionController &controller, const QList<VideoFilePointer> &films)
{
    const qsizetype count = fileCount(controller);
    if (!controller.canJoin())
        return reason(count == 0 ? u"Drop MKV files first."_s : u"Needs two files or more."_s);
    qint64 bytes = 0;
    double seconds = 0;
    for (const QUrl &file : controller.currentSelection()->editFilesURLsList())
        bytes += QFileInfo(file.toLocalFile()).size();
    for (const VideoFilePointer &film : films)
        seconds += film->seconds().value_or(0);
    QStringList parts{u"%1 files become one, named after the first"_s.arg(count),
                      u"about "_s + sizeText(bytes)};
    if (films.size() == count && seconds > 0)
        parts.append(lengthText(seconds));
    return {parts.join(u" · "_s), false};
}

QString fileText(const KXVideoFile &film)
{
    QStringList parts;
    int subtitles = 0;
    for (const TrackPointer &track : film.trackList()) {
        if (kindOf(*track) == media::TrackKind::Subtitle)
            ++subtitles;
        else
            parts.append(shortText(*track));
    }
    parts.append(subtitles == 0 ? u"no subtitles"_s : counted(subtitles, u"1 subtitle"_s, u"%1 subtitles"_s));
    return parts.join(u" · "_s);
}

Forecast joiningText(const KXVideoFile &first, const KXVideoFile &film)
{
    const auto differing = [](const QString &what, const QString &here, const QString &there) {
        return Forecast{u"%1 differs: %2, not %3"_s.arg(what, here, there), true};
    };
    const auto of = [](const KXVideoFile &file, media::TrackKind kind) {
        QStringList texts;
        for (const TrackPointer &track : file.trackList()) {
            if (kindOf(*track) == kind)
                texts.append(shortText(*track));
        }
        return texts;
    };
    if (of(film, media::TrackKind::Video) != of(first, media::TrackKind::Video))
        return differing(u"Picture"_s, of(film, media::TrackKind::Video).join(u", "_s),
                         of(first, media::TrackKind::Video).join(u", "_s));
    if (film.theWidth() != first.theWidth() || film.theHeight() != first.theHeight())
        return differing(u"Picture"_s, pictureText(film.theWidth(), film.theHeight()),
                         pictureText(first.theWidth(), first.theHeight()));
    if (film.theFPS() != first.theFPS())
        return differing(u"Frame rate"_s, frameRateText(film.theFPS()), frameRateText(first.theFPS()));
    if (of(film, media::TrackKind::Audio) != of(first, media::TrackKind::Audio))
        return differing(u"Sound"_s, of(film, media::TrackKind::Audio).join(u", "_s),
                         of(first, media::TrackKind::Audio).join(u", "_s));
    const qsizetype here = of(film, media::TrackKind::Subtitle).size();
    const qsizetype there = of(first, media::TrackKind::Subtitle).size();
    if (here != there)
        return {u"%1 subtitles, not %2"_s.arg(here).arg(there), true};
    return {u"Matches"_s, false};
}

QString joinWarning(const QList<VideoFilePointer> &films)
{
    for (qsizetype i = 1; i < films.size(); ++i) {
        const Forecast told = joiningText(*films.constFirst(), *films.at(i));
        if (told.isReason)
            return u"File %1: %2."_s.arg(i + 1).arg(told.text);
    }
    return {};
}

Forecast splitForecast(const KXSelectionController &controller)
{
    if (!controller.canSplit())
        return reason(splitReason(controller));
    return {jobsText(fileCount(controller)) + u", "_s + partsText(controller), false};
}

Forecast remuxForecast(const KXSelectionController &controller)
{
    if (!controller.canEditPAR())
        return reason(u"Drop MKV files first."_s);
    const qsizetype count = fileCount(controller);
    return {jobsText(count) + (count == 1 ? u", one new file"_s : u", one new file each"_s), false};
}

QString sendReason(bool hasSubtitle, const QString &refusal)
{
    if (!refusal.isNull())
        return refusal;
    return hasSubtitle ? QString() : u"Tick a subtitle first."_s;
}

} // namespace summary
