#include "support/Mutants.h"

#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TaggedFilms.h"

#include <array>

using namespace Qt::StringLiterals;

namespace support {

namespace {

const QString smallPicture = u"-f lavfi -i testsrc2=s=48x32:r=10:d=1"_s;
const QString smallSound = u"-f lavfi -i sine=d=1:r=44100"_s;

QString made(const QString &name, const QString &arguments)
{
    return clip(name, [&](const QString &path) {
        runProgram(u"ffmpeg"_s, u"-nostdin -y -loglevel error %1"_s.arg(arguments).split(u' ') << path);
    });
}

QString smallMp4()
{
    return made(u"small.mp4"_s,
                u"%1 %2 -i %3 -map 0 -map 1 -map 2 -c:v libx264 -preset ultrafast -g 5 -pix_fmt yuv420p "
                "-c:a aac -b:a 32k -c:s mov_text"_s.arg(smallPicture, smallSound, srtFile()));
}

QString smallAvi()
{
    return made(u"small.avi"_s,
                u"%1 %2 -c:v mpeg4 -q:v 9 -c:a libmp3lame -b:a 32k"_s.arg(smallPicture, smallSound));
}

QString smallTs()
{
    return made(u"small.ts"_s,
                u"%1 %2 -c:v mpeg2video -q:v 9 -c:a mp2 -b:a 64k"_s.arg(smallPicture, smallSound));
}

QString smallH264()
{
    return made(u"small.h264"_s, smallPicture + u" -c:v libx264 -preset ultrafast -g 5 -pix_fmt yuv420p"_s);
}

QString smallOgg()
{
    return made(u"small.ogg"_s, smallSound + u" -c:a libvorbis"_s);
}

qsizetype placeIn(const QByteArray &content, Chances &chances)
{
    // Headers are at the beginning, and what is wrong there goes furthest.
    const qsizetype end = chances.below(2) == 0 ? qMin<qsizetype>(content.size(), 2048) : content.size();
    return chances.below(qMax<qsizetype>(1, end));
}

void flip(QByteArray &content, Chances &chances)
{
    for (qsizetype left = 1 + chances.below(16); left > 0; --left)
        content[placeIn(content, chances)] = static_cast<char>(chances.below(256));
}

void zero(QByteArray &content, Chances &chances)
{
    const qsizetype at = placeIn(content, chances);
    const qsizetype length = qMin(content.size() - at, 1 + chances.below(600));
    content.replace(at, length, QByteArray(length, '\0'));
}

void truncate(QByteArray &content, Chances &chances)
{
    content.truncate(1 + chances.below(content.size()));
}

void duplicate(QByteArray &content, Chances &chances)
{
    const qsizetype at = placeIn(content, chances);
    content.insert(at, content.mid(at, 1 + chances.below(1500)));
}

void swapBlocks(QByteArray &content, Chances &chances)
{
    const qsizetype length = 1 + chances.below(qMax<qsizetype>(1, qMin<qsizetype>(512, content.size() / 2)));
    const qsizetype room = qMax<qsizetype>(1, content.size() - length);
    const qsizetype one = chances.below(room);
    const qsizetype other = chances.below(room);
    const QByteArray first = content.mid(one, length);
    content.replace(one, first.size(), content.mid(other, first.size()));
    content.replace(other, first.size(), first);
}

void writeText(QByteArray &content, Chances &chances)
{
    static const QByteArrayList texts{"}\",\"index\": \"2;touch X;#",
                                      "$(touch X)",
                                      "';touch X;'",
                                      "`touch X`",
                                      "Stream #0:0: Video: h264",
                                      "Duration: 99:00:00.00, bitrate: 1 kb/s",
                                      "\n00:00:00,000 --> 99:59:59,999\n",
                                      "metadata=print:file=X",
                                      "Invalid data found",
                                      "Error: ",
                                      "\"streams\": [\n    {\n",
                                      "\x1b[2J\r\n"};
    const QByteArray &text = texts.at(chances.below(texts.size()));
    const qsizetype at = placeIn(content, chances);
    if (chances.below(2) == 0)
        content.insert(at, text);
    else
        content.replace(at, text.size(), text);
}

void enlarge(QByteArray &content, Chances &chances)
{
    static const QByteArrayList sizes{QByteArray("\x01\xff\xff\xff\xff\xff\xff\xff", 8),
                                      QByteArray("\x08\xff\xff\xff\xff", 5),
                                      QByteArray("\x7f\xff\xff\xff", 4),
                                      QByteArray("\xff\xff\xff\xff", 4),
                                      QByteArray("\xff\xff\xff\x7f", 4),
                                      QByteArray("\x00\x00\x00\x01", 4),
                                      QByteArray("\xff\xff", 2),
                                      QByteArray("\x80\x00\x00\x00", 4)};
    const QByteArray &size = sizes.at(chances.below(sizes.size()));
    content.replace(placeIn(content, chances), size.size(), size);
}

} // namespace

const QList<SmallMedium> &smallMedia()
{
    static const QList<SmallMedium> media{{u"mkv"_s, tinyTextMkv()}, {u"mkv"_s, tinyPictureMkv()},
                                          {u"mp4"_s, smallMp4()},    {u"avi"_s, smallAvi()},
                                          {u"ts"_s, smallTs()},      {u"h264"_s, smallH264()},
                                          {u"ogg"_s, smallOgg()},    {u"srt"_s, srtFile()},
                                          {u"ass"_s, assFile()},     {u"sup"_s, supFile()}};
    return media;
}

QByteArray mutated(const QByteArray &content, Chances &chances)
{
    static const std::array kinds{&flip, &zero, &truncate, &duplicate, &swapBlocks, &writeText, &enlarge};
    QByteArray mutant = content;
    for (qsizetype left = 1 + chances.below(4); left > 0 && !mutant.isEmpty(); --left)
        kinds.at(static_cast<size_t>(chances.below(kinds.size())))(mutant, chances);
    return mutant;
}

} // namespace support
