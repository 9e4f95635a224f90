#include "support/engines/ConversionFixture.h"

#include "support/FakeTool.h"
#include "support/Waiting.h"
#include "support/selection/HandMade.h"

using namespace Qt::StringLiterals;

namespace support {

ConversionFixture::ConversionFixture(const QStringList &script)
    : source(base.scratch.url(u"a.mkv"_s))
    , record(base.notifications, {u"progressUpdate"_s, u"jobDone"_s, u"conversionStarted"_s,
                                  u"taskCompletion"_s, u"monitorConversionUpdate"_s})
{
    qputenv("HOME", path({}).toUtf8()); // the font cache is looked for there
    base.setKeepLogs(false);
    base.scratch.write(u"a.mkv"_s, "film");
    base.installTool(u"ffmpeg/ffmpeg"_s, QStringList{u"record "_s + path(u"runs"_s)} + script);
    base.installTool(u"ffmpeg/ffprobe"_s, {u"out   Duration: 00:02:00.00, start: 0.0"_s});
}

ConversionFixture::~ConversionFixture()
{
    if (job && !job->hasEnded())
        job->stopJob();
}

QStringList ConversionFixture::wellDone()
{
    return {u"err frame=9 Lsize=9kB time=00:02:00.00 bitrate"_s, u"write 10 last"_s};
}

SelectionPointer ConversionFixture::selection(const QString &device, const TrackList &tracks,
                                              const QString &passes) const
{
    for (const TrackPointer &track : tracks) {
        if (!track->externalTrackFlag())
            track->setTrackFileURL(source);
    }
    const auto made = handMadeSelection(device, tracks, passes);
    made->setVideoTrackFileURL(source);
    made->setJobType(u"MKV Conversion"_s);
    return made;
}

std::shared_ptr<KXConvertWithFfmpegJob>
ConversionFixture::make(const QString &device, const TrackList &tracks, const QString &passes)
{
    return make(selection(device, tracks, passes));
}

std::shared_ptr<KXConvertWithFfmpegJob> ConversionFixture::make(const SelectionPointer &selection)
{
    job = std::make_shared<KXConvertWithFfmpegJob>(base.jobContext());
    job->initJobWithSelectionAndPreferences(selection, base.preferences);
    return job;
}

bool ConversionFixture::run(const std::shared_ptr<KXConvertWithFfmpegJob> &started)
{
    started->startJob();
    return waitForEnd();
}

bool ConversionFixture::waitForEnd() const
{
    return waitFor([&] { return record.count(u"jobDone"_s) > 0; });
}

QList<QStringList> ConversionFixture::calls() const
{
    QList<QStringList> lists;
    for (const auto &run : FakeTool::recordedRuns(path(u"runs"_s))) {
        lists << base.launcher.named(run.arguments);
    }
    return lists;
}

QStringList ConversionFixture::progressTexts() const
{
    QStringList texts;
    for (const auto &update : record.named(u"progressUpdate"_s)) {
        QStringList items;
        for (const auto &item : update.object.value<jobs::ProgressList>())
            items << item.step + u'=' + item.progress;
        if (texts.isEmpty() || texts.last() != items.join(u','))
            texts << items.join(u',');
    }
    return texts;
}

} // namespace support
