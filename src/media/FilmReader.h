#pragma once

#include "media/FilmRead.h"

#include <QHash>

namespace media {

/// Makes the facts of one film out of what ffprobe prints: says which read is next, is fed its output in
/// chunks of any size, and takes in what it tells. Starts nothing itself. One per film.
class FilmReader final
{
public:
    explicit FilmReader(const FilmWish &wish);

    /// The arguments of the next run of ffprobe; none when all is known.
    QStringList next();
    void feed(const QByteArray &chunk);
    /// The run has ended; its error lines.
    void finish(const QByteArray &errors);
    const FilmFacts &facts() const { return m_facts; }
    /// The run lists more than can be looked at: nothing more of it is taken in.
    bool isCut() const { return m_isCut; }

private:
    void takeListing();
    void takeLines();
    void takeLine(const QByteArray &line);
    void take(const FilmPacket &packet);
    void takeEndOf(const FilmPacket &packet);
    void takePicture(const FilmPacket &packet);
    void takeSurveyed(qsizetype count);
    void countWhole();
    bool isOfTail(const FilmPacket &packet) const;

    FilmWish m_wish;
    FilmFacts m_facts;
    FilmRead m_read;
    QList<FilmRead> m_made;
    QByteArray m_printed;
    bool m_isCut = false;
    QHash<int, QList<double>> m_lastPictures; ///< the last few times a stream, sorted
    QList<qint64> m_counts;                   ///< packets a stream, of a read of all
};

/// The header's and the streams' part of a survey, without what is measured. Exposed for tests.
FilmFacts headerFactsFrom(const QByteArray &json);

} // namespace media
