#include "tools/step/FfmpegProgress.h"

#include "tools/KXHelpers.h"
#include "tools/Numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace step {

namespace {

void readLine(const QString &line, FfmpegReading &reading)
{
    if (isStatusLine(line)) {
        const QString time = timeInStatusLine(line);
        if (!time.isNull()) {
            reading.time = time;
            reading.movesMoov = false;
        }
    } else if (line.contains(u"moving the moov atom"_s) && !line.startsWith(u' ')) {
        reading.movesMoov = true;
    }
}

} // namespace

FfmpegReading FfmpegProgressReader::feed(const QByteArray &chunk)
{
    FfmpegReading reading;
    for (const QString &line : m_lines.feed(chunk))
        readLine(line, reading);
    readLine(m_lines.rest(), reading);
    return reading;
}

bool isStatusLine(QStringView line)
{
    const QStringView text = line.trimmed();
    return text.startsWith(u"frame="_s) || text.startsWith(u"size="_s) || text.startsWith(u"Lsize="_s) ||
           text.startsWith(u"time="_s);
}

QString timeInStatusLine(const QString &line)
{
    const qsizetype at = line.lastIndexOf(u"time="_s);
    if (at < 0)
        return {};
    const qsizetype start = at + 5;
    const qsizetype blank = line.indexOf(u' ', start);
    const QString time = blank < 0 ? QString() : line.mid(start, blank - start);
    return time.contains(u':') ? time : QString();
}

int percentOfDuration(const QString &time, const QString &durationInSeconds)
{
    const qint64 percent = tools::percentOf(KXHelpers::convertToTimeInSecondsFrom(time),
                                            tools::leadingInteger(durationInSeconds));
    return static_cast<int>(std::clamp<qint64>(percent, 0, 1'000'000));
}

} // namespace step
