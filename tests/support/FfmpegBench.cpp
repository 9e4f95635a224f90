#include "support/FfmpegBench.h"

#include "support/FakeTool.h"
#include "support/HandMade.h"
#include "support/Waiting.h"

using namespace Qt::StringLiterals;

namespace support {

FfmpegBench::FfmpegBench(const QStringList &script)
    : source(world.scratch.url(u"a.mkv"_s))
    , guard(world.outputs, step::WhenTaken::NextFreeName)
    , converter(world.converterContext(guard))
    , record(world.notifications, {u"conversionStarted"_s, u"monitorConversionUpdate"_s, u"taskCompletion"_s})
{
    qputenv("HOME", path({}).toUtf8()); // the font cache is looked for there
    world.scratch.write(u"a.mkv"_s, "film");
    world.installTool(u"ffmpeg/ffmpeg"_s, QStringList{u"record "_s + path(u"runs"_s)} + script);
    world.installTool(u"ffmpeg/ffprobe"_s, {u"out   Duration: 00:02:00.00, start: 0.0"_s});
    guard.setInputs({source});
    converter.setStepName(u"Video Conversion"_s);
}

SelectionPointer FfmpegBench::selection(const QString &device, const TrackList &tracks,
                                        const QString &passes) const
{
    for (const TrackPointer &track : tracks) {
        if (!track->externalTrackFlag())
            track->setTrackFileURL(source);
    }
    const auto made = handMadeSelection(device, tracks, passes);
    made->setVideoTrackFileURL(source);
    return made;
}

bool FfmpegBench::convert(const SelectionPointer &selection)
{
    return converter.startConversionForSelection(selection) && waitForEnds(1);
}

bool FfmpegBench::waitForEnds(int count) const
{
    return waitFor([&] { return record.count(u"taskCompletion"_s) >= count; });
}

QList<QStringList> FfmpegBench::calls() const
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

void FfmpegBench::read(const QString &text, tools::ToolProcess::Channel channel)
{
    converter.handleNewTaskResult({channel, text.toUtf8(), nullptr});
    waitFor([&] { return !converter.isHolding(); });
}

QStringList FfmpegBench::posted(const QString &name) const
{
    QStringList texts;
    for (const auto &notification : record.named(name))
        texts << notification.object.toString();
    return texts;
}

} // namespace support
