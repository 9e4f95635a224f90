#include "steps/FfmpegProgress.h"

#include "tools/KXHelpers.h"
#include "tools/Numbers.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace steps {

namespace {

constexpr qint64 wholePercent = 100;
constexpr qint64 bytesInKilobyte = 1024;

/// The number between a word and the character that ends it; -1 where that is no number.
double numberBehind(const QString &line, const QString &word, QChar end)
{
    const qsizetype at = line.lastIndexOf(word);
    if (at < 0)
        return -1;
    qsizetype start = at + word.size();
    while (start < line.size() && line.at(start) == u' ')
        ++start;
    const qsizetype stop = line.indexOf(end, start);
    bool isNumber = false;
    const double number = stop < 0 ? -1 : line.mid(start, stop - start).toDouble(&isNumber);
    return isNumber && std::isfinite(number) && number >= 0 ? number : -1;
}

/// "[mp4 @ 0x55c5] Starting second pass: moving the moov atom to the beginning of the file", with or
/// without its head. Such words elsewhere in a line are somebody's file name.
bool tellsOfMoov(const QString &line)
{
    const QString own = line.startsWith(u'[') ? line.section(u"] "_s, 1) : line;
    return own.startsWith(u"moving the moov atom"_s) ||
           own.startsWith(u"Starting second pass: moving the moov atom"_s);
}

FfmpegReading saidBy(const QString &line)
{
    if (isStatusLine(line))
        return {timeInStatusLine(line), false, bytesInStatusLine(line), framesASecondInStatusLine(line),
                speedInStatusLine(line)};
    return {QString(), tellsOfMoov(line)};
}

} // namespace

FfmpegReading FfmpegProgressReader::feed(const QByteArray &chunk)
{
    FfmpegReading reading;
    for (const QString &line : m_lines.feed(chunk)) {
        hear(line, reading);
        m_saidByRest = {};
    }
    hear(m_lines.rest(), reading);
    return reading;
}

void FfmpegProgressReader::hear(const QString &line, FfmpegReading &reading)
{
    const FfmpegReading said = saidBy(line);
    if (said == m_saidByRest)
        return;
    const FfmpegReading before = std::exchange(m_saidByRest, said); // the line may have grown behind a value
    if (!said.time.isNull() && said.time != before.time)
        reading.time = said.time;
    if (said.fps >= 0)
        reading.fps = said.fps;
    if (said.speed >= 0)
        reading.speed = said.speed;
    if (said.written >= 0)
        reading.written = said.written;
    reading.movesMoov = said.movesMoov;
}

void FfmpegProgressReader::clear()
{
    m_lines.clear();
    m_saidByRest = {};
}

bool isStatusLine(QStringView line)
{
    // Never indented: what is indented comes from the file.
    return line.startsWith(u"frame="_s) || line.startsWith(u"size="_s) || line.startsWith(u"Lsize="_s) ||
           line.startsWith(u"time="_s);
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

/// "size=     128kB"; newer versions say "KiB".
qint64 bytesInStatusLine(const QString &line)
{
    const qsizetype at = line.lastIndexOf(u"size="_s);
    const QString value = at < 0 ? QString() : line.mid(at + 5).trimmed();
    const qsizetype unit = value.indexOf(u'k', 0, Qt::CaseInsensitive);
    const QString digits = unit < 0 ? QString() : value.left(unit);
    return tools::isAllDigits(digits) ? tools::leadingInteger(digits) * bytesInKilobyte : -1;
}

double framesASecondInStatusLine(const QString &line)
{
    return numberBehind(line, u"fps="_s, u' ');
}

double speedInStatusLine(const QString &line)
{
    return numberBehind(line, u"speed="_s, u'x');
}

int percentOfDuration(const QString &time, const QString &durationInSeconds)
{
    if (time.startsWith(u'-'))
        return 0;
    const qint64 percent = tools::percentOf(KXHelpers::convertToTimeInSecondsFrom(time),
                                            tools::leadingInteger(durationInSeconds));
    return static_cast<int>(std::clamp<qint64>(percent, 0, wholePercent));
}

int percentOfBytes(qint64 written, qint64 sources)
{
    return static_cast<int>(std::clamp<qint64>(tools::percentOf(written, sources), 0, wholePercent - 1));
}

} // namespace steps
