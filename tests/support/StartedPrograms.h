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

/// The file that a run of the check of sources and results reads. Null for any other run, also for one that
/// differs from a check's by a single word.
QString checkedFile(const QByteArrayList &run);
/// What differs between recorded runs and expected ones; a null text where nothing does. Tools write under
/// plain names in a hidden folder beside the output (".tessaray-k3x9ab/1.mkv"), expected runs bear the final
/// ones: each plain name must stand for one and the same. Of the films that are to be checked, sources and
/// results by their final names, each is read by a run of the check, and nothing else is.
QString difference(const Started &recorded, const Started &expected, const QStringList &checked);

} // namespace started

} // namespace support
