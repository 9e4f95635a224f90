#include "media/ExpectedStreams.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace media {

namespace {

const QStringList &comparedKinds()
{
    static const QStringList kinds{u"video"_s, u"audio"_s, u"subtitle"_s};
    return kinds;
}

bool isKept(const TrackFate &fate)
{
    return fate.became == Became::Copied || fate.became == Became::Reencoded;
}

/// The fates of a kind, in the order of the sources and of their streams.
QList<int> keptFates(const MeantOutput &output, const QString &kind)
{
    QList<int> kept;
    for (int i = 0; i < output.tracks.size(); ++i) {
        if (output.tracks.at(i).kind == kind && isKept(output.tracks.at(i)))
            kept.append(i);
    }
    const auto place = [&](int at) {
        const TrackFate &fate = output.tracks.at(at);
        return std::pair(output.sources.indexOf(fate.source), fate.index);
    };
    std::stable_sort(kept.begin(), kept.end(), [&](int one, int other) { return place(one) < place(other); });
    return kept;
}

/// A film may be put behind itself: which of the fates of the same track this is.
qsizetype occurrenceOf(const MeantOutput &output, int at)
{
    const TrackFate &fate = output.tracks.at(at);
    return std::count_if(output.tracks.begin(), output.tracks.begin() + at, [&](const TrackFate &one) {
        return one.source == fate.source && one.index == fate.index && one.kind == fate.kind;
    });
}

/// In a sum, the first track of a kind follows the first of the film before, and so on.
QList<QList<int>> chainsOf(const MeantOutput &output, const QString &kind)
{
    QList<QList<int>> chains;
    QHash<std::pair<QUrl, qsizetype>, qsizetype> seen;
    for (const int at : keptFates(output, kind)) {
        const std::pair film(output.tracks.at(at).source, occurrenceOf(output, at));
        const qsizetype number = output.extent == Extent::Sum ? seen[film]++ : -1;
        if (number >= 0 && number < chains.size())
            chains[number].append(at);
        else
            chains.append(QList<int>{at});
    }
    return chains;
}

std::optional<double> startOf(const StreamFacts &stream, bool isCopied)
{
    return isCopied ? stream.startOfCopy() : stream.startOfPicture();
}

double beginOf(const FilmFacts &film)
{
    return film.earliestStart().value_or(film.start.value_or(0));
}

/// How long a film lasts as the next one of a sum is put behind it: to the end of its picture and sound where
/// a tool drops its text, else to the end of all that it holds, or to where its header says that it ends.
struct LengthInSum
{
    double least = 0;
    double most = 0;
};

std::optional<LengthInSum> lengthInSum(const FilmFacts &film)
{
    const auto end = film.lastEnd();
    if (!end)
        return std::nullopt;
    double last = std::max(*end, film.promise().value_or(*end));
    for (const StreamFacts &one : film.streams)
        last = std::max(last, one.lastEnd.value_or(last));
    const double begin = beginOf(film);
    return LengthInSum{*end - begin, last - begin};
}

/// What the packets of a sound in MP4 last more than it is heard.
double hiddenIn(const FilmFacts &film, const StreamFacts &source, const ExpectedStream &expected)
{
    const auto packed = packedSeconds(source, expected.packets);
    if (!film.isMov() || !packed || !expected.seconds)
        return 0;
    const double more = *packed - *expected.seconds;
    return more > 2 * *packetSeconds(source) ? more : 0;
}

struct Span
{
    std::optional<double> start;
    std::optional<double> end;
};

Span spanIn(const FilmFacts &film, const StreamFacts &stream, bool isCopied)
{
    Span span{startOf(stream, isCopied), stream.lastEnd};
    const double begin = beginOf(film);
    if (span.start)
        *span.start -= begin;
    if (span.end)
        *span.end -= begin;
    return span;
}

class Expecting final
{
public:
    Expecting(const MeantOutput &output, const QHash<QUrl, FilmFacts> &films)
        : m_output(output)
        , m_films(films)
    {
    }

