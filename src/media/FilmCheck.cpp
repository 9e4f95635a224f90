#include "media/FilmCheck.h"

#include "media/CheckWords.h"
#include "media/PartsCheck.h"
#include "media/SampledTimes.h"
#include "media/SourceWarnings.h"
#include "media/StreamPairing.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace media {

namespace {

/// A file that takes longer to read than this is not read whole for its check.
constexpr qint64 mostBytesOfCount = 64 * 1024 * 1024;
constexpr double sumTolerance = 0.05;
constexpr double textTolerance = 1;
constexpr double toldTolerance = 1;

/// What is missing between the start and the end of a sound, by its count of packets; absent where not known.
std::optional<double> holesIn(const StreamFacts &stream, std::optional<qint64> packets)
{
    const auto packed = packedSeconds(stream, packets);
    const auto start = stream.startOfCopy();
    if (!packed || !start || !stream.lastEnd)
        return std::nullopt;
    const double missing = *stream.lastEnd - *start - *packed;
    return missing > 2 * *packetSeconds(stream) + 0.002 ? missing : 0; // times in milliseconds
}

/// Everything that is held against one output.
class OneCheck final
{
public:
    OneCheck(const MeantOutput &output, const Films &films, const RunFigures &figures)
        : m_films(films)
        , m_film(films.value(output.file.isEmpty() ? output.output : output.file))
        , m_figures(figures)
    {
        m_result.output = output;
    }

    CheckedOutput run()
    {
        if (!m_film.isOpen)
            sayItIsNotOpen();
        else if (isTooLong())
            compareHeaders();
        else if (output().isRaw)
            compareRaw();
        else
            compareFilm();
        const SourceWarnings told = warningsOfSources(output(), m_films, m_figures);
        m_warnings += told.sentences;
        m_result.tellsOfEnd = told.tellsOfEnd;
        if (m_isUsable &&
            !m_figures.damage.isNull()) // what a damaged source has lost is no fault of the result
            m_warnings = std::exchange(m_failures, {}) + m_warnings;
        m_result.sentences = m_failures + m_warnings;
        if (!m_failures.isEmpty())
            m_result.result = CheckedOutput::Result::Failed;
        else if (!m_warnings.isEmpty())
            m_result.result = CheckedOutput::Result::Warnings;
        return m_result;
    }

private:
    /// The streams of some films lie so far apart in them that a sample of one is most of the others.
    bool isTooLong()
    {
        const QList<QUrl> &sources = output().sources;
        return m_film.isTooLong || std::any_of(sources.begin(), sources.end(), [this](const QUrl &source) {
                   return m_films.value(source).isTooLong;
               });
    }

    MeantOutput &output() { return m_result.output; }
    QString name() { return output().output.fileName(); }

    void sayItIsNotOpen()
    {
        if (output().isRaw && m_film.wasAsked && m_film.bytes > 0)
            return; // not every stream that stands alone can be read again
        const QString words = m_film.errors.isEmpty() ? QString() : m_film.errors.constLast();
        const QString sentence = u"%1 can't be read"_s.arg(name());
        failWholly(asSentence(words.isEmpty() ? sentence : sentence + u": "_s + words));
    }

    void failWholly(const QString &sentence)
    {
        m_failures << sentence;
        m_isUsable = false;
    }

    /// A join by ffmpeg forgets that a picture is a cover.
    void takeCovers()
    {
        static const QStringList pictures{u"mjpeg"_s, u"png"_s, u"bmp"_s, u"gif"_s};
        const QList<TrackFate> &fates = output().tracks;
        qsizetype missing =
            std::count_if(fates.begin(), fates.end(),
                          [](const TrackFate &fate) {
                              return fate.kind == u"cover"_s && fate.became != Became::LeftOut;
                          }) -
            m_film.ofKind(u"cover"_s).size();
        for (StreamFacts &one : m_film.streams) {
            if (missing > 0 && one.kind == u"video"_s && pictures.contains(one.codec)) {
                one.kind = u"cover"_s;
                --missing;
            }
        }
    }

