#pragma once

#include <QString>

namespace tools {

/// The whole number at the head of a text ("45%" is 45, " -3x" is -3, "abc" is 0). Values too large
/// for 64 bits stop at the largest one.
qint64 leadingInteger(const QString &text);
/// True when the text is one or more of the digits 0 to 9 and nothing else.
bool isAllDigits(const QString &text);
/// part * 100 / whole in whole numbers; 0 when whole is 0 or less.
qint64 percentOf(qint64 part, qint64 whole);
/// A floating-point number as "%f" prints it; "nan" (never "-nan") when it is none.
QString printedFloat(double value);

} // namespace tools