    ExpectedStream streamOf(const QString &kind, const QList<int> &chain) const
    {
        const TrackFate &first = m_output.tracks.at(chain.constFirst());
        ExpectedStream expected;
        expected.kind = kind;
        expected.fates = chain;
        expected.isCopied = first.became == Became::Copied;
        expected.codec = expected.isCopied ? first.codec : first.to;
        for (const int at : chain)
            expected.sources.append(sourceOf(m_output.tracks.at(at)));
        if (const StreamFacts *source = expected.sources.constFirst()) {
            expected.language = source->language;
            if (expected.isCopied && !source->codec.isEmpty())
                expected.codec = source->codec;
        }
        measure(expected);
        return expected;
    }

private:
    const FilmFacts *filmOf(const TrackFate &fate) const
    {
        const auto found = m_films.constFind(fate.source);
        return found == m_films.constEnd() || !found->isOpen ? nullptr : &*found;
    }

    const StreamFacts *sourceOf(const TrackFate &fate) const
    {
        const FilmFacts *film = filmOf(fate);
        return film == nullptr ? nullptr : film->stream(fate.index);
    }

    void measure(ExpectedStream &expected) const
    {
        if (expected.sources.contains(nullptr))
            return;
        if (m_output.extent == Extent::Sum)
            measureSum(expected);
        else if (m_output.extent == Extent::Stretch)
            measureStretch(expected);
        else
            measureWhole(expected);
    }

    void measureWhole(ExpectedStream &expected) const
    {
        const StreamFacts &source = *expected.sources.constFirst();
        const FilmFacts &film = *filmOf(m_output.tracks.at(expected.fates.constFirst()));
        const Span span = spanIn(film, source, expected.isCopied);
        expected.start = span.start;
        if (span.start && span.end)
            expected.seconds = *span.end - *span.start;
        if (expected.isCopied) {
            expected.packets = trueCount(film, source);
            expected.hidden = hiddenIn(film, source, expected);
        }
    }

    /// Everything before the last film that has the track, and the track in that one.
    void measureSum(ExpectedStream &expected) const
    {
        const TrackFate &firstFate = m_output.tracks.at(expected.fates.constFirst());
        const TrackFate &lastFate = m_output.tracks.at(expected.fates.constLast());
        const Span first = spanIn(*filmOf(firstFate), *expected.sources.constFirst(), true);
        const Span last = spanIn(*filmOf(lastFate), *expected.sources.constLast(), true);
        const auto before = lengthBefore(lastFate.source, occurrenceOf(m_output, expected.fates.constLast()));
        const auto ahead =
            lengthBefore(firstFate.source, occurrenceOf(m_output, expected.fates.constFirst()));
        if (!first.start || !last.end || !before || !ahead)
            return;
        expected.start = ahead->least + *first.start;
        expected.seconds = before->least + *last.end - *expected.start;
        expected.mostLater = ahead->most - ahead->least;
        expected.mostMore = before->most - before->least - expected.mostLater;
        addCounts(expected);
    }

    void addCounts(ExpectedStream &expected) const
    {
        qint64 packets = 0;
        for (qsizetype i = 0; i < expected.fates.size(); ++i) {
            const FilmFacts &film = *filmOf(m_output.tracks.at(expected.fates.at(i)));
            const auto count = trueCount(film, *expected.sources.at(i));
            if (!count)
                return;
            packets += *count;
        }
        expected.packets = packets;
    }

    std::optional<LengthInSum> lengthBefore(const QUrl &source, qsizetype occurrence) const
    {
        LengthInSum sum;
        for (const QUrl &one : m_output.sources) {
            if (one == source && occurrence-- == 0)
                return sum;
            const auto film = m_films.constFind(one);
            const auto length = film == m_films.constEnd() ? std::nullopt : lengthInSum(*film);
            if (!length)
                return std::nullopt;
            sum.least += length->least;
            sum.most += length->most;
        }
        return std::nullopt;
    }

