#include "Bench.h"

#include "steps/FfmpegProgress.h"

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr qsizetype megabyte = 1024 * 1024;
constexpr qsizetype chunkSize = 700; // the largest that ffmpeg was seen to write at once

/// Output like that of a long conversion: status lines that end in a carriage return.
QByteArray recordedOutput(qsizetype size)
{
    QByteArray output;
    output.reserve(size + 200);
    for (int frame = 0; output.size() < size; frame += 25) {
        const int second = frame / 25;
        output += QString::asprintf("frame=%5d fps= 25 q=28.0 size=%8dkB time=%02d:%02d:%02d.00 bitrate= "
                                    "983.0kbits/s speed=1.0x    \r",
                                    frame, second * 120, second / 3600 % 100, second / 60 % 60, second % 60)
                      .toLatin1();
    }
    return output;
}

double megabytesPerSecond(qsizetype megabytes)
{
    const QByteArray output = recordedOutput(megabytes * megabyte);
    steps::FfmpegProgressReader reader;
    int percents = 0;
    const double taken = seconds([&] {
        for (qsizetype at = 0; at < output.size(); at += chunkSize) {
            const steps::FfmpegReading reading = reader.feed(output.mid(at, chunkSize));
            percents += steps::percentOfDuration(reading.time, u"7200"_s);
        }
    });
    return percents > 0 ? static_cast<double>(megabytes) / taken : 0;
}

} // namespace

int reading()
{
    for (const qsizetype megabytes : {5, 10, 25, 50})
        say(u"progress reading, %1 MB: %2 MB/s"_s.arg(megabytes).arg(megabytesPerSecond(megabytes), 0, 'f',
                                                                     1));
    return 0;
}

} // namespace bench
