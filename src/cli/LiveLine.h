#pragma once

#include <QString>

namespace cli {

/// A line that begins with a subject, such as a film's name, made to fit into so many columns: the subject
/// gives up its middle, so that the numbers behind it are seen.
QString fittedLine(const QString &line, const QString &subject, qsizetype columns);

} // namespace cli
