#include "support/engines/RealRuns.h"

#include "engines/ffmpeg/FfmpegSubtitles.h"
#include "media/KXVideoFile.h"
#include "support/Clips.h"
#include "support/Waiting.h"

#include <QDir>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace support {

namespace {

void count(KXSelection &selection)
{
    int videos = 0;
    int audios = 0;
    int subtitles = 0;
    for (const TrackPointer &track : selection.trackList()) {
        videos += track->trackType() == u"Video"_s ? 1 : 0;
        audios += track->trackType() == u"Audio"_s ? 1 : 0;
        subtitles += engines::isSubtitle(*track) ? 1 : 0;
    }
    selection.setVidCount(QString::number(videos));
    selection.setAudCount(QString::number(audios));
    selection.setSubCount(QString::number(subtitles));
}

void passAudioThrough(const TrackList &tracks)
{
    for (const TrackPointer &track : tracks) {
        if (track->trackType() == u"Audio"_s)
            track->setUserAudioSettingsDictionaryArray(
                {{{u"userCodec"_s, u"passthru"_s},
                  {u"userNumberOfChannels"_s, track->trackNumberOfChannels()}}});
    }
}

} // namespace

RealRuns::RealRuns(JobFixture::Tools tools)
    : base(tools)
    , record(base.notifications,
             {u"jobDone"_s, u"progressUpdate"_s, u"taskCompletion"_s, u"monitorConversionUpdate"_s})
{
    const QString home = QStringLiteral(TESSARAY_BUILD_DIR) + u"/test-home"_s;
    QDir().mkpath(home);
    qputenv("HOME", home.toUtf8());
    base.setKeepLogs(false);
}

RealRuns::~RealRuns()
{
    if (m_job && !m_job->hasEnded())
        m_job->stopJob();
}

QString RealRuns::film(const QString &clip, const QString &name) const
{
    return copyOf(clip, base.scratch, name);
}

SelectionPointer RealRuns::probed(const QString &path, const QString &device, const QStringList &added)
{
    KXVideoFile file(&base.preferences);
    if (file.initializeForURL(QUrl::fromLocalFile(path)) != u"OK"_s)
        qFatal("%s can't be probed", qPrintable(path));
    const auto selection = std::make_shared<KXSelection>();
    selection->initialize();
    selection->initializeFrom(file);
    selection->setJobType(u"MKV Conversion"_s);
    selection->setTheDevice(device);
    passAudioThrough(file.trackList());
    for (const QString &track : added) {
        if (file.addTrack(QUrl::fromLocalFile(track)) != u"OK"_s)
            qFatal("%s can't be added", qPrintable(track));
    }
    selection->setTrackList(file.trackList());
    count(*selection);
    return selection;
}

SelectionPointer RealRuns::reencoded(const QString &path, const QString &device, const QString &passes,
                                     const QStringList &added)
{
    const auto selection = probed(path, device, added);
    for (const TrackPointer &track : selection->trackList()) {
        if (track->trackType() == u"Video"_s)
            track->setUserCodec(u"h264"_s);
    }
    selection->setUserPassNumber(passes);
    selection->setUserVideoBitRate(u"500"_s);
    return selection;
}

std::shared_ptr<KXConvertWithFfmpegJob> RealRuns::convert(const SelectionPointer &selection,
                                                          steps::WhenTaken whenTaken)
{
    const auto job = std::make_shared<KXConvertWithFfmpegJob>(base.jobContext(whenTaken));
    job->initJobWithSelectionAndPreferences(selection, base.preferences);
    m_job = job;
    return job;
}

std::shared_ptr<KXExtractTracksJob> RealRuns::extract(const SelectionPointer &selection)
{
    const auto job = std::make_shared<KXExtractTracksJob>(base.jobContext());
    job->initJobWithSelectionAndPreferences(selection, base.preferences);
    m_job = job;
    return job;
}

bool RealRuns::run(const std::shared_ptr<KXJob> &job, int milliseconds)
{
    job->startJob();
    return waitForEnd(milliseconds);
}

bool RealRuns::waitForEnd(int milliseconds) const
{
    return waitFor([&] { return m_job->hasEnded(); }, milliseconds);
}

QStringList RealRuns::names() const
{
    QStringList names = base.scratch.names();
    names.removeIf([](const QString &name) { return name.startsWith(u"defaults.json"_s); });
    return names;
}

void keepStreams(KXSelection &selection, const QStringList &streams)
{
    TrackList tracks = selection.trackList();
    tracks.removeIf([&](const TrackPointer &track) { return !streams.contains(track->trackFfmpegID()); });
    selection.setTrackList(tracks);
    count(selection);
}

TrackPointer streamOf(const KXSelection &selection, const QString &stream)
{
    for (const TrackPointer &track : selection.trackList()) {
        if (track->trackFfmpegID() == stream)
            return track;
    }
    qFatal("there is no stream %s", qPrintable(stream));
}

int brightestAt(const QString &path, double second)
{
    QProcess ffmpeg;
    ffmpeg.start(u"ffmpeg"_s, {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-ss"_s, QString::number(second), u"-i"_s,
                               path, u"-frames:v"_s, u"1"_s, u"-vf"_s,
                               u"signalstats,metadata=print:key=lavfi.signalstats.YMAX:file=-"_s, u"-f"_s,
                               u"null"_s, u"-"_s});
    ffmpeg.waitForFinished(60000);
    const QByteArray answer = ffmpeg.readAllStandardOutput();
    const qsizetype at = answer.lastIndexOf("YMAX=");
    return at < 0 ? -1 : static_cast<int>(answer.mid(at + 5).trimmed().toDouble());
}

int statusOf(const QString &program, const QStringList &arguments, const QString &folder, int milliseconds)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (process.waitForFinished(milliseconds))
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    process.kill();
    process.waitForFinished(patience);
    return -1;
}

} // namespace support
