#pragma once

#include <QString>

class KXPresetSelections;
class KXPresetSettings;

namespace presets {

/// What a preset does, as sentences for people: "For PS3. The video is copied. ..." Built-in ones too.
QString sentenceFor(const KXPresetSelections &preset);
QString sentenceFor(const KXPresetSettings &preset);

} // namespace presets
