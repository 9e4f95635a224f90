#pragma once

#include <QByteArrayList>
#include <QString>

namespace support::started {

/// What is wrong with a recorded run of a program, null when nothing is: the program is none that any
/// operation starts, or a word of it is neither an option, a number, a codec, a path or a filter of the
/// form that the rules know, nor data behind its own option. "scratch" is the folder all paths must lie in.
QString offenceOf(const QByteArrayList &run, const QString &scratch);

} // namespace support::started
