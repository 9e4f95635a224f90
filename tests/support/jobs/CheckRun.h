#pragma once

#include "steps/OutputCheck.h"
#include "support/jobs/JobFixture.h"

#include <QProcess>

namespace support {

/// Runs bare tools on real films in a scratch folder and has their outputs checked, as the end of a job does.
class CheckRun final
{
public:
    CheckRun();

    QString path(const QString &name = {}) const { return m_base.scratch.path(name); }
    /// Words are cut at blanks; "$0", "$1" stand for the files. Answers what the tool printed; anything but
    /// success (mkvmerge's warnings count as such) fails the test where that is wanted.
    QString run(const QString &line, const QStringList &files, bool mustSucceed = true);

    /// One output that holds all of the picture, sound and text of the sources, and their covers and
    /// attachments, copied: by ffprobe's own list of their streams.
    static media::MeantOutput meant(const QStringList &sources, const QString &output,
                                    media::Extent extent = media::Extent::Whole);
    QList<media::CheckedOutput> check(const QList<media::MeantOutput> &outputs, const QString &log = {});
    media::CheckedOutput check(const media::MeantOutput &output, const QString &log = {});

    /// What was read of all films that were checked.
    const media::Films &films() const { return m_films; }

    /// What ffmpeg says of a film's streams: kind and codec, in their order.
    static QList<std::pair<QString, QString>> streamsOf(const QString &film);
    /// The length by decoding: the time of ffmpeg's last status line, with the picture or the sound alone.
    static double decodedSeconds(const QString &film, const QString &kind);

private:
    JobFixture m_base;
    media::Films m_films;
};

/// "ok", "warnings: The source ...", "failed: ..."
QString told(const media::CheckedOutput &result);

/// The streams of a kind are to be re-encoded into that codec; without one they stay as they are.
void reencode(media::MeantOutput &output, const QString &kind, const QString &codec);
/// Only streams of these indexes of the sources are meant; the others are left out.
void keepOnly(media::MeantOutput &output, const QList<int> &indexes);

/// The first so many hundredths of a file, in another one.
void cutTo(const QString &file, const QString &cut, int percent);

} // namespace support
