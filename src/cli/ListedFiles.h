#pragma once

#include <QStringList>

namespace cli {

class Session;

/// The paths that --list names, and why they can't be had.
struct ListedFiles
{
    QStringList paths;
    QString problem; ///< a null text when all is well
};

/// Reads a list of paths from a file, or from standard input for "-": one a line, or each ended by a NUL,
/// which paths with line ends need. An interrupt ends the reading.
ListedFiles readList(Session &session, const QString &path);

} // namespace cli
