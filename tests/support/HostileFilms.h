#pragma once

#include <QList>
#include <QString>

namespace support {

/// A film with a bad name, all of whose tracks have a bad title.
struct Film
{
    QString stem; ///< of the name in front of ".mkv"
    QString title;
};

/// Sixty of them, each with what a shell, a filter, a tool or a reader of its output could take for its
/// own. The last one's name has 255 bytes.
QList<Film> hostileFilms();

/// How a title comes out of a probe: as ffprobe writes it, without double quotes and commas, without what
/// stands behind ": " and without blanks around it.
QString asRead(const QString &title);

} // namespace support
