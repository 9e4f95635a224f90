#include "support/Clips.h"

#include "support/ClipFactory.h"
#include "support/Scratch.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace support {

namespace {

void ffmpeg(const QString &arguments, const QString &output)
{
    runProgram(u"ffmpeg"_s,
               u"-nostdin -y -loglevel error"_s.split(u' ') + arguments.split(u' ') + QStringList{output});
}

/// An ffmpeg run on other clips, which stand in front; the rest is split at blanks.
void ffmpegOn(const QStringList &inputs, const QString &arguments, const QString &output)
{
    QStringList line = u"-nostdin -y -loglevel error"_s.split(u' ');
    for (const QString &input : inputs)
        line += {u"-i"_s, input};
    runProgram(u"ffmpeg"_s, line + arguments.split(u' ') + QStringList{output});
}

void mkvmerge(const QString &output, const QStringList &arguments)
{
    runProgram(u"mkvmerge"_s, QStringList{u"-o"_s, output} + arguments);
}

QString picture(const QString &size, int seconds, int rate = 25)
{
    return u"-f lavfi -i testsrc2=s=%1:r=%2:d=%3"_s.arg(size).arg(rate).arg(seconds);
}

QString sound(int seconds)
{
    return u"-f lavfi -i sine=d=%1:r=48000"_s.arg(seconds);
}

QString h264(const QString &name, const QString &size, int seconds)
{
    return clip(name, [&](const QString &path) {
        ffmpeg(picture(size, seconds) + u" -c:v libx264 -preset veryfast -g 25 -bf 2 -pix_fmt yuv420p"_s,
               path);
    });
}

QString smallVideo()
{
    return h264(u"video.mkv"_s, u"320x240"_s, 8);
}

QString stereoAac(const QString &name, int seconds)
{
    return clip(name, [&](const QString &path) { ffmpeg(sound(seconds) + u" -ac 2 -c:a aac"_s, path); });
}

QString surroundDts()
{
    return clip(u"surround.dts"_s,
                [](const QString &path) { ffmpeg(sound(8) + u" -ac 6 -strict -2 -c:a dca"_s, path); });
}

QString blackVideo()
{
    return clip(u"black-video.mkv"_s, [](const QString &path) {
        ffmpeg(u"-f lavfi -i color=black:s=320x240:r=25:d=8 -c:v libx264 -preset veryfast -g 25"_s, path);
    });
}

QString cover(const QString &name)
{
    return clip(name, [](const QString &path) {
        ffmpeg(u"-f lavfi -i testsrc2=s=64x64:r=1:d=1 -frames:v 1 -update 1"_s, path);
    });
}

QString withCover(const QString &name, const QString &image, const QString &kind)
{
    return clip(name, [&](const QString &path) {
        mkvmerge(path, {smallVideo(), u"--attachment-mime-type"_s, kind, u"--attachment-name"_s,
                        u"cover."_s + QFileInfo(image).suffix(), u"--attach-file"_s, image});
    });
}

QString mpeg2(const QString &name)
{
    return clip(name, [](const QString &path) {
        ffmpeg(picture(u"320x240"_s, 4) + u' ' + sound(4) +
                   u" -c:v mpeg2video -bf 2 -b:v 800k -c:a mp2 -ac 2"_s,
               path);
    });
}

QString mpeg4Avi(const QString &name, const QString &arguments)
{
    return clip(name, [&](const QString &path) {
        ffmpeg(picture(u"320x240"_s, 8) + u" -c:v mpeg4 -vtag xvid"_s + arguments, path);
    });
}

} // namespace

QString copyOf(const QString &clip, const Scratch &scratch, const QString &name)
{
    const QString target = scratch.path(name);
    QDir().mkpath(QFileInfo(target).path());
    if (!QFile::copy(clip, target))
        qFatal("can't copy %s to %s", qPrintable(clip), qPrintable(target));
    return target;
}

