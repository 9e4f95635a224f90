#include "media/Playlists.h"

#include "platform/OrdinaryFile.h"

#include <QByteArray>

#include <algorithm>
#include <array>

namespace media {

namespace {

constexpr qint64 firstLook = 4096;
constexpr qint64 longestLook = 1 << 20; // as far as ffmpeg looks when it tells what a file is
constexpr int mostHeaders = 64;

/// The size of an ID3 header that begins there, which readers skip; 0 for none.
qint64 sizeOfId3(const QByteArray &head)
{
    if (head.size() < 10 || !head.startsWith("ID3"))
        return 0;
    qint64 size = 0;
    for (int i = 6; i < 10; ++i)
        size = size << 7 | (head.at(i) & 0x7f);
    return size + 10 + ((head.at(5) & 0x10) != 0 ? 10 : 0);
}

/// Where the content begins behind the headers that readers skip.
qint64 beginOfContent(const QString &path)
{
    qint64 begin = 0;
    for (int header = 0; header < mostHeaders; ++header) {
        const qint64 size = sizeOfId3(platform::readPart(path, begin, 10));
        if (size == 0)
            break;
        begin += size;
    }
    return begin;
}

/// The text at the head of a file, up to the first zero byte: what has one at once is no text.
QByteArray textAtHead(const QString &path)
{
    const qint64 begin = beginOfContent(path);
    QByteArray text = platform::readPart(path, begin, firstLook);
    if (!text.contains('\0'))
        text += platform::readPart(path, begin + firstLook, longestLook - firstLook);
    const qsizetype zero = text.indexOf('\0');
    return zero < 0 ? text : text.first(zero);
}

bool beginsAsList(QByteArray text)
{
    if (text.startsWith("\xef\xbb\xbf"))
        text.remove(0, 3);
    const QByteArray begin = text.trimmed().first(std::min<qsizetype>(text.trimmed().size(), 32)).toLower();
    static constexpr std::array marks{"#extm3u", "ffconcat", "mpls0", "[reference]", "rtsptext", "smptext"};
    return std::any_of(marks.begin(), marks.end(), [&](const char *mark) { return begin.startsWith(mark); });
}

bool holdsList(const QByteArray &text)
{
    const QByteArray lower = text.toLower();
    if (lower.startsWith("c=in ip") || lower.contains("\nc=in ip"))
        return true;
    return lower.contains("<mpd") || lower.contains("<compositionplaylist");
}

} // namespace

bool namesOtherFiles(const QUrl &location)
{
    const QByteArray text = textAtHead(location.toLocalFile());
    return beginsAsList(text) || holdsList(text);
}

} // namespace media
