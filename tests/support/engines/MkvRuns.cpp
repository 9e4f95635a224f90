#include "support/engines/MkvRuns.h"

#include "engines/EngineJobs.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/TestPlaces.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace support {

namespace {

bool isJoin(const QString &operation)
{
    return operation.endsWith(mkv::join);
}

QString jobTypeOf(const QString &operation)
{
    if (isJoin(operation))
        return u"MKV Joining"_s;
    return operation.endsWith(mkv::split) ? u"MKV Splitting"_s : u"MKV Remux"_s;
}

qint64 idOf(const jobs::StepTask &task)
{
    const auto *process = std::get_if<tools::ToolProcessPointer>(&task);
    if (process == nullptr)
        return std::get<QString>(task).toLongLong();
    return *process ? (*process)->processIdentifier() : 0;
}

} // namespace

namespace {

/// Four hours of silence.
QString silence(const QString &name, const QString &rate)
{
    return clip(name, [&](const QString &path) {
        const QString minutes = path + u".minutes.aac"_s;
        runProgram(u"ffmpeg"_s,
                   {u"-nostdin"_s, u"-y"_s, u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
                    u"anullsrc=cl=mono:r="_s + rate, u"-t"_s, u"600"_s, u"-c:a"_s, u"aac"_s, minutes});
        runProgram(u"ffmpeg"_s, {u"-nostdin"_s, u"-y"_s, u"-v"_s, u"error"_s, u"-stream_loop"_s, u"23"_s,
                                 u"-i"_s, minutes, u"-c"_s, u"copy"_s, path});
        QFile::remove(minutes);
    });
}

/// A quarter of an hour that can't be made small.
QString noise()
{
    return clip(u"noise.aac"_s, [](const QString &path) {
        const QString minute = path + u".minute.aac"_s;
        runProgram(
            u"ffmpeg"_s,
            u"-nostdin -y -v error -f lavfi -i anoisesrc=r=48000:d=60 -ac 1 -c:a aac -b:a 256k"_s.split(u' ')
                << minute);
        runProgram(u"ffmpeg"_s, {u"-nostdin"_s, u"-y"_s, u"-v"_s, u"error"_s, u"-stream_loop"_s, u"14"_s,
                                 u"-i"_s, minute, u"-c"_s, u"copy"_s, path});
        QFile::remove(minute);
    });
}

/// As long as the silence, a picture every ten seconds: mkvmerge reads ahead to the end of a file for a track
/// that has ended before, and tells nothing meanwhile.
QString slowPictures()
{
    return clip(u"slow-pictures-4h.mkv"_s, [](const QString &path) {
        runProgram(u"ffmpeg"_s,
                   u"-nostdin -y -v error -f lavfi -i color=black:s=64x48:r=1/10 -t 14400 -c:v libx264 "
                   "-preset ultrafast"_s.split(u' ')
                       << path);
    });
}

} // namespace

QString manyPacketsAac()
{
    return clip(u"noise-and-packets.aac"_s, [](const QString &path) {
        writeContent(path, contentOf(noise()) + contentOf(silence(u"silence-4h.aac"_s, u"48000"_s)));
    });
}

QString manyPacketsMkv()
{
    return clip(u"noise-and-packets.mkv"_s, [](const QString &path) {
        runProgram(u"mkvmerge"_s,
                   {u"-q"_s, u"-o"_s, path, slowPictures(), silence(u"fewer-packets-4h.aac"_s, u"8000"_s),
                    manyPacketsAac(), silence(u"silence-4h.aac"_s, u"48000"_s),
                    silence(u"silence-4h.aac"_s, u"48000"_s)});
    });
}

QString manyPacketsBeginMkv()
{
    return clip(u"noise-and-packets-begin.mkv"_s, [](const QString &path) {
        runProgram(u"mkvmerge"_s,
                   {u"-q"_s, u"-o"_s, path, u"--split"_s, u"parts:00:00:00-00:00:20"_s, manyPacketsMkv()});
    });
}

MkvRuns::MkvRuns(steps::WhenTaken whenTaken, jobs::Checking checking)
    : record(runs.base.notifications,
             {u"conversionStarted"_s, u"monitorJoinUpdate"_s, u"monitorSplitUpdate"_s, u"progressUpdate"_s,
              u"taskCompletion"_s, u"jobDone"_s})
{
    engines::registerJobs(m_factory);
    runs.base.checking = checking;
    m_queue = std::make_unique<KXQueueController>(runs.base.jobContext(whenTaken), m_factory, nullptr);
    m_queue->initialize();
}

