#include "media/MatroskaPackets.h"

#include <QBuffer>
#include <QFile>
#include <QHash>

#include <optional>

namespace media {

namespace {

constexpr quint64 header = 0x1A45DFA3;
constexpr quint64 segment = 0x18538067;
constexpr quint64 cluster = 0x1F43B675;
constexpr quint64 trackList = 0x1654AE6B;
constexpr quint64 trackEntry = 0xAE;
constexpr quint64 trackUid = 0x73C5;
constexpr quint64 trackType = 0x83;
constexpr quint64 tagList = 0x1254C367;
constexpr quint64 tag = 0x7373;
constexpr quint64 targets = 0x63C0;
constexpr quint64 targetUid = 0x63C5;
constexpr quint64 simpleTag = 0x67C8;
constexpr quint64 tagName = 0x45A3;
constexpr quint64 tagText = 0x4487;
constexpr quint64 largestList = 16 * 1024 * 1024;
/// Real files have about ten before their first cluster.
constexpr int mostElements = 10000;

enum class Marker { Kept, Removed };

/// A number whose first bit that is set tells its length: an element's id with that bit, a size without it.
std::optional<quint64> numberIn(QIODevice &file, int longest, Marker marker)
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

std::optional<quint64> idIn(QIODevice &file)
{
    return numberIn(file, 4, Marker::Kept);
}

std::optional<quint64> sizeIn(QIODevice &file)
{
    return numberIn(file, 8, Marker::Removed);
}

/// To the next element on the same level; false where the file can't be read on.
bool skipOne(QIODevice &file)
{
    const auto size = sizeIn(file);
    return size && *size <= quint64(file.size()) && file.seek(file.pos() + qint64(*size));
}

/// Stands behind the id of the segment when it answers true.
bool findsSegment(QIODevice &file)
{
    if (idIn(file) != header || !skipOne(file))
        return false;
    return idIn(file) == segment;
}

struct Element
{
    quint64 id = 0;
    QByteArray content;
};

QList<Element> childrenOf(const QByteArray &content)
{
    QBuffer buffer;
    buffer.setData(content);
    buffer.open(QIODevice::ReadOnly);
    QList<Element> children;
    while (!buffer.atEnd()) {
        const auto id = idIn(buffer);
        const auto size = id ? sizeIn(buffer) : std::nullopt;
        if (!size || *size > quint64(buffer.bytesAvailable()))
            break;
        children.append({*id, buffer.read(qint64(*size))});
    }
    return children;
}

QByteArray childOf(const QByteArray &content, quint64 id)
{
    for (const Element &child : childrenOf(content)) {
        if (child.id == id)
            return child.content;
    }
    return {};
}

/// The lists of tracks and of tags; none where the file can't be read to its end.
QList<Element> listsIn(QIODevice &file)
{
    QList<Element> lists;
    for (qint64 begin = file.pos(); !file.atEnd(); begin = file.pos()) {
        const auto id = idIn(file);
        const bool isList = id == trackList || id == tagList;
        if (!id || !skipOne(file))
            return {};
        const qint64 end = file.pos();
        if (!isList || quint64(end - begin) > largestList)
            continue;
        file.seek(begin);
        lists += childrenOf(file.read(end - begin));
    }
    return lists;
}

QHash<QByteArray, QString> kindsByUid(const QByteArray &tracks)
{
    QHash<QByteArray, QString> kinds;
    for (const Element &entry : childrenOf(tracks)) {
        const QByteArray type = entry.id == trackEntry ? childOf(entry.content, trackType) : QByteArray();
        if (type == "\x01")
            kinds.insert(childOf(entry.content, trackUid), QStringLiteral("video"));
        else if (type == "\x02")
            kinds.insert(childOf(entry.content, trackUid), QStringLiteral("audio"));
    }
    return kinds;
}

bool countsNoFrame(const QByteArray &tagContent)
{
    for (const Element &child : childrenOf(tagContent)) {
        if (child.id == simpleTag && childOf(child.content, tagName) == "NUMBER_OF_FRAMES")
            return childOf(child.content, tagText) == "0";
    }
    return false;
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

QStringList kindsCountedEmpty(const QUrl &location)
{
    QFile file(location.toLocalFile());
    if (!file.open(QIODevice::ReadOnly) || !findsSegment(file))
        return {};
    sizeIn(file);
    QHash<QByteArray, QString> kinds;
    QStringList empty;
    for (const Element &list : listsIn(file)) { // the tracks come first
        if (list.id == trackList)
            kinds.insert(kindsByUid(list.content));
        for (const Element &one : list.id == tagList ? childrenOf(list.content) : QList<Element>()) {
            const QByteArray uid = childOf(childOf(one.content, targets), targetUid);
            if (one.id == tag && kinds.contains(uid) && countsNoFrame(one.content))
                empty.append(kinds.value(uid));
        }
    }
    return empty;
}

} // namespace media