    void compareFilm()
    {
        const auto begin = m_film.earliestStart();
        const auto end = m_film.lastEnd();
        if (begin && end)
            m_result.seconds = *end - *begin;
        if (m_film.isShort())
            failWholly(u"%1 is not whole: it ends before its own header says that it does."_s.arg(name()));
        m_expected = expectedStreams(output(), m_films);
        takeCovers();
        compareNumbers();
        const QList<int> pairs = pairedStreams(m_expected, output(), m_film);
        findShift(pairs);
        for (qsizetype i = 0; i < pairs.size(); ++i) {
            if (pairs.at(i) >= 0)
                compareStream(m_expected.at(i), m_film.streams.at(pairs.at(i)));
        }
        if (const QString far = warningOfStretch(output(), m_films); !far.isNull())
            m_warnings << far;
    }

    /// What can be known without looking at packets.
    void compareHeaders()
    {
        m_expected = expectedStreams(output(), m_films);
        takeCovers();
        compareNumbers();
        const QList<int> pairs = pairedStreams(m_expected, output(), m_film);
        for (qsizetype i = 0; i < pairs.size(); ++i) {
            if (pairs.at(i) >= 0)
                compareHeader(m_expected.at(i), m_film.streams.at(pairs.at(i)));
        }
        const FilmFacts *source = onlySource();
        if (source != nullptr && takesAllOf(*source))
            compareToldLengths(source->seconds, m_film.seconds, name());
    }

    void compareHeader(const ExpectedStream &expected, const StreamFacts &found)
    {
        const QString label = labelOf(found) + u" of "_s + name();
        if (!expected.codec.isEmpty() && !isSameCodec(expected.codec, found.codec))
            failWholly(u"%1 is %2 instead of %3."_s.arg(label, found.codec, expected.codec));
        const StreamFacts *from = expected.sources.constFirst();
        const bool isSame = onlySource() != nullptr && from != nullptr && expected.isTimed() &&
                            compareToldLengths(from->headerSeconds, found.headerSeconds, label);
        for (const int at : expected.fates) {
            output().tracks[at].outputIndex = found.index;
            output().tracks[at].proof = isSame ? Proof::Lengths : Proof::NotProven;
        }
    }

    /// Whether both are known, and alike.
    bool compareToldLengths(std::optional<double> meant, std::optional<double> found, const QString &label)
    {
        if (!meant || !found)
            return false;
        if (std::abs(*meant - *found) <= std::max(toldTolerance, *meant * 0.0005))
            return true;
        failWholly(withTimes(label + u" lasts %1 instead of %2."_s, *found, *meant));
        return false;
    }

    /// Else the longest of its tracks may be among those that were left out.
    bool takesAllOf(const FilmFacts &source)
    {
        const QList<TrackFate> &fates = output().tracks;
        const auto isTaken = [&](const StreamFacts &one) {
            return std::any_of(fates.begin(), fates.end(), [&](const TrackFate &fate) {
                return fate.index == one.index && fate.became != Became::LeftOut;
            });
        };
        return std::all_of(source.streams.begin(), source.streams.end(), isTaken);
    }

    void compareNumbers()
    {
        for (const QString &kind : {u"video"_s, u"audio"_s, u"subtitle"_s}) {
            const qint64 meant = std::count_if(m_expected.begin(), m_expected.end(),
                                               [&](const auto &one) { return one.kind == kind; });
            const qint64 found = m_film.ofKind(kind).size();
            if (found != meant)
                failWholly(u"%1 holds %2 %3 instead of %4."_s.arg(name())
                               .arg(found)
                               .arg(kindWord(kind, found))
                               .arg(meant));
        }
        for (const QString &kind : {u"cover"_s, u"attachment"_s})
            compareAttached(kind, m_film.ofKind(kind).size());
        const bool hasChapters = std::any_of(output().tracks.begin(), output().tracks.end(), [](auto &fate) {
            return fate.kind == u"chapters"_s && fate.became == Became::Copied;
        });
        if (hasChapters && output().extent == Extent::Whole && m_film.chapters == 0)
            m_warnings << u"%1 has lost its chapters."_s.arg(name());
    }

