#pragma once

#include "media/FilmCheck.h"

namespace media {

/// Holds the parts of a whole together against it: what their streams last must add up. Parts of the same
/// source are one whole. Adds what there is to say to each of them, and the proofs to their fates.
void checkPartsTogether(QList<CheckedOutput> &parts, const Films &films);

} // namespace media
