#pragma once

#include "media/FilmFacts.h"

#include <QByteArray>
#include <QStringList>
#include <QUrl>

namespace media {

/// One run of ffprobe over a film, as a value.
struct FilmRead
{
    enum class What {
        Header,  ///< format and length alone, to know where the tail is
        Survey,  ///< header, head, windows and tail, in one run; all of a short film
        Stretch, ///< the packets between two times
        Whole,   ///< all packets
        Streams  ///< header and streams without a packet, of a film whose survey lists too much
    };
    What what = What::Header;
    std::optional<double> promise; ///< of a survey: where the film should end
    QList<double> windows;         ///< of a survey
    double from = 0;               ///< of a stretch
    double to = 0;

    bool operator==(const FilmRead &) const = default;
};

/// What is wanted of a film.
struct FilmWish
{
    QUrl film;
    /// How far the sampled windows are before the film's end; where absent, at three quarters, half and a
    /// quarter of its length.
    QList<double> windowsBeforeEnd;
    /// Times from which on the first key frame is wanted, each behind the one before.
    QList<double> keyFramesFrom;
    /// A file that can only be known by reading all of it is read when it is no larger; absent: however
    /// large.
    std::optional<qint64> mostBytesRead;
};

/// A short film is read whole, and so is no longer one than this.
inline constexpr double shortFilmSeconds = 40;

/// So many packets at most are listed in one piece, whatever a header tells.
inline constexpr int mostListed = 20000;

/// The arguments of ffprobe for a read.
QStringList argumentsOf(const FilmRead &read, const QUrl &film);

/// The read that is still needed to know of the film what is wished; absent when all is known that can be.
/// The list is of those that were made already.
std::optional<FilmRead> nextRead(const FilmFacts &facts, const FilmWish &wish, const QList<FilmRead> &made);

} // namespace media
