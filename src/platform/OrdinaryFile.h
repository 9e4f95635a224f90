#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

/// Whether an ordinary file, or a link to one, stands there, on a volume that keeps files. What the system
/// shows of itself in /proc, /sys and their like looks like files, has no end or does things when it is read.
bool isOrdinaryFile(const QString &path);

/// Far more than settings, presets or a journal hold.
constexpr qint64 mostBytesReadWhole = 64 * 1024 * 1024;

/// What a file holds, or why that is not read: it is no ordinary file, too large, or not readable.
struct WholeFile
{
    QByteArray bytes;
    QString problem; ///< a null text when it was read; else without a full stop, to stand in a sentence
};

/// Never waits for what stands behind a pipe or a device.
WholeFile readWhole(const QString &path, qint64 mostBytes = mostBytesReadWhole);
/// Why that would not be read, so far as it can be told without reading; a null text when nothing is there.
QString problemOfWholeFile(const QString &path, qint64 mostBytes = mostBytesReadWhole);

/// At most so many bytes of a file from a place on; empty behind its end and where it is no ordinary file.
QByteArray readPart(const QString &path, qint64 from, qint64 mostBytes);

} // namespace platform
