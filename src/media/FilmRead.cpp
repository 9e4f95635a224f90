#include "media/FilmRead.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;
using What = media::FilmRead::What;

namespace media {

namespace {

/// The tail begins so long before the end.
constexpr double tailSeconds = 5;

QString number(double seconds)
{
    return QString::number(std::max(seconds, 0.0), 'f', 3);
}

/// The head first, without a seek; then each window; the tail last, which goes on to the end of the file.
/// Where nothing is told, the head shows what can be told of its start.
QString intervalsOf(const FilmRead &read)
{
    if (!read.promise)
        return u"%+#60"_s;
    if (*read.promise <= shortFilmSeconds)
        return u"%+#%1"_s.arg(mostListed);
    QStringList intervals{u"%+#60"_s};
    for (const double from : read.windows)
        intervals << number(from) + u'%' + number(from + windowSeconds);
    return (intervals << number(*read.promise - tailSeconds) + u"%+#%1"_s.arg(mostListed)).join(u',');
}

QStringList headerArguments()
{
    return {u"-show_entries"_s, u"format=format_name,start_time,duration,size"_s, u"-of"_s, u"json"_s};
}

QStringList streamsArguments()
{
    return {u"-show_format"_s, u"-show_streams"_s, u"-show_chapters"_s, u"-show_data_hash"_s, u"md5"_s,
            u"-of"_s,          u"json"_s};
}

QStringList surveyArguments(const FilmRead &read)
{
    return {u"-show_format"_s,
            u"-show_streams"_s,
            u"-show_chapters"_s,
            u"-show_data_hash"_s,
            u"md5"_s,
            u"-read_intervals"_s,
            intervalsOf(read),
            u"-show_entries"_s,
            u"packet=stream_index,pts_time,dts_time,duration_time,size,flags"_s,
            u"-of"_s,
            u"json"_s};
}

QStringList packetArguments(const FilmRead &read)
{
    QStringList words;
    if (read.what == What::Stretch)
        words << u"-read_intervals"_s << number(read.from) + u'%' + number(read.to);
    return words << u"-show_entries"_s << u"packet=stream_index,pts_time,dts_time,duration_time,size,flags"_s
                 << u"-of"_s << u"csv=p=0"_s;
}

bool wasMade(const QList<FilmRead> &made, What what)
{
    return std::any_of(made.begin(), made.end(), [&](const FilmRead &one) { return one.what == what; });
}

qsizetype surveysIn(const QList<FilmRead> &made)
{
    return std::count_if(made.begin(), made.end(),
                         [](const FilmRead &one) { return one.what == What::Survey; });
}

/// None too near the tail, which is read anyway.
QList<double> windowsIn(double promise, const FilmWish &wish)
{
    QList<double> before = wish.windowsBeforeEnd;
    if (before.isEmpty())
        before = {promise * 0.75, promise * 0.5, promise * 0.25};
    QList<double> windows;
    for (const double one : std::as_const(before)) {
        if (promise - one >= 0 && one > tailSeconds + 3)
            windows.append(std::round((promise - one) * 1000) / 1000);
    }
    return windows;
}

FilmRead survey(std::optional<double> promise, const FilmWish &wish)
{
    FilmRead read{What::Survey, promise, {}};
    if (promise && *promise > shortFilmSeconds)
        read.windows = windowsIn(*promise, wish);
    return read;
}

FilmRead stretch(double from, double to)
{
    FilmRead read{What::Stretch, {}, {}};
    read.from = std::max(from, 0.0);
    read.to = to;
    return read;
}

bool lacksItsEnd(const StreamFacts &one)
{
    return !one.lastEnd && (one.isTimed() || one.kind == u"subtitle"_s);
}

/// Around what a tag tells, then further and further back from the end. What ended before is not looked for:
/// that would read most of the film.
std::optional<FilmRead> searchOf(const FilmFacts &facts, const QList<FilmRead> &made)
{
    const double end = facts.aimed.value_or(facts.lastEnd().value_or(0));
    QList<FilmRead> tried;
    bool isNeeded = false;
    for (const StreamFacts &one : facts.streams) {
        isNeeded = isNeeded || lacksItsEnd(one);
        if (lacksItsEnd(one) && one.toldEnd)
            tried.append(stretch(*one.toldEnd - 10, *one.toldEnd + 2));
    }
    tried << stretch(end - 30, end) << stretch(end - 180, end - 30);
    for (const FilmRead &one : std::as_const(tried)) {
        if (isNeeded && !made.contains(one))
            return one;
    }
    return std::nullopt;
}

/// The first key frame from a time on and behind another one.
std::optional<double> keyFrameIn(const FilmFacts &facts, double from, double to, double behind)
{
    std::optional<double> first;
    for (const double one : facts.keyFrames) {
        const bool isThere = one >= from - 0.0005 && one <= to && one > behind + 0.0005;
        if (isThere && (!first || one < *first))
            first = one;
    }
    return first;
}

/// The key frames from these times on, each behind the one before, in stretches that grow.
std::optional<FilmRead> keyFrameRead(const FilmFacts &facts, const FilmWish &wish,
                                     const QList<FilmRead> &made)
{
    double behind = -1;
    for (const double from : wish.keyFramesFrom) {
        if (facts.lastEnd() && from >= *facts.lastEnd())
            continue;
        for (const double length : {15.0, 120.0, 1200.0}) {
            const FilmRead read = stretch(from, from + length);
            if (!made.contains(read))
                return read;
            const auto found = keyFrameIn(facts, from, from + length, behind);
            behind = found.value_or(behind);
            if (found)
                break;
        }
    }
    return std::nullopt;
}

bool canNotSeek(const FilmFacts &facts)
{
    return std::any_of(facts.errors.begin(), facts.errors.end(),
                       [](const QString &line) { return line.contains(u"Could not seek"_s); });
}

} // namespace

QStringList argumentsOf(const FilmRead &read, const QUrl &film)
{
    QStringList words{u"-v"_s, u"error"_s};
    if (read.what == What::Header)
        words += headerArguments();
    else if (read.what == What::Streams)
        words += streamsArguments();
    else
        words += read.what == What::Survey ? surveyArguments(read) : packetArguments(read);
    return words << u"-i"_s << film.toLocalFile();
}

std::optional<FilmRead> nextRead(const FilmFacts &facts, const FilmWish &wish, const QList<FilmRead> &made)
{
    if (facts.isTooLong)
        return wasMade(made, What::Streams) ? std::nullopt : std::optional(FilmRead{What::Streams, {}, {}});
    if (surveysIn(made) == 0 && !facts.seconds && !wasMade(made, What::Header))
        return FilmRead{What::Header, {}, {}};
    if (surveysIn(made) == 0)
        return survey(facts.promise(), wish);
    if (!facts.isOpen)
        return std::nullopt;
    const double aimed = facts.aimed.value_or(0); // by what ffprobe thinks otherwise of
    if (!facts.hasTail && surveysIn(made) == 1 && std::abs(facts.promise().value_or(aimed) - aimed) > 1)
        return survey(facts.promise(), wish);
    const FilmRead whole{What::Whole, {}, {}};
    const bool mayReadAll =
        !made.contains(whole) && (!wish.mostBytesRead || facts.bytes <= *wish.mostBytesRead);
    if ((!facts.hasTail || canNotSeek(facts)) && mayReadAll)
        return whole;
    const auto end = facts.lastEnd();
    if (end && (facts.isShort() || !facts.promise()) && !facts.listsAll && surveysIn(made) == 1)
        return survey(*end, wish); // the windows lie in what there is
    if (facts.wasReadWhole)
        return std::nullopt;
    if (const auto read = keyFrameRead(facts, wish, made))
        return read;
    const auto search = searchOf(facts, made);
    return !search && !end && mayReadAll ? whole : search;
}

} // namespace media