    /// A film without its cover is a film all the same.
    void compareAttached(const QString &kind, qint64 found)
    {
        if (output().extent == Extent::Sum)
            return;
        const qint64 meant = std::count_if(output().tracks.begin(), output().tracks.end(), [&](auto &fate) {
            return fate.kind == kind && fate.became != Became::LeftOut;
        });
        if (found < meant)
            m_warnings << u"%1 holds %2 %3 instead of %4."_s.arg(name())
                              .arg(found)
                              .arg(kindWord(kind, found))
                              .arg(meant);
    }

    /// What the times of the output have more than those of its one source: by the picture where it is
    /// copied, which is what everything else must lie beside.
    void findShift(const QList<int> &pairs)
    {
        const FilmFacts *source = onlySource();
        if (source == nullptr || !source->earliestStart() || !m_film.earliestStart())
            return;
        std::optional<double> earliest;
        std::optional<double> earliestThere; // without the packets that an encoder puts in front
        for (qsizetype i = 0; i < pairs.size(); ++i) {
            const StreamFacts *from = m_expected.at(i).sources.constFirst();
            const auto start = from == nullptr ? std::nullopt : from->startOfCopy();
            if (!m_expected.at(i).isTimed() || !start || pairs.at(i) < 0)
                continue;
            const StreamFacts &found = m_film.streams.at(pairs.at(i));
            const auto there = m_expected.at(i).isCopied ? found.startOfCopy() : found.startOfPicture();
            if (m_expected.at(i).kind == u"video"_s && m_expected.at(i).isCopied && there &&
                saysWhenShown(*source, *from)) {
                m_shift = *there - *start;
                return;
            }
            earliest = std::min(earliest.value_or(*start), *start);
            if (there)
                earliestThere = std::min(earliestThere.value_or(*there), *there);
        }
        if (earliest)
            m_shift = earliestThere.value_or(*m_film.earliestStart()) - *earliest;
    }

    const FilmFacts *onlySource() const
    {
        const MeantOutput &meant = m_result.output;
        if (meant.extent != Extent::Whole || meant.sources.size() != 1)
            return nullptr;
        const auto found = m_films.constFind(meant.sources.constFirst());
        return found == m_films.constEnd() || !found->isOpen ? nullptr : &*found;
    }

    /// "The video", "The audio track 2".
    QString labelOf(const StreamFacts &found) const
    {
        const auto all = m_film.ofKind(found.kind);
        if (all.size() == 1)
            return u"The %1"_s.arg(found.kind == u"video"_s ? found.kind : found.kind + u" track"_s);
        qsizetype number = 0;
        while (number < all.size() && all.at(number)->index != found.index)
            ++number;
        return u"The %1 track %2"_s.arg(found.kind).arg(number + 1);
    }

    void compareStream(const ExpectedStream &expected, const StreamFacts &found)
    {
        const QString label = labelOf(found) + u" of "_s + name();
        if (!expected.codec.isEmpty() && !isSameCodec(expected.codec, found.codec))
            failWholly(u"%1 is %2 instead of %3."_s.arg(label, found.codec, expected.codec));
        const auto counted = countIn(found);
        fill(expected, found, counted);
        const qsizetype failures = m_failures.size();
        compareStart(expected, found, label);
        compareTimes(expected, found, label);
        const Measured length = compareLength(expected, found, label);
        const Measured count = compareCount(expected, found, counted, label);
        compareHoles(expected, found, counted, label);
        if (length == Measured::Off && count == Measured::Same && hasBackwardTimes(expected))
            believeCount(failures, label);
        setProof(expected, m_failures.size() > failures ? Measured::Off : length, count);
    }

