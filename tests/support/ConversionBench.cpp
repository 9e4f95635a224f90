#include "support/ConversionBench.h"

#include "support/FakeTool.h"
#include "support/HandMade.h"
#include "support/Waiting.h"

using namespace Qt::StringLiterals;

namespace support {

ConversionBench::ConversionBench(const QStringList &script)
    : source(world.scratch.url(u"a.mkv"_s))
    , record(world.notifications, {u"progressUpdate"_s, u"jobDone"_s, u"conversionStarted"_s,
                                   u"taskCompletion"_s, u"monitorConversionUpdate"_s})
{
    qputenv("HOME", path({}).toUtf8()); // the font cache is looked for there
    world.setKeepLogs(false);
    world.scratch.write(u"a.mkv"_s, "film");
    world.installTool(u"ffmpeg/ffmpeg"_s, QStringList{u"record "_s + path(u"runs"_s)} + script);
    world.installTool(u"ffmpeg/ffprobe"_s, {u"out   Duration: 00:02:00.00, start: 0.0"_s});
}

ConversionBench::~ConversionBench()
{
    if (job && !job->hasEnded())
        job->stopJob();
}

QStringList ConversionBench::wellDone()
{
    return {u"err frame=9 Lsize=9kB time=00:02:00.00 bitrate"_s, u"write 10 last"_s};
}

SelectionPointer ConversionBench::selection(const QString &device, const TrackList &tracks,
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

std::shared_ptr<KXConvertWithFfmpegJob> ConversionBench::make(const QString &device, const TrackList &tracks,
                                                              const QString &passes)
{
    return make(selection(device, tracks, passes));
}

std::shared_ptr<KXConvertWithFfmpegJob> ConversionBench::make(const SelectionPointer &selection)
{
    job = std::make_shared<KXConvertWithFfmpegJob>(world.jobContext());
    job->initJobWithSelectionAndPreferences(selection, world.preferences);
    return job;
}

bool ConversionBench::run(const std::shared_ptr<KXConvertWithFfmpegJob> &started)
{
    started->startJob();
    return waitForEnd();
}

bool ConversionBench::waitForEnd() const
{
    return waitFor([&] { return record.count(u"jobDone"_s) > 0; }, 20000);
}

QList<QStringList> ConversionBench::calls() const
{
    QList<QStringList> lists;
    for (const auto &run : FakeTool::recordedRuns(path(u"runs"_s))) {
        QStringList arguments;
        for (const QByteArray &argument : run.arguments)
            arguments << QString::fromUtf8(argument);
        lists << arguments;
    }
    return lists;
}

QStringList ConversionBench::progressTexts() const
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
