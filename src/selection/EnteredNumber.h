#pragma once

#include <QString>

namespace selection {

/// A decimal number as it was typed, with at most that many digits behind the point: the last one is
/// rounded half up (away from 0), zeros at either end go: "023.9764" with 3 is "23.976". A null text
/// when it is no number: grouping separators and exponents make it none.
QString normalizedNumber(const QString &text, qsizetype fractionDigits);

} // namespace selection