    enum class Measured { NotKnown, Same, Off };

    static bool isSameCodec(const QString &one, const QString &other)
    {
        const QStringList layers{u"mp2"_s, u"mp3"_s}; // a reader may take one for the other
        return one == other || (layers.contains(one) && layers.contains(other));
    }

    std::optional<qint64> countIn(const StreamFacts &found) const
    {
        if (found.packets)
            return found.packets;
        const auto muxed = m_figures.muxed.constFind({0, found.index});
        return muxed == m_figures.muxed.constEnd() ? std::nullopt : std::optional(muxed->packets);
    }

    void fill(const ExpectedStream &expected, const StreamFacts &found, std::optional<qint64> counted)
    {
        const auto start = expected.isCopied ? found.startOfCopy() : found.startOfPicture();
        for (qsizetype i = 0; i < expected.fates.size(); ++i) {
            TrackFate &fate = output().tracks[expected.fates.at(i)];
            fate.outputIndex = found.index;
            if (start && found.lastEnd)
                fate.outputSeconds = *found.lastEnd - *start;
            fate.outputBytes = found.bytes;
            const auto muxed = m_figures.muxed.constFind({0, found.index});
            if (!fate.outputBytes && counted && muxed != m_figures.muxed.constEnd())
                fate.outputBytes = muxed->bytes;
            fillSource(fate, expected.sources.at(i));
        }
    }

    void fillSource(TrackFate &fate, const StreamFacts *source)
    {
        if (source == nullptr)
            return;
        const auto start = source->startOfCopy();
        if (start && source->lastEnd)
            fate.sourceSeconds = *source->lastEnd - *start;
        fate.sourceBytes = source->bytes;
        const auto read = readOf(fate);
        if (!fate.sourceBytes && read)
            fate.sourceBytes = read->bytes;
    }

    /// ffmpeg's own figures of a stream of one of its inputs.
    std::optional<StreamFigures> readOf(const TrackFate &fate) const
    {
        const auto input = m_result.output.sources.indexOf(fate.source);
        const auto read = m_figures.read.constFind({static_cast<int>(input), fate.index});
        return read == m_figures.read.constEnd() ? std::nullopt : std::optional(*read);
    }

    double slackOf(const ExpectedStream &expected, const StreamFacts &found) const
    {
        const double files =
            m_result.output.extent == Extent::Sum ? double(m_result.output.sources.size()) : 0;
        const double atKeyFrames = m_result.output.extent == Extent::Stretch ? 0.1 : 0;
        return expected.tolerance(found) + sumTolerance * files + atKeyFrames + ragged();
    }

    /// Where a film was cut its readers stop at different packets: one of them leaves a chunk out that
    /// another one still takes a piece of.
    double ragged() const
    {
        double seconds = 0;
        for (const QUrl &source : m_result.output.sources) {
            const auto film = m_films.constFind(source);
            seconds += film != m_films.constEnd() && film->isShort() ? 1 : 0;
        }
        return seconds;
    }

    void compareStart(const ExpectedStream &expected, const StreamFacts &found, const QString &label)
    {
        const auto start = expected.isCopied ? found.startOfCopy() : found.startOfPicture();
        const auto begin = m_film.earliestStart();
        if (!expected.isTimed() || !expected.start || !start || !begin || output().extent == Extent::Part ||
            expected.seconds == 0.0)
            return;
        const double late = *start - *begin - *expected.start;
        const double slack = slackOf(expected, found);
        const bool isLate = late > expected.mostLater + slack;
        if ((late < -slack || isLate) && std::abs(late + expected.hidden) > slack)
            m_failures << u"%1 begins %2 s too %3."_s.arg(label, fineSeconds(std::abs(late)),
                                                          late > 0 ? u"late"_s : u"early"_s);
    }

