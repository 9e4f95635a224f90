#include "media/SourceWarnings.h"

#include "media/CheckWords.h"
#include "media/ExpectedStreams.h"
#include "media/FilmCheck.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace media {

namespace {

/// What a part by time may begin and end beside what was asked for, without a word.
constexpr double farFromAsked = 2;

/// A film may be put behind itself.
bool isOneFilm(const QList<QUrl> &sources)
{
    return sources.isEmpty() || sources.count(sources.constFirst()) == sources.size();
}

QString sentenceOfEnd(const FilmFacts &film, const QString &label)
{
    const auto end = film.lastEnd();
    const auto told = film.promise();
    if (!end)
        return u"%1 is cut off."_s.arg(label);
    const double begin = film.isTransport() || film.isProgram() ? film.earliestStart().value_or(0) : 0;
    if (film.isTransport() || film.isProgram() || !told || *told <= *end)
        return u"%1 is cut off: it ends at %2."_s.arg(label, clockTime(*end - begin));
    const bool isCoarse = clockTime(*end) != clockTime(*told);
    return isCoarse ? u"%1 ends at %2 of %3."_s.arg(label, clockTime(*end), clockTime(*told))
                    : u"%1 ends at %2 of %3 s."_s.arg(label, fineSeconds(*end), fineSeconds(*told));
}

/// What the tool told is part of what is told of a film that ends early.
QString toldByTool(const RunFigures &figures)
{
    if (!figures.damage.isNull())
        return figures.damageIsTold ? QString() : asSentence(u"The source is damaged: "_s + figures.damage);
    return figures.complaint.isNull() ? QString()
                                      : asSentence(u"ffmpeg told of an error: "_s + figures.complaint);
}

} // namespace

SourceWarnings warningsOfSources(const MeantOutput &output, const QHash<QUrl, FilmFacts> &films,
                                 const RunFigures &figures)
{
    const QList<QUrl> &sources = output.sources;
    SourceWarnings told;
    for (qsizetype i = 0; i < sources.size(); ++i) {
        const FilmFacts film = films.value(sources.at(i));
        const QString label =
            isOneFilm(sources) ? u"The source"_s : u"The source %1"_s.arg(sources.at(i).fileName());
        if (sources.indexOf(sources.at(i)) != i)
            continue;
        if (!film.isOpen)
            told.sentences << u"%1 can't be read, so %2 could not be compared with it."_s.arg(
                label, output.output.fileName());
        else if (film.isShort())
            told.sentences << sentenceOfEnd(film, label);
        told.tellsOfEnd = told.tellsOfEnd || film.isShort();
    }
    if (const QString words = toldByTool(figures); !told.tellsOfEnd && !words.isNull())
        told.sentences << words;
    return told;
}

QString warningOfStretch(const MeantOutput &output, const QHash<QUrl, FilmFacts> &films)
{
    const auto source = films.constFind(output.sources.value(0));
    if (output.extent != Extent::Stretch || source == films.constEnd() || !source->lastEnd())
        return {};
    const auto stretch = trueStretchOf(output, *source);
    const double begin = source->earliestStart().value_or(0);
    const double asked = std::max(output.from, begin);
    const double until = std::min(output.to.value_or(*source->lastEnd()), *source->lastEnd());
    if (!stretch ||
        (std::abs(stretch->from - asked) <= farFromAsked && std::abs(stretch->to - until) <= farFromAsked))
        return {};
    return u"%1 holds %2 to %3 of the source; %4 to %5 was asked for."_s.arg(
        output.output.fileName(), clockTime(stretch->from), clockTime(stretch->to), clockTime(output.from),
        clockTime(output.to.value_or(until)));
}

} // namespace media
