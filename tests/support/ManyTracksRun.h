#pragma once

#include <QJsonObject>
#include <QStringList>

namespace support {

/// What a conversion of manyTracksMkv() is expected to run, in words.
struct ManyTracksRun
{
    QString device;
    int passes = 1;
    QString video;     ///< "copy", or levels, width and bit rate: "L31 w1280 2500k"
    QString audio;     ///< outputs in their order: "2:copy 1:aac:2:160"
    QString subtitles; ///< "6 7", or "burn 6"

    QString outputName() const;
    /// The argument list of each pass; "P" stands for where the statistics lie.
    QList<QStringList> lists(const QString &film, const QString &output) const;
};

/// The argument list of a step of a dry run, to be compared with one of those.
QStringList argumentsOf(const QJsonObject &step);
/// What the film's own bit rate leaves to its video, in kb/s.
QString videoRateOf(const QString &film);

} // namespace support
