#include "support/jobs/CheckClips.h"

#include "support/ClipFactory.h"
#include "support/Clips.h"

using namespace Qt::StringLiterals;

namespace support {

namespace {

void convertTo(const QString &path, const QStringList &inputs, const QString &words)
{
    QStringList line{u"-nostdin"_s, u"-y"_s, u"-v"_s, u"error"_s};
    for (const QString &input : inputs)
        line += {u"-i"_s, input};
    runProgram(u"ffmpeg"_s, line + words.split(u' ') + QStringList{path});
}

QString masterMinute()
{
    return clip(u"minute.mkv"_s, [](const QString &path) {
        const QString words =
            u"-nostdin -y -v error -f lavfi -i testsrc2=s=160x120:r=25:d=60 -f lavfi -i sine=d=60:r=48000 "
            "-c:v libx264 -preset veryfast -g 50 -bf 2 -pix_fmt yuv420p -c:a aac -ac 2"_s;
        runProgram(u"ffmpeg"_s, words.split(u' ') + QStringList{path});
    });
}

QString codecsOf(const QString &extension)
{
    if (extension == u"mpg"_s)
        return u"-c:v mpeg2video -bf 2 -b:v 400k -c:a mp2 -ac 2"_s;
    if (extension == u"avi"_s)
        return u"-c:v mpeg4 -b:v 300k -vtag xvid -c:a libmp3lame -ac 2"_s;
    if (extension == u"wmv"_s)
        return u"-c:v wmv2 -b:v 300k -c:a wmav2 -ac 2"_s;
    return extension == u"mp4"_s || extension == u"mov"_s ? u"-c copy -movflags faststart"_s : u"-c copy"_s;
}

} // namespace

QString minuteOf(const QString &extension, int start)
{
    return clip(u"minute-%1.%2"_s.arg(start).arg(extension), [&](const QString &path) {
        convertTo(path, {masterMinute()}, codecsOf(extension) + u" -output_ts_offset %1"_s.arg(start));
    });
}

QString minuteWithText()
{
    return clip(u"minute-text.mkv"_s, [](const QString &path) {
        runProgram(u"mkvmerge"_s, {u"-o"_s, path, masterMinute(), srtFile()});
    });
}

} // namespace support
