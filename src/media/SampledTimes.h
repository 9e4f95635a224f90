#pragma once

#include "media/ExpectedStreams.h"

namespace media {

/// Whether all packets of a stream say when they are shown. Pictures in AVI don't: their times are made up by
/// whoever reads or copies them.
bool saysWhenShown(const FilmFacts &film, const StreamFacts &stream);

/// Whether the packets of a copied stream lie where they lay, in the windows that were sampled of both films.
/// Finds sound that was moved by a twentieth of a second, which no start and no end shows.
enum class Sampled { NotKnown, Same, Different };

/// The streams of one source and of its output, both with their films; the shift is what the times of the
/// output have more than those of the source.
Sampled sampledTimes(const FilmFacts &source, const StreamFacts &from, const FilmFacts &output,
                     const StreamFacts &to, double shift);

} // namespace media