QString fullMkv()
{
    return clip(u"full.mkv"_s, [](const QString &path) {
        mkvmerge(path, {u"--language"_s, u"0:eng"_s, smallVideo(), //
                        u"--language"_s, u"0:eng"_s, u"--track-name"_s, u"0:Surround, five"_s, surroundAc3(),
                        u"--language"_s, u"0:ger"_s, audioOnly(), //
                        u"--language"_s, u"0:eng"_s, srtFile(),   //
                        u"--language"_s, u"0:fre"_s, assFile(), surroundDts()});
    });
}

QString wideMkv()
{
    return clip(u"wide.mkv"_s, [](const QString &path) {
        mkvmerge(path, {h264(u"wide-video.mkv"_s, u"2560x1440"_s, 1), stereoAac(u"stereo4.m4a"_s, 4),
                        clip(u"surround4.ac3"_s,
                             [](const QString &audio) {
                                 ffmpeg(sound(4) + u" -ac 6 -c:a ac3 -b:a 384k"_s, audio);
                             }),
                        srtFile()});
    });
}

QString film1920()
{
    return clip(u"film1920.mkv"_s, [](const QString &path) {
        mkvmerge(path, {h264(u"film-video.mkv"_s, u"1920x1080"_s, 1), u"--language"_s, u"0:eng"_s,
                        stereoAac(u"stereo4.m4a"_s, 4), u"--language"_s, u"0:eng"_s, srtFile()});
    });
}

QString manyTracksMkv()
{
    const QString picture = clip(u"huge-video.mkv"_s, [](const QString &path) {
        ffmpeg(u"-f lavfi -i testsrc2=s=2048x1152:r=5:d=8 -c:v libx264 -preset veryfast -g 5 -bf 2 "
               "-pix_fmt yuv420p"_s,
               path);
    });
    const auto audio = [](const QString &name, const QString &arguments) {
        return clip(name, [&](const QString &path) { ffmpeg(sound(8) + arguments, path); });
    };
    return clip(u"many.mkv"_s, [&](const QString &path) {
        const QStringList tracks{u"0:eng"_s, surroundAc3(),
                                 u"0:ger"_s, audioOnly(),
                                 u"0:eng"_s, audio(u"mono.m4a"_s, u" -ac 1 -c:a aac"_s),
                                 u"0:fre"_s, audio(u"stereo.ac3"_s, u" -ac 2 -c:a ac3 -b:a 192k"_s),
                                 u"0:und"_s, audio(u"surround.flac"_s, u" -ac 6 -c:a flac"_s),
                                 u"0:eng"_s, srtFile(),
                                 u"0:ger"_s, assFile(),
                                 u"0:fre"_s, srtFile()};
        QStringList arguments{picture};
        for (qsizetype i = 0; i < tracks.size(); i += 2)
            arguments << u"--language"_s << tracks.at(i) << tracks.at(i + 1);
        mkvmerge(path, arguments);
    });
}

QString longMkv(int seconds, int rate)
{
    return clip(u"long%1-%2.mkv"_s.arg(seconds).arg(rate), [&](const QString &path) {
        ffmpeg(picture(u"320x240"_s, seconds, rate) + u' ' + sound(seconds) +
                   u" -c:v libx264 -preset veryfast -g 25 -pix_fmt yuv420p -c:a aac -ac 2"_s,
               path);
    });
}

QString blackMkv()
{
    return clip(u"black.mkv"_s, [](const QString &path) {
        mkvmerge(path, {blackVideo(), audioOnly(), srtFile(), assFile()});
    });
}

QString pgsMkv()
{
    return clip(u"pgs.mkv"_s, [](const QString &path) {
        mkvmerge(path, {blackVideo(), audioOnly(), supFile()});
    });
}

QString vobsubMkv()
{
    return clip(u"vobsub.mkv"_s, [](const QString &path) {
        const QString container = clip(u"vobsub-only.mkv"_s, [](const QString &made) {
            ffmpeg(u"-copyts -fix_sub_duration -i "_s + supFile() + u" -c:s dvdsub"_s, made);
        });
        mkvmerge(path, {fullMkv(), container});
    });
}

QString headerRemovalMkv()
{
    return clip(u"header-removal.mkv"_s, [](const QString &path) {
        mkvmerge(path, {u"--compression"_s, u"0:mpeg4_p2"_s, mpeg4Avi(u"plain.avi"_s, {})});
    });
}

