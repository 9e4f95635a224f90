#include "support/TrackClips.h"

#include "support/ClipFactory.h"
#include "support/Clips.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace support {

namespace {

const QString sound = u"-f lavfi -i sine=d=8:r=48000"_s;

/// Inputs stand in front; the rest is split at blanks.
void ffmpeg(const QStringList &inputs, const QString &arguments, const QString &output)
{
    QStringList line = u"-nostdin -y -loglevel error"_s.split(u' ');
    for (const QString &input : inputs)
        line += {u"-i"_s, input};
    runProgram(u"ffmpeg"_s, line + arguments.split(u' ') + QStringList{output});
}

QString made(const QString &name, const QStringList &inputs, const QString &arguments)
{
    return clip(name, [&](const QString &path) { ffmpeg(inputs, arguments, path); });
}

QString picture(const QString &name)
{
    return made(name, {}, u"-f lavfi -i testsrc2=s=64x64:r=1:d=1 -frames:v 1 -update 1"_s);
}

QString chapterList()
{
    return clip(u"chapters.txt"_s, [](const QString &path) {
        writeContent(path, ";FFMETADATA1\n"
                           "[CHAPTER]\nTIMEBASE=1/1000\nSTART=0\nEND=4000\ntitle=one\n"
                           "[CHAPTER]\nTIMEBASE=1/1000\nSTART=4000\nEND=8000\ntitle=two\n");
    });
}

} // namespace

QString richMkv()
{
    const QString font = clip(u"letters.ttf"_s, [](const QString &path) { writeContent(path, "letters"); });
    return made(
        u"rich.mkv"_s, {fullMkv(), pgsMkv(), chapterList()},
        u"-map 0:0 -map 0:1 -map 0:2 -map 0:3 -map 1:2 -map_chapters 2 -c copy -attach "_s + font +
            u" -attach "_s + picture(u"front.jpg"_s) +
            u" -metadata:s:t:0 mimetype=application/x-truetype-font -metadata:s:t:1 mimetype=image/jpeg"
            " -metadata:s:t:1 filename=cover.jpg"_s);
}

QString richMp4()
{
    return made(u"rich.mp4"_s, {textMp4(), chapterList(), picture(u"front.jpg"_s)},
                u"-map 0 -map 2 -map_chapters 1 -c copy -disposition:v:1 attached_pic"_s);
}

QString dvdStream()
{
    return made(u"dvd.vob"_s, {vobsubMkv()},
                u"-map 0:0 -map 0:1 -map 0:6 -c:v mpeg2video -c:a ac3 -ac 2 -c:s copy"_s);
}

QString surroundMka()
{
    return clip(u"surround.mka"_s, [](const QString &path) {
        runProgram(u"mkvmerge"_s, {u"-o"_s, path, u"--language"_s, u"0:ger"_s, u"--track-name"_s,
                                   u"0:Raumklang"_s, surroundAc3()});
    });
}

QString mp3File()
{
    return made(u"song.mp3"_s, {}, sound + u" -ac 2 -c:a libmp3lame"_s);
}

QString ssaFile()
{
    return made(u"lines.ssa"_s, {srtFile()}, u"-c:s ass"_s);
}

QString frenchSrt()
{
    return clip(u"french.srt"_s, [](const QString &path) {
        writeContent(path, "1\n00:00:01,000 --> 00:00:06,000\nÇa, c'est l'été\n\n");
    });
}

QString textOnlyMp4()
{
    return made(u"lines.mp4"_s, {srtFile()}, u"-c:s mov_text"_s);
}

QString soundAndTextMka()
{
    return made(u"sound-and-text.mka"_s, {audioOnly(), srtFile()}, u"-map 0 -map 1 -c:a copy -c:s srt"_s);
}

QString twoSoundsMka()
{
    return made(u"two-sounds.mka"_s, {audioOnly(), surroundAc3()}, u"-map 0 -map 1 -c copy"_s);
}

QString twoTextsMks()
{
    return made(u"two-texts.mks"_s, {srtFile(), assFile()}, u"-map 0 -map 1 -c copy -f matroska"_s);
}

QString attachmentMks()
{
    return clip(u"attachment.mks"_s, [](const QString &path) {
        runProgram(u"mkvmerge"_s, {u"-o"_s, path, srtFile(), u"--attachment-mime-type"_s, u"text/plain"_s,
                                   u"--attach-file"_s, chapterList()});
    });
}

QString chaptersM4a()
{
    return made(u"chapters.m4a"_s, {audioOnly(), chapterList()}, u"-map 0 -map_chapters 1 -c copy"_s);
}

QString coverMp3()
{
    return made(u"cover.mp3"_s, {mp3File(), picture(u"front.jpg"_s)},
                u"-map 0 -map 1 -c copy -disposition:v attached_pic"_s);
}

QString coverM4a()
{
    return made(u"cover.m4a"_s, {audioOnly(), picture(u"front.png"_s)},
                u"-map 0 -map 1 -c copy -disposition:v attached_pic"_s);
}

QString opusFile()
{
    return made(u"sound.opus"_s, {}, sound + u" -ac 2 -c:a libopus"_s);
}

QString webvttFile()
{
    return made(u"lines.vtt"_s, {srtFile()}, u"-c:s webvtt"_s);
}

QString dataOnlyMov()
{
    return clip(u"data.mov"_s, [](const QString &path) {
        const QString film =
            made(u"timecode.mov"_s, {}, u"-f lavfi -i testsrc2=s=64x64:r=25:d=1 -timecode 00:00:00:00"_s);
        ffmpeg({film}, u"-map 0:d -c copy -f mov"_s, path);
    });
}

QString streamlessFile()
{
    return clip(u"streamless.txt"_s, [](const QString &path) { writeContent(path, ";FFMETADATA1\n"); });
}

} // namespace support
