#pragma once

#include "engines/ffmpeg/KXFfmpegConverter.h"
#include "support/jobs/JobFixture.h"

namespace support {

/// A converter in surroundings of its own, for a source "a.mkv" in the scratch folder. Its ffmpeg records how
/// it was called and plays a script; by default it tells of one frame and writes its last argument.
class FfmpegFixture
{
public:
    explicit FfmpegFixture(const QStringList &script = {QStringLiteral("err frame=1 time=00:00:01.00 "),
                                                        QStringLiteral("write 10 last")});
    Q_DISABLE_COPY_MOVE(FfmpegFixture)

    /// A hand-made selection whose tracks lie in that source.
    SelectionPointer selection(const QString &device, const TrackList &tracks,
                               const QString &passes = QStringLiteral("1")) const;
    /// Starts a conversion and waits for its end; false when it was not started or did not end.
    bool convert(const SelectionPointer &selection);
    /// True as soon as so many runs have announced their end.
    bool waitForEnds(int count) const;
    /// Arguments of each run of ffmpeg, in order.
    QList<QStringList> calls() const;
    /// Lets the converter read a chunk.
    void read(const QString &text, tools::ToolProcess::Channel channel = tools::ToolProcess::Channel::Error);
    /// The texts announced under that name.
    QStringList posted(const QString &name) const;
    QStringList progress() const { return posted(QStringLiteral("monitorConversionUpdate")); }
    QString path(const QString &name) const { return base.scratch.path(name); }
    QUrl url(const QString &name) const { return base.scratch.url(name); }

    JobFixture base{JobFixture::Tools::Fake};
    QUrl source;
    steps::OutputGuard guard;
    KXFfmpegConverter converter;
    NotificationRecord record;
};

} // namespace support
