#pragma once

#include "tools/ToolProcess.h"

#include <QHash>
#include <QImage>
#include <QObject>
#include <QTimer>
#include <QUrl>

namespace window {

/// Pictures from films: one frame of each, taken with ffmpeg, one film after the other, and kept in memory
/// only. A film of which none comes has none; one that takes too long, as beside a conversion, has its turn
/// again after the others, a few times. Owned by the window.
class Thumbnails final : public QObject
{
    Q_OBJECT

public:
    explicit Thumbnails(QObject *parent);
    ~Thumbnails() override;

    /// Where ffmpeg is; without it no picture is taken.
    void setTool(const QString &ffmpeg) { m_ffmpeg = ffmpeg; }
    /// The picture, which is null until it was taken. Asks for it once.
    QImage of(const QUrl &film, double seconds);
    /// For tests: nothing is run.
    static void setSwitchedOff(bool off);

Q_SIGNALS:
    void taken(const QUrl &film);

private:
    struct Wish
    {
        QUrl film;
        double seconds = 0;
        int tries = 0; ///< that took too long
    };

    void takeNext();
    void finish();
    void giveUp();

    QString m_ffmpeg;
    QHash<QUrl, QImage> m_pictures;
    QList<Wish> m_wishes;
    Wish m_wish; ///< what is being taken
    QByteArray m_bytes;
    tools::ToolProcessPointer m_process;
    QTimer m_patience;
};

/// A film's picture in its place; the drawing of a film where there is none.
void paintThumbnail(QPainter &painter, const QRect &rect, const QImage &picture);

} // namespace window
