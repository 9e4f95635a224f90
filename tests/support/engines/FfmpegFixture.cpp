#include "support/engines/FfmpegFixture.h"

#include "support/FakeTool.h"
#include "support/Waiting.h"
#include "support/selection/HandMade.h"

using namespace Qt::StringLiterals;

namespace support {

FfmpegFixture::FfmpegFixture(const QStringList &script)
    : source(base.scratch.url(u"a.mkv"_s))
    , guard(base.outputs, steps::WhenTaken::NextFreeName)
    , converter(base.converterContext(guard))
    , record(base.notifications, {u"conversionStarted"_s, u"monitorConversionUpdate"_s, u"taskCompletion"_s})
{
    qputenv("HOME", path({}).toUtf8()); // the font cache is looked for there
    base.scratch.write(u"a.mkv"_s, "film");
    base.installTool(u"ffmpeg/ffmpeg"_s, QStringList{u"record "_s + path(u"runs"_s)} + script);
    base.installTool(u"ffmpeg/ffprobe"_s, {u"out   Duration: 00:02:00.00, start: 0.0"_s});
    guard.setInputs({source});
    converter.setStepName(u"Video Conversion"_s);
}

SelectionPointer FfmpegFixture::selection(const QString &device, const TrackList &tracks,
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

bool FfmpegFixture::convert(const SelectionPointer &selection)
{
    return converter.startConversionForSelection(selection) && waitForEnds(1);
}

bool FfmpegFixture::waitForEnds(int count) const
{
    return waitFor([&] { return record.count(u"taskCompletion"_s) >= count; });
}

QList<QStringList> FfmpegFixture::calls() const
{
    QList<QStringList> lists;
    for (const auto &run : FakeTool::recordedRuns(path(u"runs"_s))) {
        lists << base.launcher.named(run.arguments);
    }
    return lists;
}

void FfmpegFixture::read(const QString &text, tools::ToolProcess::Channel channel)
{
    converter.handleNewTaskResult({channel, text.toUtf8(), nullptr});
    waitFor([&] { return !converter.isHolding(); });
}

QStringList FfmpegFixture::posted(const QString &name) const
{
    QStringList texts;
    for (const auto &notification : record.named(name))
        texts << notification.object.toString();
    return texts;
}

} // namespace support
