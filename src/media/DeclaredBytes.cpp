#include "media/DeclaredBytes.h"

#include <QBuffer>
#include <QFile>
#include <QtEndian>

#include <algorithm>

namespace media {

namespace {

/// A film in fragments has as many boxes.
constexpr int mostParts = 20000;

std::optional<quint64> bigNumber(QIODevice &file, int length)
{
    const QByteArray bytes = file.read(length);
    quint64 number = 0;
    for (const char byte : bytes)
        number = number << 8 | static_cast<quint8>(byte);
    return bytes.size() == length ? std::optional(number) : std::nullopt;
}

std::optional<quint64> littleNumber(QIODevice &file, int length)
{
    QByteArray bytes = file.read(length);
    if (bytes.size() < length)
        return std::nullopt;
    return qFromLittleEndian<quint64>(bytes.leftJustified(8, '\0').constData());
}

/// Matroska's way to write a size; absent for one that is not known.
std::optional<quint64> elementSize(QIODevice &file)
{
    const auto head = bigNumber(file, 1);
    int length = 1;
    while (head && length <= 8 && (*head & (0x80U >> (length - 1))) == 0)
        ++length;
    if (!head || length > 8)
        return std::nullopt;
    const auto rest = bigNumber(file, length - 1);
    const quint64 all = quint64(1) << (7 * length);
    const quint64 size = ((*head << (8 * (length - 1))) | rest.value_or(0)) & (all - 1);
    return rest && size != all - 1 ? std::optional(size) : std::nullopt;
}

/// What lies at a place of the file and goes on so long.
std::optional<qint64> endOf(qint64 from, std::optional<quint64> length)
{
    constexpr quint64 most = quint64(1) << 60;
    return length && *length < most ? std::optional(from + static_cast<qint64>(*length)) : std::nullopt;
}

std::optional<qint64> endOfSegment(QIODevice &file)
{
    file.seek(4);
    const auto header = elementSize(file);
    const auto segmentAt = header ? endOf(file.pos(), header) : std::nullopt;
    if (!segmentAt || !file.seek(*segmentAt) || file.read(4) != QByteArray::fromHex("18538067"))
        return std::nullopt;
    const auto size = elementSize(file);
    return endOf(file.pos(), size);
}

/// A large AVI is several of these, one behind the other.
std::optional<qint64> endOfRiffs(QIODevice &file)
{
    std::optional<qint64> end;
    file.seek(0);
    for (int count = 0; count < mostParts && file.read(4) == "RIFF"; ++count) {
        const auto size = littleNumber(file, 4);
        if (!size || *size == 0 || *size == 0xFFFFFFFF)
            break;
        end = endOf(file.pos(), size);
        if (!file.seek(*end + *end % 2))
            break;
    }
    return end;
}

/// The end of the last box that begins in the file.
std::optional<qint64> endOfBoxes(QIODevice &file)
{
    qint64 at = 0;
    for (int count = 0; count < mostParts && at < file.size() && file.seek(at); ++count) {
        auto size = bigNumber(file, 4);
        const QByteArray kind = file.read(4);
        if (size == 1)
            size = bigNumber(file, 8);
        const bool isBox = size >= quint64(8) && kind.size() == 4;
        const auto end = isBox ? endOf(at, size) : std::nullopt;
        if (!end)
            return at == 0 || size == 0 ? std::nullopt : std::optional(at); // 0: up to the file's end
        at = *end;
    }
    return at;
}

/// The size stands in the object of the file's properties; while it is being sent it means nothing.
std::optional<qint64> sizeToldByAsf(QIODevice &file)
{
    const QByteArray properties = QByteArray::fromHex("a1dcab8c47a9cf118ee400c00c205365");
    file.seek(0);
    const QByteArray head = file.read(64 * 1024);
    const qsizetype at = head.indexOf(properties);
    if (at < 0 || head.size() < at + 92)
        return std::nullopt;
    const auto size = qFromLittleEndian<quint64>(head.constData() + at + 40);
    const bool isBroadcast = (head.at(at + 88) & 1) != 0;
    return isBroadcast || size == 0 ? std::nullopt : endOf(0, size);
}

/// "filesize" among the values at the head, a floating-point number behind a byte that says so.
std::optional<qint64> sizeToldByFlv(QIODevice &file)
{
    file.seek(0);
    const QByteArray head = file.read(4096);
    const qsizetype at = head.indexOf(QByteArray("filesize\0", 9));
    if (at < 0 || head.size() < at + 17)
        return std::nullopt;
    const auto size = qFromBigEndian<double>(head.constData() + at + 9);
    return size >= 1 && size < 1e15 ? std::optional(static_cast<qint64>(size)) : std::nullopt;
}

std::optional<quint64> elementId(QIODevice &file)
{
    const auto head = bigNumber(file, 1);
    if (!head || *head < 0x10)
        return std::nullopt;
    const int more = *head >= 0x80 ? 0 : *head >= 0x40 ? 1 : *head >= 0x20 ? 2 : 3;
    const auto rest = bigNumber(file, more);
    return rest ? std::optional((*head << (8 * more)) | *rest) : std::nullopt;
}

/// The content of the first element of that name among those from here to the end, none of which may be long.
QByteArray elementNamed(QIODevice &file, quint64 wanted, qint64 end)
{
    constexpr quint64 longest = 1024 * 1024;
    while (file.pos() < end) {
        const auto id = elementId(file);
        const auto size = id ? elementSize(file) : std::nullopt;
        if (!size || *size > longest)
            break;
        if (*id == wanted)
            return file.read(static_cast<qint64>(*size));
        file.seek(file.pos() + static_cast<qint64>(*size));
    }
    return {};
}

QByteArray childNamed(const QByteArray &content, quint64 wanted)
{
    QBuffer buffer;
    buffer.setData(content);
    buffer.open(QIODevice::ReadOnly);
    return elementNamed(buffer, wanted, content.size());
}

double floatOf(const QByteArray &bytes)
{
    if (bytes.size() == 4)
        return double(qFromBigEndian<float>(bytes.constData()));
    return bytes.size() == 8 ? qFromBigEndian<double>(bytes.constData()) : 0;
}

quint64 numberOfBytes(const QByteArray &bytes)
{
    quint64 number = 0;
    for (const char byte : bytes.left(8))
        number = number << 8 | static_cast<quint8>(byte);
    return number;
}

/// What the information at the head of a segment tells, in units of so many nanoseconds.
double secondsOfSegment(QIODevice &file)
{
    if (!endOfSegment(file)) // stands at the first element in it then
        return 0;
    const QByteArray information = elementNamed(file, 0x1549A966, file.size());
    const QByteArray unit = childNamed(information, 0x2AD7B1);
    const double nanoseconds = unit.isEmpty() ? 1e6 : double(numberOfBytes(unit));
    return floatOf(childNamed(information, 0x4489)) * nanoseconds / 1e9;
}

/// The content of the box of that name among those from here to the end; a long one is not read.
QByteArray boxNamed(QIODevice &file, const QByteArray &wanted, qint64 end)
{
    constexpr qint64 longest = 4096;
    qint64 at = file.pos();
    for (int count = 0; count < mostParts && at < end && file.seek(at); ++count) {
        auto size = bigNumber(file, 4);
        const QByteArray kind = file.read(4);
        if (size == 1)
            size = bigNumber(file, 8);
        const auto boxEnd = size >= quint64(8) ? endOf(at, size) : std::nullopt;
        if (kind == wanted)
            return file.read(longest);
        if (!boxEnd)
            break;
        at = *boxEnd;
    }
    return {};
}

double secondsOfMovie(QIODevice &file)
{
    file.seek(0);
    const QByteArray movie = boxNamed(file, "moov", file.size());
    QBuffer buffer;
    buffer.setData(movie);
    buffer.open(QIODevice::ReadOnly);
    const QByteArray head = boxNamed(buffer, "mvhd", movie.size());
    const bool isLong = head.startsWith('\1');
    const quint64 unit = numberOfBytes(head.mid(isLong ? 20 : 12, 4));
    const quint64 length = numberOfBytes(head.mid(isLong ? 24 : 16, isLong ? 8 : 4));
    return unit == 0 ? 0 : double(length) / double(unit);
}

} // namespace

std::optional<double> toldSecondsOf(const QUrl &film)
{
    constexpr double longest = 1000 * 3600.0;
    QFile file(film.toLocalFile());
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray head = file.read(8);
    double seconds = 0;
    if (head.startsWith(QByteArray::fromHex("1a45dfa3")))
        seconds = secondsOfSegment(file);
    else if (head.endsWith("ftyp"))
        seconds = secondsOfMovie(file);
    return seconds > 0 && seconds < longest ? std::optional(seconds) : std::nullopt;
}

std::optional<qint64> declaredBytesOf(const QUrl &film)
{
    QFile file(film.toLocalFile());
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray head = file.read(16);
    if (head.startsWith(QByteArray::fromHex("1a45dfa3")))
        return endOfSegment(file);
    if (head.startsWith("RIFF"))
        return endOfRiffs(file);
    if (head.startsWith(QByteArray::fromHex("3026b2758e66cf11a6d900aa0062ce6c")))
        return sizeToldByAsf(file);
    if (head.startsWith("FLV"))
        return sizeToldByFlv(file);
    if (head.mid(4, 4) == "ftyp")
        return endOfBoxes(file);
    return std::nullopt;
}

} // namespace media
