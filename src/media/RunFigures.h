#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <utility>

namespace media {

/// How many packets went through one stream of a run of ffmpeg.
struct StreamFigures
{
    qint64 packets = 0;
    qint64 bytes = 0;
};

/// What a tool's own output tells of a run that ended well, as far as a check can use it. Nothing in it that
/// comes from a film counts: titles and names stand in lines that are left out.
struct RunFigures
{
    using Stream =
        std::pair<int, int>; ///< of ffmpeg: the number of the input or output, and the stream's in it

    QHash<Stream, StreamFigures> read;  ///< by input stream; empty unless ffmpeg was asked to be verbose
    QHash<Stream, StreamFigures> muxed; ///< by output stream
    bool damageIsTold = false;          ///< by whoever judged the run
    QString damage;    ///< the first line that tells of damaged or missing data, as the user sees it
    QString complaint; ///< the first other line of ffmpeg's that tells of an error, likewise
};

RunFigures runFiguresFrom(const QString &log);

/// The variable that has ffmpeg write a verbose copy of its output, figures included, into a file of that
/// plain name in its working folder. What it prints stays as it is, but for three lines in front, so that
/// progress and causes are read as ever.
std::pair<QString, QString> figuresVariable(const QString &plainName);

/// Whether a line of a tool tells that data was damaged or missing. Lines that good films bring about too
/// (times that do not grow, an estimated length) do not.
bool tellsOfDamage(const QString &line);

/// Whether ffmpeg says that line, as an error, of sound work too.
bool isHarmlessLine(const QString &line);

} // namespace media
