#pragma once

#include "selection/Refusals.h"

#include "media/KXVideoFile.h"

#include <QUrl>

class KXSelectionController;

namespace summary {

/// A sentence beside a button: why it is off, or what it will make.
struct Forecast
{
    QString text;
    bool isReason = false; ///< the button is off
};

/// What Go does with the ticked tracks: "2 tracks go, 3 stay → film.removed.mkv".
Forecast trackEditForecast(const KXVideoFile &film, const KXSelection &selection, selection::TrackEdit edit);

/// Of the three operations on whole files, by the rules of the controller.
/// The films are those of the list of which something is known.
Forecast joinForecast(const KXSelectionController &controller, const QList<VideoFilePointer> &films = {});
Forecast splitForecast(const KXSelectionController &controller);
Forecast remuxForecast(const KXSelectionController &controller);

/// A file in a few words: "H.264 · AC3 5.1 · 2 subtitles".
QString fileText(const KXVideoFile &film);
/// How a file goes with the first one: "Matches", "Sound differs: AAC, not AC3".
Forecast joiningText(const KXVideoFile &first, const KXVideoFile &film);
/// What of the whole list does not go together: "File 3: Sound differs: AAC, not AC3."; empty where all does.
QString joinWarning(const QList<VideoFilePointer> &films);

/// Why a film or a file is not good for a conversion of its subtitle: "Tick a subtitle first."
QString sendReason(bool hasSubtitle, const QString &refusal);

} // namespace summary
