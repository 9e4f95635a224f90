#include "media/FilmCheck.h"

#include "media/CheckWords.h"
#include "media/PartsCheck.h"
#include "media/SampledTimes.h"
#include "media/SourceWarnings.h"
#include "media/StreamCheck.h"
#include "media/StreamPairing.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace media {

namespace {

/// A file that takes longer to read than this is not read whole for its check.
constexpr qint64 mostBytesOfCount = 64 * 1024 * 1024;

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
        m_findings.warnings += told.sentences;
        m_result.tellsOfEnd = told.tellsOfEnd;
        if (m_findings.isUsable &&
            !m_figures.damage.isNull()) // what a damaged source has lost is no fault of the result
            m_findings.warnings = std::exchange(m_findings.failures, {}) + m_findings.warnings;
        m_result.sentences = m_findings.failures + m_findings.warnings;
        if (!m_findings.failures.isEmpty())
            m_result.result = CheckedOutput::Result::Failed;
        else if (!m_findings.warnings.isEmpty())
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
    StreamCheck checkOf(const ExpectedStream &expected, const StreamFacts &found)
    {
        return {m_beside, expected, found, m_findings};
    }
    QString name() { return output().output.fileName(); }

    void sayItIsNotOpen()
    {
        if (output().isRaw && m_film.wasAsked && m_film.bytes > 0)
            return; // not every stream that stands alone can be read again
        const QString words = m_film.errors.isEmpty() ? QString() : m_film.errors.constLast();
        const QString sentence = u"%1 can't be read"_s.arg(name());
        m_findings.failWholly(asSentence(words.isEmpty() ? sentence : sentence + u": "_s + words));
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
            m_findings.failWholly(
                u"%1 is not whole: it ends before its own header says that it does."_s.arg(name()));
        m_expected = expectedStreams(output(), m_films);
        takeCovers();
        compareNumbers();
        const QList<int> pairs = pairedStreams(m_expected, output(), m_film);
        findShift(pairs);
        for (qsizetype i = 0; i < pairs.size(); ++i) {
            if (pairs.at(i) >= 0)
                checkOf(m_expected.at(i), m_film.streams.at(pairs.at(i))).compare();
        }
        if (const QString far = warningOfStretch(output(), m_films); !far.isNull())
            m_findings.warnings << far;
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
                checkOf(m_expected.at(i), m_film.streams.at(pairs.at(i))).compareHeaders();
        }
        const FilmFacts *source = m_beside.onlySource();
        if (source != nullptr && takesAllOf(*source))
            compareToldLengths(source->seconds, m_film.seconds, name(), m_findings);
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
                m_findings.failWholly(u"%1 holds %2 %3 instead of %4."_s.arg(name())
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
            m_findings.warnings << u"%1 has lost its chapters."_s.arg(name());
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
            m_findings.warnings << u"%1 holds %2 %3 instead of %4."_s.arg(name())
                                       .arg(found)
                                       .arg(kindWord(kind, found))
                                       .arg(meant);
    }

    /// What the times of the output have more than those of its one source: by the picture where it is
    /// copied, which is what everything else must lie beside.
    void findShift(const QList<int> &pairs)
    {
        const FilmFacts *source = m_beside.onlySource();
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
                m_beside.shift = *there - *start;
                return;
            }
            earliest = std::min(earliest.value_or(*start), *start);
            if (there)
                earliestThere = std::min(earliestThere.value_or(*there), *there);
        }
        if (earliest)
            m_beside.shift = earliestThere.value_or(*m_film.earliestStart()) - *earliest;
    }

    void compareRaw()
    {
        if (m_film.streams.isEmpty())
            return;
        m_expected = expectedStreams(output(), m_films);
        const StreamFacts &found = m_film.streams.constFirst();
        for (const ExpectedStream &expected : std::as_const(m_expected))
            checkOf(expected, found).compareRaw();
    }

    const Films &m_films;
    FilmFacts m_film;
    const RunFigures &m_figures;
    CheckedOutput m_result;
    Findings m_findings;
    QList<ExpectedStream> m_expected;
    OutputBeside m_beside{m_result.output, m_films, m_film, m_figures, {}};
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
