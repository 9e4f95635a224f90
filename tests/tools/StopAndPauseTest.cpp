// Jobs that are stopped, paused and resumed while the real tools work. ffmpeg reads at the speed of the
// film here, so that there is time to meet it at work.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/TestPlaces.h"
#include "support/Waiting.h"
#include "support/engines/RealRuns.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QStandardPaths>
#include <QTest>

#include <functional>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace support;
using steps::Verdict;

namespace {

/// Every process of these groups that still runs.
QList<qint64> processesOf(const QSet<qint64> &groups)
{
    QList<qint64> found;
    for (const QString &entry : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
        const qint64 pid = entry.toLongLong();
        if (pid > 0 && runs(pid) && groups.contains(::getpgid(static_cast<pid_t>(pid))))
            found << pid;
    }
    return found;
}

bool allAre(const QList<qint64> &pids, bool stopped)
{
    return std::all_of(pids.begin(), pids.end(),
                       [&](qint64 pid) { return (stateOf(pid) == 'T') == stopped; });
}

class SlowRuns final
{
public:
    SlowRuns()
        : m_temporary(qgetenv("TMPDIR"))
    {
        QDir().mkpath(runs.path(u"temporary"_s));
        qputenv("TMPDIR", runs.path(u"temporary"_s).toUtf8());
        const QString places = TestPlaces().toolsLocation().toLocalFile();
        const QString own = runs.path(u"tools"_s);
        QDir().mkpath(own + u"/ffmpeg"_s);
        QFile::link(places + u"/mkvtoolnix"_s, own + u"/mkvtoolnix"_s);
        QFile::link(places + u"/ffmpeg/ffprobe"_s, own + u"/ffmpeg/ffprobe"_s);
        const QString ffmpeg = own + u"/ffmpeg/ffmpeg"_s;
        writeContent(ffmpeg, "#!/bin/sh\nexec ffmpeg -re \"$@\"\n");
        QFile::setPermissions(ffmpeg, QFile::Permissions(0x7755));
        runs.base.preferences.setToolsLocationURL(QUrl::fromLocalFile(own));
    }

    ~SlowRuns() { m_temporary.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", m_temporary); }
    Q_DISABLE_COPY_MOVE(SlowRuns)

    /// The folders of jobs that still exist.
    QStringList temporaryFolders() const
    {
        QStringList folders;
        QDirIterator all(runs.path(u"temporary"_s), {u"job*"_s}, QDir::Dirs, QDirIterator::Subdirectories);
        while (all.hasNext())
            folders << all.next();
        return folders;
    }

    /// The groups of the processes that the job has running now.
    QSet<qint64> groups() const
    {
        QSet<qint64> groups;
        for (const jobs::StepTask &task : job->stepTaskList()) {
            const auto *process = std::get_if<tools::ToolProcessPointer>(&task);
            const qint64 pid =
                process != nullptr ? (*process)->processIdentifier() : std::get<QString>(task).toLongLong();
            const qint64 group = ::getpgid(static_cast<pid_t>(pid));
            if (group > 1)
                groups << group;
        }
        return groups;
    }

    QStringList names() const
    {
        QStringList names = runs.names();
        names.removeAll(u"tools"_s);
        names.removeAll(u"temporary"_s);
        return names;
    }

    /// Calls something once, as soon as the condition holds, while the event loop runs.
    void when(const std::function<bool()> &condition, const std::function<void()> &action)
    {
        QObject::connect(&timer, &QTimer::timeout, &timer, [=, this] {
            if (!condition())
                return;
            timer.stop();
            action();
        });
        timer.start(20);
    }

    KXFfmpegConverter *converter() const
    {
        return job->stepConverterList().isEmpty()
                   ? nullptr
                   : qobject_cast<KXFfmpegConverter *>(job->stepConverterList().first().get());
    }

    RealRuns runs;
    std::shared_ptr<KXJob> job;
    QTimer timer;

private:
    QByteArray m_temporary;
};

} // namespace

class StopAndPauseTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_slow.reset(); // it holds the folder for temporary files
        m_slow = std::make_unique<SlowRuns>();
        m_source = m_slow->runs.film(fullMkv());
    }

    void stoppedDuringTheOnlyPass()
    {
        prepareConversion(u"1"_s);
        stopWhen([this] { return outputHasBegun() && !m_slow->groups().isEmpty(); });
    }

    void stoppedDuringPassOne()
    {
        prepareConversion(u"2"_s);
        stopWhen([this] { return statisticsHaveBegun() && m_slow->converter()->currentPass() == 1; });
    }

    void stoppedDuringPassTwo()
    {
        // Pass 1 at full speed.
        const QString ffmpeg = m_slow->runs.path(u"tools/ffmpeg/ffmpeg"_s);
        writeContent(ffmpeg, "#!/bin/sh\ncase \" $* \" in *' -pass 2 '*) exec ffmpeg -re \"$@\";; esac\n"
                             "exec ffmpeg \"$@\"\n");
        prepareConversion(u"2"_s);
        stopWhen([this] { return outputHasBegun() && m_slow->converter()->currentPass() == 2; });
    }

    void stoppedWhilePaused()
    {
        prepareConversion(u"1"_s);
        m_slow->job->startJob();
        QVERIFY(waitFor([this] { return outputHasBegun(); }));
        m_slow->job->pauseJob();
        QVERIFY(waitFor([this] { return allAre(processesOf(m_slow->groups()), true); }));
        stopNow();
    }

    void stoppedDuringAnExtraction()
    {
        m_slow->job = m_slow->runs.extract(m_slow->runs.probed(m_source));
        stopWhen([this] { return !filesAtWork(m_slow->runs.path(), u"*.h264"_s).isEmpty(); });
    }

    /// A subtitle is written into a file of its own in the background before it is burned.
    void stoppedDuringABackgroundExtraction()
    {
        prepareBurning();
        stopWhen([this] { return backgroundHasBegun(); });
        QVERIFY(m_slow->converter()->converterTask() == nullptr); // the conversion never began
    }

    void pausedAndResumedInTheOnlyPass()
    {
        prepareConversion(u"1"_s);
        m_slow->job->startJob();
        QVERIFY(waitFor([this] { return outputHasBegun(); }));
        pauseAndResume();
        compareWhole();
    }

    void pausedAndResumedInPassTwo()
    {
        prepareConversion(u"2"_s);
        const QString ffmpeg = m_slow->runs.path(u"tools/ffmpeg/ffmpeg"_s);
        writeContent(ffmpeg, "#!/bin/sh\ncase \" $* \" in *' -pass 2 '*) exec ffmpeg -re \"$@\";; esac\n"
                             "exec ffmpeg \"$@\"\n");
        m_slow->job->startJob();
        QVERIFY(waitFor([this] { return outputHasBegun() && m_slow->converter()->currentPass() == 2; }));
        pauseAndResume();
        compareWhole();
    }

    void pausedAndResumedInABackgroundExtraction()
    {
        prepareBurning();
        bool wasPaused = false;
        m_slow->when([this] { return backgroundHasBegun(); },
                     [&] {
                         pauseAndResume();
                         wasPaused = true;
                     });
        m_slow->job->startJob();
        QVERIFY(wasPaused);
        compareWhole();
    }

    void pausedAndResumedWhileItExtracts()
    {
        m_slow->job = m_slow->runs.extract(m_slow->runs.probed(m_source));
        m_slow->job->startJob();
        QVERIFY(waitFor([this] { return !filesAtWork(m_slow->runs.path(), u"*.h264"_s).isEmpty(); }));
        pauseAndResume();
        QVERIFY(m_slow->runs.waitForEnd());
        QVERIFY2(m_slow->job->outcome().verdict == Verdict::Ok, qPrintable(m_slow->job->outcome().sentence));
        QCOMPARE(m_slow->names().size(), 7);
    }