QString twoVideosMkv()
{
    return clip(u"two-videos.mkv"_s, [](const QString &path) {
        mkvmerge(path, {smallVideo(), h264(u"tiny-video.mkv"_s, u"160x120"_s, 8)});
    });
}

QString pngCoverMkv()
{
    return withCover(u"png-cover.mkv"_s, cover(u"cover.png"_s), u"image/png"_s);
}

QString jpegCoverMkv()
{
    return withCover(u"jpeg-cover.mkv"_s, cover(u"cover.jpg"_s), u"image/jpeg"_s);
}

QString textMp4()
{
    return clip(u"text.mp4"_s, [](const QString &path) {
        ffmpegOn({smallVideo(), audioOnly(), srtFile()},
                 u"-map 0 -map 1 -map 2 -c:v copy -c:a copy -c:s mov_text -metadata:s:s:0 language=eng"_s,
                 path);
    });
}

QString packedAvi()
{
    return mpeg4Avi(u"packed.avi"_s, u" -bf 2"_s);
}

QString oddAvi()
{
    return clip(u"odd.avi"_s, [](const QString &path) {
        ffmpeg(picture(u"320x240"_s, 4) + u" -vf scale=321:241 -c:v mpeg4"_s, path);
    });
}

QString latin1Avi()
{
    return clip(u"latin1.avi"_s, [](const QString &path) {
        ffmpeg(picture(u"320x240"_s, 4) + u' ' + sound(4) +
                   u" -c:v mpeg4 -c:a libmp3lame -ac 2 -metadata title=CafX"_s,
               path);
        writeContent(path, contentOf(path).replace("CafX", "Caf\xe9"));
    });
}

QString programStream()
{
    return mpeg2(u"program.mpg"_s);
}

QString transportStream()
{
    return mpeg2(u"transport.ts"_s);
}

QString audioOnly()
{
    return stereoAac(u"stereo.m4a"_s, 8);
}

QString surroundAc3()
{
    return clip(u"surround.ac3"_s,
                [](const QString &path) { ffmpeg(sound(8) + u" -ac 6 -c:a ac3 -b:a 384k"_s, path); });
}

QString rawH264()
{
    return clip(u"raw.h264"_s, [](const QString &path) {
        ffmpegOn({smallVideo()}, u"-c copy -bsf:v h264_mp4toannexb"_s, path);
    });
}

QString srtFile()
{
    return clip(u"lines.srt"_s, [](const QString &path) {
        writeContent(path, "1\n00:00:01,000 --> 00:00:03,000\nHello, world\n\n"
                           "2\n00:00:03,500 --> 00:00:06,000\nSecond line\n\n");
    });
}

QString assFile()
{
    return clip(u"lines.ass"_s, [](const QString &path) { ffmpegOn({srtFile()}, u"-c:s ass"_s, path); });
}

QString supFile()
{
    return clip(u"box.sup"_s, [](const QString &path) { writeContent(path, pictureSubtitle()); });
}

QString vp9Mkv()
{
    return clip(u"vp9.mkv"_s, [](const QString &path) {
        ffmpeg(picture(u"160x120"_s, 1) + u" -c:v libvpx-vp9 -deadline realtime -cpu-used 8"_s, path);
    });
}

QString opusMkv()
{
    return clip(u"opus.mkv"_s, [](const QString &path) {
        ffmpegOn({smallVideo(), audioOnly()}, u"-map 0 -map 1 -c:v copy -c:a libopus -ac 2"_s, path);
    });
}

QString damagedMkv()
{
    return clip(u"damaged.mkv"_s, [](const QString &path) {
        QByteArray content = contentOf(fullMkv());
        const qsizetype length = content.size() / 10;
        content.replace(content.size() / 2, length, QByteArray(length, '\x5a'));
        writeContent(path, content);
    });
}

QString truncatedMkv()
{
    return clip(u"truncated.mkv"_s, [](const QString &path) {
        const QByteArray content = contentOf(fullMkv());
        writeContent(path, content.first(content.size() / 5 * 3));
    });
}

QString emptyMkv()
{
    return clip(u"empty.mkv"_s, [](const QString &path) { writeContent(path, {}); });
}

} // namespace support
