#pragma once

#include "selection/KXSelection.h"

class KXVideoFile;

namespace app {

/// What a removal job takes: its tracks are those that go. External tracks stay out of it.
SelectionPointer selectionForRemoval(const KXSelection &selection);

/// What an adding job takes: all of the file's own tracks as they are, and the ticked external ones.
SelectionPointer selectionForAdding(const KXVideoFile &file, const KXSelection &selection);

} // namespace app
