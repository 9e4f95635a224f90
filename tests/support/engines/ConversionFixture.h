#pragma once

#include "engines/ffmpeg/KXConvertWithFfmpegJob.h"
#include "support/jobs/JobFixture.h"

namespace support {

/// A conversion job in surroundings of its own, for a source "a.mkv" in the scratch folder. Its ffmpeg records
/// how it was called and plays a script; by default it tells of a whole run and writes its last argument.
class ConversionFixture
{
public:
    explicit ConversionFixture(const QStringList &script = wellDone());
    ~ConversionFixture();
    Q_DISABLE_COPY_MOVE(ConversionFixture)

    static QStringList wellDone();
    /// A new job for that target; the tracks lie in the source unless they are external ones.
    std::shared_ptr<KXConvertWithFfmpegJob> make(const QString &device, const TrackList &tracks,
                                                 const QString &passes = QStringLiteral("1"));
    std::shared_ptr<KXConvertWithFfmpegJob> make(const SelectionPointer &selection);
    SelectionPointer selection(const QString &device, const TrackList &tracks,
                               const QString &passes = QStringLiteral("1")) const;
    /// Starts the job and waits for its end; false when that did not come.
    bool run(const std::shared_ptr<KXConvertWithFfmpegJob> &job);
    bool waitForEnd() const;
    /// Arguments of each run of ffmpeg, in order.
    QList<QStringList> calls() const;
    /// What the steps' progress texts became, one list for each announcement, without repetitions.
    QStringList progressTexts() const;
    QString path(const QString &name) const { return base.scratch.path(name); }
    QUrl url(const QString &name) const { return base.scratch.url(name); }

    JobFixture base{JobFixture::Tools::Fake};
    QUrl source;
    NotificationRecord record;
    std::shared_ptr<KXConvertWithFfmpegJob> job; ///< the one made last
};

} // namespace support