SelectionPointer MkvRuns::filesSelection(const QStringList &paths, const QString &jobType)
{
    const auto selection = std::make_shared<KXSelection>();
    selection->initialize();
    const QFileInfo first(paths.constFirst());
    selection->setVideoTrackFilePath(paths.constFirst());
    selection->setVideoTrackFileURL(QUrl::fromLocalFile(paths.constFirst()));
    selection->setVideoTrackFileName(first.fileName());
    selection->setVideoTrackFileShortName(first.completeBaseName());
    selection->setVideoTrackFileExtension(first.suffix());
    QList<QUrl> files;
    for (const QString &path : paths)
        files.append(QUrl::fromLocalFile(path));
    selection->setEditFilesURLsList(files);
    selection->setJobType(jobType);
    selection->setSplitType(u"duration"_s);
    return selection;
}

SelectionPointer MkvRuns::removal(const QString &source)
{
    const SelectionPointer selection = runs.probed(source);
    TrackList kept = selection->trackList();
    kept.removeIf([](const TrackPointer &track) { return track->trackFfmpegID() == u"1"_s; });
    selection->setKeepTracksList(kept);
    selection->setJobType(u"MKV Track Removal"_s);
    return selection;
}

SelectionPointer MkvRuns::muxing(const QString &source)
{
    const auto made = [this](const QString &clip, const QString &name) {
        return QFile::exists(path(name)) ? path(name) : runs.film(clip, name);
    };
    const QString sound = soundClip.isNull() ? surroundAc3() : soundClip;
    return runs.probed(source, u"MKV"_s,
                       {made(sound, u"sound."_s + QFileInfo(sound).suffix()), made(srtFile(), u"s.srt"_s)});
}

SelectionPointer MkvRuns::selectionFor(const QString &operation, const QString &source)
{
    if (operation == mkv::remove)
        return removal(source);
    if (operation == mkv::mux)
        return muxing(source);
    QStringList files{source};
    if (isJoin(operation)) {
        if (!QFile::exists(path(u"b.mkv"_s)))
            runs.film(partnerClip.isNull() ? fullMkv() : partnerClip, u"b.mkv"_s);
        files.append(path(u"b.mkv"_s));
    }
    const SelectionPointer selection = filesSelection(files, jobTypeOf(operation));
    selection->setSplitDurationSeconds(splitSeconds);
    return selection;
}

JobPointer MkvRuns::add(const SelectionPointer &selection, std::optional<jobs::JobKind> kind)
{
    const int added = kind ? m_queue->add({*kind, selection}) : m_queue->addToQueue(selection);
    if (added != 1)
        qFatal("%d jobs were added", added);
    return m_queue->qJobList().constLast();
}

JobPointer MkvRuns::add(const QString &operation, const QString &source)
{
    const bool isEdit = operation == mkv::remove || operation.startsWith(u"edit "_s);
    return add(selectionFor(operation, source),
               isEdit ? std::optional(jobs::JobKind::MkvEditing) : std::nullopt);
}

bool MkvRuns::run(int milliseconds)
{
    m_queue->theQueueLoop();
    return waitForEnd(milliseconds);
}

bool MkvRuns::waitForEnd(int milliseconds) const
{
    return waitFor(
        [this] {
            const auto &jobs = m_queue->qJobList();
            return std::all_of(jobs.begin(), jobs.end(),
                               [](const JobPointer &job) { return job->jobStatus() == u"Completed"_s; });
        },
        milliseconds);
}

QString MkvRuns::outputName(const QString &operation)
{
    if (operation == mkv::remove)
        return u"a.removed.mkv"_s;
    if (operation == mkv::mux)
        return u"a.muxed.mkv"_s;
    if (isJoin(operation))
        return u"a.mkv.joined.mkv"_s;
    return operation.endsWith(mkv::split) ? u"a.mkv.split-001.mkv"_s : u"a.mkv.remux.mkv"_s;
}

void MkvRuns::setMkvmerge(const QString &script)
{
    const QString places = TestPlaces().toolsLocation().toLocalFile();
    const QString own = path(u"tools"_s);
    QDir().mkpath(own + u"/mkvtoolnix"_s);
    QFile::link(places + u"/ffmpeg"_s, own + u"/ffmpeg"_s);
    installScript(own + u"/mkvtoolnix/mkvmerge"_s, script);
    runs.base.preferences.setToolsLocationURL(QUrl::fromLocalFile(own));
}

QList<qint64> MkvRuns::processes() const
{
    QList<qint64> found;
    if (!m_queue->currentJob())
        return found;
    for (const jobs::StepTask &task : m_queue->currentJob()->stepTaskList()) {
        const qint64 group = ::getpgid(static_cast<pid_t>(idOf(task)));
        for (const QString &entry : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
            const qint64 pid = entry.toLongLong();
            if (group > 1 && pid > 0 && support::runs(pid) && ::getpgid(static_cast<pid_t>(pid)) == group)
                found.append(pid);
        }
    }
    return found;
}

QStringList MkvRuns::names() const
{
    QStringList names = runs.names();
    names.removeAll(u"tools"_s);
    return names;
}

} // namespace support
