#pragma once

#include "selection/KXSelection.h"

namespace app {

/// Whether the name of the conversion's result can be chosen: not where it is muxed into MKV as it comes.
bool canNameResult(const KXSelection &selection);
/// The name that was chosen by hand, with the extension that the target has now; null where none was.
QString chosenResultName(const KXSelection &selection);
/// Takes what was typed. A name without letters, and the name that it would have anyway, choose none; what no
/// name of a file can hold is left out.
void chooseResultName(KXSelection &selection, const QString &typed);

} // namespace app