    void measureStretch(ExpectedStream &expected) const
    {
        const StreamFacts &source = *expected.sources.constFirst();
        const auto stretch =
            trueStretchOf(m_output, *filmOf(m_output.tracks.at(expected.fates.constFirst())));
        const auto start = source.startOfCopy();
        if (!stretch || !start || !source.lastEnd)
            return;
        const double from = std::max(*start, stretch->from);
        expected.start = from - stretch->from;
        expected.seconds = std::max(0.0, std::min(*source.lastEnd, stretch->to) - from);
    }

    const MeantOutput &m_output;
    const QHash<QUrl, FilmFacts> &m_films;
};

/// Where the tracks come from several films, each film's start is the output's; what counts is where they
/// begin beside each other.
void moveToEarliest(QList<ExpectedStream> &streams)
{
    std::optional<double> earliest;
    for (const ExpectedStream &one : streams) {
        if (one.isTimed() && one.start)
            earliest = std::min(earliest.value_or(*one.start), *one.start);
    }
    for (ExpectedStream &one : streams) {
        if (one.start)
            *one.start -= earliest.value_or(0);
    }
}

std::optional<double> firstKeyFrame(const FilmFacts &film, double from, double behind)
{
    std::optional<double> first;
    for (const double one : film.keyFrames) {
        if (one >= from - 0.0005 && one > behind + 0.0005 && (!first || one < *first))
            first = one;
    }
    return first;
}

} // namespace

double ExpectedStream::tolerance(const StreamFacts &found) const
{
    double most = 0.1;
    for (const StreamFacts *one : sources + QList<const StreamFacts *>{&found}) {
        if (one == nullptr)
            continue;
        if (kind == u"video"_s) // a picture may last as long as it likes
            most = std::max({most, 2 * one->frameSeconds, 2 * one->lastSeconds, 2 * one->lastGap});
        else if (one->sampleRate > 0)
            most = std::max(most, 2 * 2048.0 / one->sampleRate);
    }
    return isCopied ? most : 1.5 * most;
}

std::optional<double> packetSeconds(const StreamFacts &stream)
{
    static const QHash<QString, int> samples{
        {u"aac"_s, 1024}, {u"mp2"_s, 1152}, {u"mp3"_s, 1152}, {u"ac3"_s, 1536}};
    const bool isHalf = stream.codec == u"mp3"_s && stream.sampleRate < 32000;
    const int inPacket = isHalf ? 576 : samples.value(stream.codec);
    return inPacket > 0 && stream.sampleRate > 0 ? std::optional(double(inPacket) / stream.sampleRate)
                                                 : std::nullopt;
}

std::optional<double> packedSeconds(const StreamFacts &stream, std::optional<qint64> packets)
{
    const auto packet = packetSeconds(stream);
    return packet && packets ? std::optional(double(*packets) * *packet) : std::nullopt;
}

std::optional<qint64> trueCount(const FilmFacts &film, const StreamFacts &stream)
{
    const bool isStale = film.isShort() && !film.wasReadWhole;
    return isStale ? std::nullopt : stream.packets;
}

std::optional<TrueStretch> trueStretchOf(const MeantOutput &output, const FilmFacts &source)
{
    const auto end = source.lastEnd();
    if (!end)
        return std::nullopt;
    const double begin = beginOf(source);
    const bool fromHead = output.from <= begin;
    const auto from = fromHead ? std::optional(begin) : firstKeyFrame(source, output.from, -1);
    const bool toEnd = !output.to || *output.to >= *end;
    const auto to =
        toEnd ? end : firstKeyFrame(source, *output.to, from.value_or(-1)); // never nothing at all
    return TrueStretch{from.value_or(*end), to.value_or(*end)};
}

QList<ExpectedStream> expectedStreams(const MeantOutput &output, const QHash<QUrl, FilmFacts> &films)
{
    const Expecting expecting(output, films);
    QList<ExpectedStream> streams;
    for (const QString &kind : comparedKinds()) {
        for (const QList<int> &chain : chainsOf(output, kind))
            streams.append(expecting.streamOf(kind, chain));
    }
    moveToEarliest(streams);
    return streams;
}

} // namespace media
