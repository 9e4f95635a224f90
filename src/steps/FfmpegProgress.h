#pragma once

#include "tools/LineCutter.h"

#include <QString>

#include <optional>

namespace steps {

/// What one chunk of ffmpeg's error stream tells about progress.
struct FfmpegReading
{
    QString time;           ///< the last whole time value; null when the chunk finished none
    bool movesMoov = false; ///< the last thing it said is that it moves the index to the front
    qint64 written = -1;    ///< the last whole size of the output, in bytes; -1 when the chunk finished none
    double fps = -1;        ///< pictures a second, of the last line that told; -1 when none did
    double speed = -1;      ///< seconds of film a second, likewise

    bool operator==(const FfmpegReading &) const = default;
};

/// How fast a tool is, by its own words.
struct RunSpeed
{
    std::optional<double> speed; ///< seconds of film a second
    std::optional<double> fps;   ///< pictures a second
};

/// Reads progress out of ffmpeg's error stream. Only ffmpeg's own status lines count: titles and
/// names in the banner may hold anything. What an unfinished line tells counts at once, and only once.
/// One per run.
class FfmpegProgressReader final
{
public:
    FfmpegReading feed(const QByteArray &chunk);
    void clear();

private:
    void hear(const QString &line, FfmpegReading &reading);

    tools::LineCutter m_lines;
    FfmpegReading m_saidByRest;
};

/// True for a line in which ffmpeg reports how far it is.
bool isStatusLine(QStringView line);
/// The value behind the last "time=" of a status line, up to the blank; null when there is no whole
/// value, or none that is a time ("N/A").
QString timeInStatusLine(const QString &line);
/// The bytes behind the last "size=" of a status line; -1 when there is no whole value ("N/A").
qint64 bytesInStatusLine(const QString &line);
/// The number behind "fps=" and "speed=" in a status line; -1 when there is no whole value ("N/A").
double framesASecondInStatusLine(const QString &line);
double speedInStatusLine(const QString &line);
/// Whole percent that a time text is of the duration, truncated, at most 100; 0 without a duration, and for
/// the negative times with which some runs begin.
int percentOfDuration(const QString &time, const QString &durationInSeconds);
/// Whole percent that the bytes written are of those of the sources, for a run of which no length is known;
/// at most 99, as what comes of a source may be larger.
int percentOfBytes(qint64 written, qint64 sources);

} // namespace steps
