#include "summary/SeasonTable.h"

#include "media/KXVideoFile.h"
#include "selection/KXSelection.h"
#include "summary/ConversionSummary.h"
#include "summary/Figures.h"
#include "summary/TrackLook.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using media::TrackKind;
using Mark = summary::SeasonCell::Mark;

namespace summary {

namespace {

TrackList tracksOf(const KXVideoFile &file, TrackKind kind, const QString &language = {})
{
    TrackList tracks;
    for (const TrackPointer &track : file.trackList()) {
        if (kindOf(*track) == kind && (language.isNull() || track->trackLanguage() == language))
            tracks.append(track);
    }
    return tracks;
}

/// Every language that has sound in one of the films, in the order in which they come.
QStringList soundLanguages(const QList<SeasonFilm> &films)
{
    QStringList languages;
    for (const SeasonFilm &film : films) {
        for (const TrackPointer &track : tracksOf(*film.file, TrackKind::Audio)) {
            if (!languages.contains(track->trackLanguage()))
                languages.append(track->trackLanguage());
        }
    }
    return languages;
}

SeasonCell cellOf(const SeasonFilm &film, const KXVideoTrack &track)
{
    const Becoming becoming = becomesBy(*film.selection, track);
    QStringList words{codecText(track), channelsText(track.trackNumberOfChannels())};
    words.removeAll(QString());
    const QString what = words.join(u' ');
    if (!track.trackSelected() || becoming.tone != Becoming::Tone::Plain)
        return {what + u", left out"_s, Mark::Left, false};
    if (becoming.text == u"Copied"_s || becoming.text == u"Kept as a track"_s)
        return {what + (kindOf(track) == TrackKind::Subtitle ? u" kept"_s : u" copied"_s), Mark::Copied,
                false};
    return {becoming.text, Mark::Encoded, false};
}

/// The best of several: what goes along counts before what is left out.
SeasonCell cellOf(const SeasonFilm &film, const TrackList &tracks)
{
    if (tracks.isEmpty())
        return {u"not in the film"_s, Mark::Missing, false};
    QStringList texts;
    Mark mark = Mark::Left;
    for (const TrackPointer &track : tracks) {
        const SeasonCell cell = cellOf(film, *track);
        if (cell.mark == Mark::Left)
            continue;
        texts.append(cell.text);
        mark = cell.mark;
    }
    return texts.isEmpty() ? cellOf(film, *tracks.constFirst())
                           : SeasonCell{texts.join(u" + "_s), mark, false};
}

SeasonCell subtitleCell(const SeasonFilm &film)
{
    const TrackList tracks = tracksOf(*film.file, TrackKind::Subtitle);
    if (tracks.isEmpty())
        return {u"none in the film"_s, Mark::Missing, false};
    QStringList languages;
    Mark mark = Mark::Left;
    for (const TrackPointer &track : tracks) {
        const SeasonCell cell = cellOf(film, *track);
        if (cell.mark == Mark::Left)
            continue;
        languages.append(cell.mark == Mark::Encoded ? track->trackLanguage() + u" burned in"_s
                                                    : track->trackLanguage());
        mark = cell.mark;
    }
    return languages.isEmpty() ? SeasonCell{u"%1 left out"_s.arg(tracks.size()), Mark::Left, false}
                               : SeasonCell{languages.join(u", "_s), mark, false};
}

SeasonRow rowOf(int place, const SeasonFilm &film, const QStringList &languages)
{
    SeasonRow row;
    row.film = place;
    row.name = film.file->theFileName();
    row.length = lengthText(film.file->seconds().value_or(0));
    row.target = film.selection->theDevice();
    row.size = conversionSizeText(*film.file, *film.selection);
    row.cells.append(cellOf(film, tracksOf(*film.file, TrackKind::Video)));
    for (const QString &language : languages)
        row.cells.append(cellOf(film, tracksOf(*film.file, TrackKind::Audio, language)));
    row.cells.append(subtitleCell(film));
    return row;
}

/// What most rows say in that column; of two that are as many, what comes first.
QString usualText(const QList<SeasonRow> &rows, qsizetype column)
{
    QString usual;
    qsizetype most = 0;
    for (const SeasonRow &row : rows) {
        const QString text = row.cells.at(column).text;
        const auto count = std::count_if(rows.begin(), rows.end(), [&](const SeasonRow &other) {
            return other.cells.at(column).text == text;
        });
        if (count > most) {
            most = count;
            usual = text;
        }
    }
    return usual;
}

} // namespace

int SeasonRow::differences() const
{
    return static_cast<int>(
        std::count_if(cells.begin(), cells.end(), [](const SeasonCell &cell) { return cell.differs; }));
}

SeasonTable seasonTable(const QList<SeasonFilm> &films)
{
    SeasonTable table;
    const QStringList languages = soundLanguages(films);
    table.columns.append(u"Picture"_s);
    for (const QString &language : languages)
        table.columns.append(language == u"undetermined"_s ? u"Sound"_s : u"%1 sound"_s.arg(language));
    table.columns.append(u"Subtitles"_s);
    for (int place = 0; place < films.size(); ++place)
        table.rows.append(rowOf(place, films.at(place), languages));
    for (qsizetype column = 0; column < table.columns.size(); ++column) {
        const QString usual = usualText(table.rows, column);
        for (SeasonRow &row : table.rows)
            row.cells[column].differs = row.cells.at(column).text != usual;
    }
    std::stable_sort(table.rows.begin(), table.rows.end(), [](const SeasonRow &one, const SeasonRow &other) {
        return one.differences() > other.differences();
    });
    return table;
}

} // namespace summary
