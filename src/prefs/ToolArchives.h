#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace prefs {

/// One tool archive: FOLDER.zip among the resources, unpacked into FOLDER of the tools folder.
struct ToolArchive
{
    QString folder;
    QStringList tools; ///< what must be there afterwards, and executable
};

/// All archives, in the order in which they are unpacked.
const QList<ToolArchive> &toolArchives();

} // namespace prefs
