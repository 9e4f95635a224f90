#pragma once

#include "selection/Refusals.h"

#include <QUrl>

class KXSelectionController;
class KXVideoFile;

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
Forecast joinForecast(const KXSelectionController &controller);
Forecast splitForecast(const KXSelectionController &controller);
Forecast remuxForecast(const KXSelectionController &controller);

/// Why a film or a file is not good for a conversion of its subtitle: "Tick a subtitle first."
QString sendReason(bool hasSubtitle, const QString &refusal);

} // namespace summary
