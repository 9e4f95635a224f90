#pragma once

#include <QByteArrayList>
#include <QStringList>

namespace support {

/// Runs of programs: each its name and its arguments.
using Started = QList<QByteArrayList>;

namespace started {

/// The runs that a probe of a Matroska film with one video track takes.
Started probeOf(const QString &path);
/// The run that asks how long a file is, for the percentages of a step.
Started durationOf(const QString &path);
Started ffmpeg(const QStringList &words);
/// How an English stream ("a:0") gets its language and title.
QStringList tags(const QString &stream, const QString &title);
/// One line a run, for messages.
QString shown(const Started &runs);

} // namespace started

} // namespace support
