#pragma once

#include <QString>

namespace cli {

class Session;

/// Chooses the presets that the command line names; without --track-preset that is "First Track". Answers
/// a null text, or which preset there is not.
QString choosePresets(Session &session);

} // namespace cli
