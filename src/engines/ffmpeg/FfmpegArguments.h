#pragma once

#include "engines/ffmpeg/FilterText.h"
#include "media/KXVideoTrack.h"
#include "selection/Targets.h"
#include "tools/OptionItem.h"

#include <QUrl>

class KXSelection;

namespace engines {

/// Where the words for the pass stand: behind the first input, before any further one, on purpose.
inline constexpr qsizetype passPosition = 2;

using selection::OutputKind;

/// What a whole-file conversion is made from, beside the selection.
struct ConversionRequest
{
    OutputKind kind;
    QUrl output;
    QUrl subToBurn;           ///< without a path: no burning
    QString passlogfile;      ///< base path of the two-pass statistics
    bool useDplii = false;    ///< down-mix to Dolby Pro Logic II
    bool moovInFront = false; ///< put the MP4 index in front
};

/// Both argument lists; every item is exactly one argument.
struct ConversionLists
{
    tools::OptionList first;  ///< the only pass, or pass 1
    tools::OptionList second; ///< pass 2; empty in one-pass runs
    int currentPass = 0;      ///< 0: one pass; 1: two passes, the first comes now
};

/// The path of the output that belongs to a base path; an empty one for an unknown kind.
QUrl outputForBase(const QString &base, OutputKind kind, const QString &device);

/// Builds the lists. A device's caps are in the selection already.
ConversionLists conversionLists(const KXSelection &selection, const ConversionRequest &request);

/// The first video track; null when there is none.
TrackPointer videoTrackOf(const TrackList &tracks);
/// The number of pixels at the head of a width or height.
qint64 pixelsIn(const QString &text);
/// The scale filter from the source's width to the chosen one; empty when that is no reduction.
FilterText scaleFilter(const KXSelection &selection);

} // namespace engines
