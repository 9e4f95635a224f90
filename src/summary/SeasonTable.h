#pragma once

#include <QList>
#include <QStringList>

class KXSelection;
class KXVideoFile;

namespace summary {

/// What becomes of one thing of a film: a mark and a word.
struct SeasonCell
{
    enum class Mark { Copied, Encoded, Left, Missing };

    QString text; ///< "AC3 5.1 copied", "not in the film"
    Mark mark = Mark::Copied;
    bool differs = false; ///< from what most films have here
};

/// One film of a season.
struct SeasonRow
{
    int film = 0; ///< its place among the films that were given
    QString name;
    QString length;
    QString target;          ///< "Apple TV (3 and Later)"
    QString size;            ///< "about 1.2 GB", of the result
    QList<SeasonCell> cells; ///< by the columns of the table

    int differences() const;
};

/// Several films beside each other: picture, sound by language, subtitles. Those that differ from the most
/// stand first.
struct SeasonTable
{
    QStringList columns; ///< "Picture", "German sound", ..., "Subtitles"
    QList<SeasonRow> rows;
};

/// A film as it is ticked and set when its turn comes.
struct SeasonFilm
{
    const KXVideoFile *file = nullptr;
    const KXSelection *selection = nullptr;
};

SeasonTable seasonTable(const QList<SeasonFilm> &films);

} // namespace summary