    void compareTimes(const ExpectedStream &expected, const StreamFacts &found, const QString &label)
    {
        const FilmFacts *source = onlySource();
        const StreamFacts *from = expected.sources.constFirst();
        if (source == nullptr || from == nullptr || !m_shift || !expected.isCopied)
            return;
        if (sampledTimes(*source, *from, m_film, found, *m_shift) == Sampled::Different)
            m_failures << u"%1 does not lie where it lay in the source."_s.arg(label);
    }

    Measured compareLength(const ExpectedStream &expected, const StreamFacts &found, const QString &label)
    {
        if (!expected.seconds || output().extent == Extent::Part)
            return Measured::NotKnown;
        if (!expected.isTimed())
            return compareLastText(expected, found, label);
        const auto start = expected.isCopied ? found.startOfCopy() : found.startOfPicture();
        if (!start || !found.lastEnd)
            return sayItIsEmpty(expected, found, label);
        const double length = *found.lastEnd - *start;
        const double more = length - *expected.seconds;
        const double slack = slackOf(expected, found);
        const bool isSame = more >= -slack && more <= expected.mostMore + slack;
        if (isSame || std::abs(more - expected.hidden) <= slack)
            return Measured::Same;
        m_failures << withTimes(label + u" lasts %1 instead of %2."_s, length, *expected.seconds);
        return Measured::Off;
    }

    /// One that ended long before the others was not looked for.
    Measured sayItIsEmpty(const ExpectedStream &expected, const StreamFacts &found, const QString &label)
    {
        const bool wasSeen = m_film.wasReadWhole || !found.firstTime;
        if (!wasSeen || *expected.seconds <= slackOf(expected, found))
            return Measured::NotKnown;
        failWholly(u"%1 holds nothing."_s.arg(label));
        return Measured::Off;
    }

    Measured compareLastText(const ExpectedStream &expected, const StreamFacts &found, const QString &label)
    {
        const FilmFacts *source = onlySource();
        const StreamFacts *from = expected.sources.constFirst();
        const auto begin = m_film.earliestStart();
        if (source == nullptr || from == nullptr || !from->lastEnd || !found.lastEnd || !begin || !m_shift)
            return Measured::NotKnown;
        const double meant = *from->lastEnd + *m_shift;
        if (std::abs(*found.lastEnd - meant) <= textTolerance)
            return Measured::Same;
        m_failures << withTimes(label + u" ends at %1 instead of %2."_s, *found.lastEnd - *begin,
                                meant - *begin);
        return Measured::Off;
    }

    std::optional<qint64> meantCount(const ExpectedStream &expected) const
    {
        if (expected.packets || expected.fates.size() != 1 || m_result.output.extent != Extent::Whole)
            return expected.packets;
        const auto read = readOf(m_result.output.tracks.at(expected.fates.constFirst()));
        return read ? std::optional(read->packets) : std::nullopt;
    }

    /// Edit lists and AVI are off by one or two.
    Measured compareCount(const ExpectedStream &expected, const StreamFacts &found,
                          std::optional<qint64> counted, const QString &label)
    {
        const auto meant = meantCount(expected);
        const bool isCounted = expected.isCopied && !found.codec.startsWith(u"pcm_"_s) &&
                               hasLikePackets(expected, found) && output().extent != Extent::Stretch &&
                               output().extent != Extent::Part;
        if (!meant || !counted || !isCounted)
            return Measured::NotKnown;
        const qint64 off = std::max<qint64>(3 * expected.fates.size(), *meant / 1000);
        const qint64 hidden = expected.hidden > 0 ? std::llround(expected.hidden / *packetSeconds(found)) : 0;
        if (std::abs(*meant - *counted) <= off || std::abs(*meant - hidden - *counted) <= off)
            return Measured::Same;
        m_failures << u"%1 holds %2 packets instead of %3."_s.arg(label).arg(*counted).arg(*meant);
        return Measured::Off;
    }