private:
    void prepareConversion(const QString &passes)
    {
        const auto selection = m_slow->runs.reencoded(m_source, u"General"_s, passes);
        keepStreams(*selection, {u"0"_s, u"2"_s});
        m_slow->job = m_slow->runs.convert(selection);
    }

    void prepareBurning()
    {
        const auto selection = m_slow->runs.reencoded(m_source, u"General"_s, u"1"_s);
        keepStreams(*selection, {u"0"_s, u"3"_s});
        streamOf(*selection, u"3"_s)->setUserCodec(u"burn"_s);
        m_slow->job = m_slow->runs.convert(selection);
    }

    bool outputHasBegun() const { return !filesAtWork(m_slow->runs.path(), u"*.m4v"_s).isEmpty(); }
    bool backgroundHasBegun() const { return !filesAtWork(m_slow->runs.path(), u"*.srt"_s).isEmpty(); }
    bool statisticsHaveBegun() const
    {
        const QStringList folders = m_slow->temporaryFolders();
        return !folders.isEmpty() && !QDir(folders.first()).entryList({u"passLog*"_s}, QDir::Files).isEmpty();
    }

    void stopWhen(const std::function<bool()> &condition)
    {
        bool wasStopped = false;
        m_slow->when(condition, [&] {
            stopNow();
            wasStopped = true;
        });
        m_slow->job->startJob();
        QVERIFY(waitFor([&] { return wasStopped; }));
    }

    /// Then nothing is left but the source, byte for byte.
    void stopNow()
    {
        const auto groups = m_slow->groups();
        QVERIFY(!processesOf(groups).isEmpty());
        QCOMPARE(m_slow->temporaryFolders().size(), 1);
        m_slow->job->stopJob();
        QVERIFY(waitFor([&] { return processesOf(groups).isEmpty(); }));
        QCOMPARE(m_slow->names(), QStringList{u"a.mkv"_s});
        QVERIFY(m_slow->temporaryFolders().isEmpty());
        QCOMPARE(contentOf(m_source), contentOf(fullMkv()));
        QCOMPARE(m_slow->job->outcome().verdict, Verdict::Stopped);
    }

    void pauseAndResume()
    {
        const auto groups = m_slow->groups();
        const auto pids = processesOf(groups);
        QVERIFY(!pids.isEmpty());
        m_slow->job->pauseJob();
        QVERIFY(waitFor([&] { return allAre(pids, true); }));
        const qsizetype ends = m_slow->runs.record.count(u"taskCompletion"_s);
        QVERIFY(!waitFor([&] { return !allAre(pids, true); }, 500)); // and stays so
        QCOMPARE(m_slow->runs.record.count(u"taskCompletion"_s), ends);
        m_slow->job->resumeJob();
        QVERIFY(waitFor([&] { return allAre(pids, false); }));
    }

    void compareWhole()
    {
        QVERIFY(m_slow->runs.waitForEnd());
        QVERIFY2(m_slow->job->outcome().verdict == Verdict::Ok, qPrintable(m_slow->job->outcome().sentence));
        const double seconds = secondsOf(m_slow->runs.path(u"a.m4v"_s));
        QVERIFY2(qAbs(seconds - 8) < 0.5, qPrintable(QString::number(seconds)));
        QCOMPARE(m_slow->names(), QStringList({u"a.m4v"_s, u"a.mkv"_s}));
    }

    std::unique_ptr<SlowRuns> m_slow;
    QString m_source;
};

TESSARAY_TEST(StopAndPauseTest)
#include "StopAndPauseTest.moc"
