#pragma once

#include "platform/PlainFiles.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace steps {

/// A finished file that is to get its name.
struct Publication
{
    QUrl file; ///< where it lies, in the work folder
    QUrl name; ///< what it is to be called
    /// The file that it takes the place of; absent: nothing may stand there.
    std::optional<platform::FileId> replaced;
};

/// The renames of a job, as they are written into its work folder before the first of them: whoever finds the
/// folder after a power cut finishes them, as all those files were checked.
QByteArray toRecord(const QList<Publication> &publications);
/// Reads it back, of a work folder. Nothing where it is not whole, or names anything but files of that folder
/// and of the one around it.
std::optional<QList<Publication>> publicationsIn(const QUrl &workFolder);
QUrl recordIn(const QUrl &workFolder);

/// Moves one file to its name. False where that was not possible: nothing has changed then.
bool publishFile(const Publication &publication);

} // namespace steps
