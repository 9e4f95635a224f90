#pragma once

#include <QString>
#include <QUrl>

namespace steps {

/// Why no file can be made in the folder of that output, as the end of a sentence; a null text when one can.
/// It is tried, with a hidden file that goes at once: how things are by now may be another thing than what
/// went wrong before.
QString problemWithFolderOf(const QUrl &output);
/// That reason in a sentence on the output.
QString sentenceThatItCantBeMade(const QUrl &output, const QString &reason);

} // namespace steps
