#include "media/MatroskaPackets.h"

#include <QFile>

#include <optional>

namespace media {

namespace {

constexpr quint64 header = 0x1A45DFA3;
constexpr quint64 segment = 0x18538067;
constexpr quint64 cluster = 0x1F43B675;
/// Real files have about ten before their first cluster.
constexpr int mostElements = 10000;

enum class Marker { Kept, Removed };

/// A number whose first bit that is set tells its length: an element's id with that bit, a size without it.
std::optional<quint64> numberIn(QFile &file, int longest, Marker marker)
{
    char first = 0;
    if (!file.getChar(&first))
        return std::nullopt;
    const auto head = static_cast<quint8>(first);
    int length = 1;
    while (length <= longest && (head & (0x80 >> (length - 1))) == 0)
        ++length;
    const QByteArray rest = length > longest ? QByteArray() : file.read(length - 1);
    if (length > longest || rest.size() < length - 1)
        return std::nullopt;
    quint64 number = marker == Marker::Kept ? head : head & (0xFF >> length);
    for (const char byte : rest)
        number = number << 8 | static_cast<quint8>(byte);
    const bool isUnknown = marker == Marker::Removed && number == (quint64(1) << (7 * length)) - 1;
    return isUnknown ? std::nullopt : std::optional(number);
}

std::optional<quint64> idIn(QFile &file)
{
    return numberIn(file, 4, Marker::Kept);
}

std::optional<quint64> sizeIn(QFile &file)
{
    return numberIn(file, 8, Marker::Removed);
}

/// To the next element on the same level; false where the file can't be read on.
bool skipOne(QFile &file)
{
    const auto size = sizeIn(file);
    return size && *size <= quint64(file.size()) && file.seek(file.pos() + qint64(*size));
}

/// Stands behind the id of the segment when it answers true.
bool findsSegment(QFile &file)
{
    if (idIn(file) != header || !skipOne(file))
        return false;
    return idIn(file) == segment;
}

} // namespace

bool isMatroskaWithoutPackets(const QUrl &location)
{
    QFile file(location.toLocalFile());
    if (!file.open(QIODevice::ReadOnly) || !findsSegment(file))
        return false;
    sizeIn(file); // unknown in what was written into a pipe; it ends with the file all the same
    for (int count = 0; count < mostElements; ++count) {
        if (file.atEnd())
            return true;
        const auto id = idIn(file);
        if (!id || *id == cluster || !skipOne(file))
            return false;
    }
    return false;
}

} // namespace media