    /// Texts in MP4 have packets for the time between them, and pictures of text are packed by segments or as
    /// a whole, as the container does it.
    bool hasLikePackets(const ExpectedStream &expected, const StreamFacts &found) const
    {
        static const QStringList ofSegments{u"hdmv_pgs_subtitle"_s, u"dvd_subtitle"_s, u"dvb_subtitle"_s,
                                            u"xsub"_s};
        if (found.codec == u"mov_text"_s)
            return false;
        return !ofSegments.contains(found.codec) ||
               std::all_of(expected.fates.begin(), expected.fates.end(), [&](int at) {
                   return m_films.value(m_result.output.tracks.at(at).source).format == m_film.format;
               });
    }

    void compareHoles(const ExpectedStream &expected, const StreamFacts &found, std::optional<qint64> counted,
                      const QString &label)
    {
        const double missing = holesIn(found, counted).value_or(0);
        if (missing <= 0)
            return;
        const StreamFacts *from = expected.sources.constFirst();
        const auto before = from == nullptr ? std::nullopt : holesIn(*from, meantCount(expected));
        const double slack = 0.1 * double(std::max<qsizetype>(1, expected.fates.size()));
        const bool isJoined = output().extent == Extent::Sum; // its films' own tails lie in between
        if (isJoined || missing <= before.value_or(0) + slack)
            return;
        const double all = found.lastEnd.value_or(0) - found.startOfCopy().value_or(0);
        const QString sentence =
            u"%1 has holes: %2 s of %3 s are missing."_s.arg(label, fineSeconds(missing), fineSeconds(all));
        (before ? m_failures : m_warnings) << sentence;
    }

    /// Where pictures are older than those before them, ends tell nothing.
    bool hasBackwardTimes(const ExpectedStream &expected) const
    {
        const FilmFacts *source = onlySource();
        const StreamFacts *from = expected.sources.constFirst();
        if (source == nullptr || from == nullptr)
            return false;
        return std::any_of(source->errors.begin(), source->errors.end(), [](const QString &line) {
            return line.contains(u"non monoton"_s) || line.contains(u"Non-monotonous"_s);
        });
    }

    void believeCount(qsizetype failures, const QString &label)
    {
        while (m_failures.size() > failures)
            m_failures.removeLast();
        m_warnings << u"%1 has times that run backwards, as in the source; all its packets are there."_s.arg(
            label);
    }

    void setProof(const ExpectedStream &expected, Measured length, Measured count)
    {
        for (const int at : expected.fates) {
            Proof &proof = output().tracks[at].proof;
            proof = Proof::NotProven;
            if (length == Measured::Same)
                proof = Proof::Lengths;
            if (count == Measured::Same && length != Measured::Off)
                proof = Proof::Packets;
        }
    }

    void compareRaw()
    {
        if (m_film.streams.isEmpty())
            return;
        m_expected = expectedStreams(output(), m_films);
        const StreamFacts &found = m_film.streams.constFirst();
        for (const ExpectedStream &expected : std::as_const(m_expected))
            compareRawStream(expected, found);
    }

    /// It has no times: a sound that is always packed alike is as long as its packets.
    void compareRawStream(const ExpectedStream &expected, const StreamFacts &found)
    {
        const QString label = name();
        const auto counted = countIn(found);
        fill(expected, found, counted);
        for (const int at : expected.fates)
            output().tracks[at].outputBytes = m_film.bytes;
        const Measured count = compareCount(expected, found, counted, label);
        Measured length = Measured::NotKnown;
        const auto seconds = packedSeconds(found, counted);
        for (const int at : expected.fates)
            output().tracks[at].outputSeconds.reset();
        if (seconds && expected.seconds) {
            output().tracks[expected.fates.constFirst()].outputSeconds = *seconds;
            length = compareRawLength(expected, found, *seconds, label, count);
        }
        setProof(expected, length, count);
    }

