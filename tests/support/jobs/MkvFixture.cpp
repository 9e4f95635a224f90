#include "support/jobs/MkvFixture.h"

#include "support/FakeTool.h"
#include "support/Waiting.h"
#include "support/selection/HandMade.h"

using namespace Qt::StringLiterals;

namespace support {

QString muxOptions(const QString &id, const QString &title)
{
    return u"--language %1:eng|--track-name %1:'%2'|--default-track %1:0|--forced-track %1:0|"
           "--compression %1:none|"_s.arg(id, title);
}

namespace {

QString textOf(const QVariant &object)
{
    return object.typeId() == QMetaType::QUrl ? object.toUrl().toLocalFile() : object.toString();
}

} // namespace

MkvFixture::MkvFixture(const QStringList &mkvmerge, const QString &sourceName)
    : source(base.scratch.url(sourceName.isNull() ? u"a.mkv"_s : sourceName))
    , guard(base.outputs, steps::WhenTaken::NextFreeName)
    , record(base.notifications,
             {u"progressUpdate"_s, u"jobDone"_s, u"conversionStarted"_s, u"taskCompletion"_s,
              u"monitorSplitUpdate"_s, u"monitorSendToLintwickUpdate"_s, u"monitorExtractionUpdate"_s})
{
    qputenv("HOME", path({}).toUtf8()); // the font cache is looked for there
    base.setKeepLogs(false);
    base.scratch.write(source.fileName(), "film");
    setScript(u"mkvtoolnix/mkvmerge"_s, mkvmerge);
    setScript(u"ffmpeg/ffmpeg"_s, wellConverted());
    setScript(u"ffmpeg/ffprobe"_s, {u"out   Duration: 00:02:00.00, start: 0.0"_s});
    guard.setInputs({source});
}

MkvFixture::~MkvFixture()
{
    if (!job)
        return;
    if (!job->hasEnded())
        job->stopJob();
    waitFor([&] { return job->monitorQueue()->activeThreadCount() == 0; });
}

QStringList MkvFixture::wellMuxed()
{
    return {u"part out Progress: 0%\\r"_s, u"out Progress: 100%"_s, u"out Multiplexing took 0 seconds."_s,
            u"write 10 after:-o"_s};
}

QStringList MkvFixture::wellConverted()
{
    return {u"err frame=9 Lsize=9kB time=00:02:00.00 bitrate"_s, u"write 10 last"_s};
}

void MkvFixture::setScript(const QString &place, const QStringList &script) const
{
    const QString tool = place.section(u'/', -1);
    base.installTool(place, QStringList{u"record "_s + path(tool + u".runs"_s)} + script);
}

SelectionPointer MkvFixture::selection(const QString &jobType, const TrackList &tracks,
                                       const QString &passes) const
{
    for (const TrackPointer &track : tracks) {
        if (!track->externalTrackFlag())
            track->setTrackFileURL(source);
    }
    const auto made = handMadeSelection(u"MKV"_s, tracks, passes);
    made->setVideoTrackFileURL(source);
    made->setVideoTrackFilePath(source.toLocalFile());
    made->setVideoTrackFileName(source.fileName());
    made->setJobType(jobType);
    return made;
}

steps::ConverterContext MkvFixture::context()
{
    guard.files().setPrivateFolder(path(u"temp"_s));
    return {base.preferences, base.notifications, launches,        guard,
            path(u"temp/"_s), &base.alerts,       base.toolsAtOnce};
}

bool MkvFixture::waitForEnd() const
{
    return waitFor([&] { return record.count(u"jobDone"_s) > 0; });
}

QList<QStringList> MkvFixture::calls(const QString &tool) const
{
    QList<QStringList> lists;
    for (const auto &run : FakeTool::recordedRuns(path(tool + u".runs"_s))) {
        QStringList arguments;
        for (const QString &argument : launches.named(run.arguments))
            arguments << shown(argument);
        lists << arguments;
    }
    return lists;
}

QByteArray MkvFixture::fileOf(const QUrl &name) const
{
    QFile file(guard.fileOf(name).toLocalFile());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString MkvFixture::meant(qsizetype n, const QString &tool) const
{
    return shown(tools::textsOf(launches.of(tool).value(n).meant).join(u'|'));
}

QString MkvFixture::launched(qsizetype n, const QString &tool) const
{
    return shown(tools::textsOf(launches.of(tool).value(n).launched).join(u'|'));
}

QStringList MkvFixture::progressTexts() const
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

QStringList MkvFixture::posted(const QString &name) const
{
    QStringList texts;
    for (const auto &notification : record.named(name))
        texts << shown(textOf(notification.object));
    return texts;
}

QString MkvFixture::shown(QString text) const
{
    return text.replace(path(u"x"_s).chopped(2), u"/v"_s);
}

} // namespace support
