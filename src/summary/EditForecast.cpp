#include "summary/EditForecast.h"

#include "media/KXVideoFile.h"
#include "selection/KXSelectionController.h"
#include "summary/Figures.h"
#include "tools/Numbers.h"
#include "tools/Times.h"

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

Forecast joinForecast(const KXSelectionController &controller)
{
    const qsizetype count = fileCount(controller);
    if (!controller.canJoin())
        return reason(count == 0 ? u"Drop MKV files first."_s : u"Needs two files or more."_s);
    return {u"%1 files become one, named after the first"_s.arg(count), false};
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