    Measured compareRawLength(const ExpectedStream &expected, const StreamFacts &found, double seconds,
                              const QString &label, Measured count)
    {
        const double holes = holesIn(*expected.sources.constFirst(), meantCount(expected)).value_or(0);
        if (std::abs(seconds + holes - *expected.seconds) <= expected.tolerance(found))
            return Measured::Same;
        if (count == Measured::NotKnown) // the holes of a source that is not counted are not known
            m_warnings << withTimes(label + u" lasts %1 instead of %2."_s, seconds, *expected.seconds);
        return Measured::NotKnown;
    }

    const Films &m_films;
    FilmFacts m_film;
    const RunFigures &m_figures;
    CheckedOutput m_result;
    bool m_isUsable = true;
    QStringList m_failures;
    QStringList m_warnings;
    QList<ExpectedStream> m_expected;
    std::optional<double> m_shift;
};

MeantOutput completedBy(const MeantOutput &output, const Films &films)
{
    QHash<QUrl, SourceStreams> streams;
    for (const QUrl &source : output.sources) {
        const auto film = films.constFind(source);
        if (film != films.constEnd() && film->isOpen)
            streams.insert(source, sourceStreamsOf(*film));
    }
    return completed(output, streams);
}

} // namespace

SourceStreams sourceStreamsOf(const FilmFacts &film)
{
    static const QStringList known{u"video"_s, u"audio"_s, u"subtitle"_s, u"cover"_s, u"attachment"_s};
    SourceStreams streams;
    for (const StreamFacts &one : film.streams)
        streams.append({one.index, known.contains(one.kind) ? one.kind : u"data"_s,
                        one.codec.isEmpty() ? QString() : one.codec});
    return withChapters(streams, film.chapters > 0);
}

QString clockTime(double seconds)
{
    const auto whole = static_cast<qint64>(std::llround(std::max(seconds, 0.0)));
    const QString rest = u"%1:%2"_s.arg(whole / 60 % 60, whole < 3600 ? 1 : 2, 10, QChar(u'0'))
                             .arg(whole % 60, 2, 10, QChar(u'0'));
    return whole < 3600 ? rest : QString::number(whole / 3600) + u':' + rest;
}

QList<CheckedOutput> checkedOutputs(const QList<MeantOutput> &outputs, const Films &films,
                                    const RunFigures &figures)
{
    // The figures of a run name streams by number, which tells nothing where it wrote several files.
    const RunFigures common =
        outputs.size() == 1 ? figures
                            : RunFigures{{}, {}, figures.damageIsTold, figures.damage, figures.complaint};
    QList<CheckedOutput> checked;
    for (const MeantOutput &output : outputs)
        checked.append(OneCheck(completedBy(output, films), films, common).run());
    checkPartsTogether(checked, films);
    return checked;
}

FilmWish wishForSource(const QUrl &source, const QList<MeantOutput> &outputs)
{
    FilmWish wish{source, {}, {}, {}};
    for (const MeantOutput &output : outputs) {
        if (output.extent != Extent::Stretch || !output.sources.contains(source))
            continue;
        if (output.from > 0)
            wish.keyFramesFrom.append(output.from);
        if (output.to)
            wish.keyFramesFrom.append(*output.to);
    }
    return wish;
}

FilmWish wishForOutput(const MeantOutput &output, const Films &films)
{
    FilmWish wish{output.file.isEmpty() ? output.output : output.file, {}, {}, mostBytesOfCount};
    const auto source = films.constFind(output.sources.value(0));
    if (output.extent != Extent::Whole || source == films.constEnd() || !source->lastEnd())
        return wish;
    for (const double window : source->windows)
        wish.windowsBeforeEnd.append(*source->lastEnd() - window);
    return wish;
}

} // namespace media
