#pragma once

#include "support/CliFixture.h"

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

/// The film, and the program that is asked what it would run.
class ManyTracksFixture final
{
public:
    ManyTracksFixture();

    /// What differs from the run that is expected when these presets are stored and chosen and the options
    /// given; a null text when nothing does.
    QString difference(const QJsonObject &rule, const QJsonObject &settings, const ManyTracksRun &expected,
                       const QStringList &options = {}) const;
    /// What the film's own bit rate leaves to its video, in kb/s.
    const QString &videoRate() const { return m_videoRate; }
    const CliFixture &cli() const { return m_cli; }

private:
    QString differenceOf(const QJsonObject &step, const QStringList &list, const QString &output) const;

    CliFixture m_cli;
    QString m_film;
    QString m_videoRate;
};

} // namespace support
