#pragma once

#include "selection/ConversionSettings.h"

#include <optional>

namespace selection {

/// What a guess makes most of: two passes where the picture has to be re-encoded, or one.
enum class Aim { Quality, Speed };

/// One decision of a guess.
struct Decision
{
    TrackPointer track;
    QString sentence; ///< what, and why
};

/// What a film becomes on a device if nobody says otherwise. A plain value.
struct BestGuess
{
    ConversionSettings settings;
    QList<Decision> decisions; ///< in the order of the tracks; a picture that is re-encoded has several

    /// The sentences about a track, joined; absent where there are none.
    QString reasonFor(const TrackPointer &track) const;
};

/// The guess for the chosen tracks of a film: what the device plays is copied, what it doesn't is re-encoded.
/// What was chosen by hand (every value that is there) holds; a bit rate, width and frame rate among it have
/// no effect on a picture that is copied. No value where the target is no device, so promises nothing. It
/// changes neither the selection nor its tracks.
std::optional<BestGuess> bestGuess(const KXSelection &film, const QString &target, Aim aim,
                                   const ConversionSettings &byHand = {});

/// Writes the settings, and the reasons into the tracks.
void writeGuess(const BestGuess &guess, KXSelection &selection);
/// The tracks become what a person wants of them now.
void forgetReasons(const TrackList &tracks);

/// "quality" and "speed"; no value for any other word.
std::optional<Aim> aimNamed(const QString &word);
/// Why a guess can't be made for a target; a null text where it can.
QString refusalToGuess(const QString &target);

} // namespace selection
