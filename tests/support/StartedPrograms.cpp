#include "support/StartedPrograms.h"

using namespace Qt::StringLiterals;

namespace support::started {

namespace {

QByteArrayList bytesOf(const QStringList &words)
{
    QByteArrayList bytes;
    for (const QString &word : words)
        bytes.append(word.toUtf8());
    return bytes;
}

} // namespace

Started probeOf(const QString &path)
{
    return {bytesOf({u"ffprobe"_s, u"-i"_s, path, u"-show_streams"_s, u"-print_format"_s, u"json"_s}),
            bytesOf({u"ffprobe"_s, u"-i"_s, path}), bytesOf({u"grep"_s, u"Stream #"_s}),
            bytesOf({u"ffprobe"_s, u"-i"_s, path, u"-print_format"_s, u"json"_s}),
            bytesOf({u"grep"_s, u"Durations"_s})};
}

Started durationOf(const QString &path)
{
    return {bytesOf({u"ffprobe"_s, u"-i"_s, path})};
}

Started ffmpeg(const QStringList &words)
{
    return {bytesOf(QStringList{u"ffmpeg"_s} + words)};
}

QStringList tags(const QString &stream, const QString &title)
{
    return {u"-metadata:s:"_s + stream, u"language=eng"_s, u"-metadata:s:"_s + stream, u"title="_s + title};
}

QString shown(const Started &runs)
{
    QStringList lines;
    for (const QByteArrayList &run : runs)
        lines.append(QString::fromUtf8(run.join('|')));
    return lines.join(u'\n');
}

} // namespace support::started
