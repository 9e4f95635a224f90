#pragma once

#include "engines/ffmpeg/KXConvertWithFfmpegJob.h"
#include "engines/ffmpeg/KXExtractTracksJob.h"
#include "support/jobs/JobFixture.h"

namespace support {

/// Real jobs on real files with the installed tools, in surroundings of their own. The home folder is one
/// that all tests share, so that the cache of fonts is made once.
class RealRuns final
{
public:
    explicit RealRuns(JobFixture::Tools tools = JobFixture::Tools::Real);
    ~RealRuns();
    Q_DISABLE_COPY_MOVE(RealRuns)

    /// A copy of a clip in the scratch folder; answers its path.
    QString film(const QString &clip, const QString &name = QStringLiteral("a.mkv")) const;
    /// The probed file with all its tracks and the files added to it: video and audio pass through,
    /// subtitles are muxed.
    SelectionPointer probed(const QString &path, const QString &device = QStringLiteral("General"),
                            const QStringList &added = {});
    /// The same with the video re-encoded in one pass or two.
    SelectionPointer reencoded(const QString &path, const QString &device, const QString &passes,
                               const QStringList &added = {});

    std::shared_ptr<KXConvertWithFfmpegJob>
    convert(const SelectionPointer &selection, steps::WhenTaken whenTaken = steps::WhenTaken::NextFreeName);
    std::shared_ptr<KXExtractTracksJob> extract(const SelectionPointer &selection);
    /// Starts the job and waits for its end; false when that did not come.
    bool run(const std::shared_ptr<KXJob> &job, int milliseconds = 120000);
    bool waitForEnd(int milliseconds = 120000) const;

    QString path(const QString &name = {}) const { return base.scratch.path(name); }
    /// Names in the scratch folder, without the settings of the base.
    QStringList names() const;

    JobFixture base;
    NotificationRecord record;

private:
    std::shared_ptr<KXJob> m_job;
};

/// Leaves only these streams in a selection, by ffprobe's indexes.
void keepStreams(KXSelection &selection, const QStringList &streams);
TrackPointer streamOf(const KXSelection &selection, const QString &stream);
/// The brightest value in the picture at that second: 16 where all is black.
int brightestAt(const QString &path, double second);
/// Exit status of an installed program, run in that folder; -1 when it had to be killed after that time.
int statusOf(const QString &program, const QStringList &arguments, const QString &folder,
             int milliseconds = 60000);

} // namespace support
