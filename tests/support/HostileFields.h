#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace support {

class Canaries;

/// The twenty fields of a stream that anything could use: its own ones by their names, nested ones by
/// "tags.title". Whatever decides, numbers, names or describes a track is among them.
const QStringList &probedFields();

/// Twelve texts, each with what one reader of a field could take for its own: the shell, a filter graph, a
/// list of options, the file system, a reader of numbers. The canaries are what they ask for.
QStringList hostileValues(const Canaries &canaries);

/// What ffprobe printed of a file with that field set to that text in one stream, or in all of them where
/// the stream is negative.
QByteArray withField(const QByteArray &printed, const QString &field, const QString &text, int stream);

} // namespace support
