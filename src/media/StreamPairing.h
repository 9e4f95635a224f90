#pragma once

#include "media/ExpectedStreams.h"

namespace media {

/// Which stream of an output is which of those expected: an index of the output's list of streams for each,
/// -1 for one that is not there. A known place decides; else the codec, then the length, the language and the
/// order: a container or an engine may put them in another one.
QList<int> pairedStreams(const QList<ExpectedStream> &expected, const MeantOutput &output,
                         const FilmFacts &film);

} // namespace media
