// However the program ends, at whatever moment: no tool of it runs on, the next start in that folder leaves
// nothing half-made there, and the sources are as they were. The short form draws a handful of ends, the long
// form makes a hundred and more, each operation with each end at least once.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/Words.h"
#include "support/engines/MkvRuns.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSet>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::waitFor;
using support::words;

namespace {

/// Slows a tool down to the speed of the film.
const QString slowFfmpeg = u"/usr/bin/ffmpeg -re \"$@\""_s;
/// From the moment on at which the program is ended no tool ends by itself.
const QString andStay = u"\nstatus=$?\nwhile [ -e \"$STAY\" ]; do sleep 0.1; done\nexit $status"_s;
const QString slowFfprobe = u"sleep 0.2\n/usr/bin/ffprobe \"$@\""_s;
/// Says its version, and plays for a while: it stays when a program that ended by itself leaves it.
/// Joins as mp4box is told to: it is no package of the system.
const QString mp4box =
    u"while [ $# -gt 0 ]; do case $1 in -cat) list=\"$list\\nfile '$2'\";; -new) out=$2;; esac; shift; done\n"
    "printf \"$list\" > \"$out.list\"; sleep 1\n"
    "/usr/bin/ffmpeg -nostdin -v error -f concat -safe 0 -i \"$out.list\" -map 0 -c copy \"$out\""_s;
const QString player = u"case \"$*\" in *-noconfig*) echo 'MPlayer 1.5'; exit 0;; esac\nsleep 1"_s;
constexpr int longestMomentMs = 2500;

struct Operation
{
    const char *name;
    QString line;
    double seconds; ///< of its output when it is whole
};

QList<Operation> operations()
{
    return {{"one pass", u"convert long.mkv --video 1pass"_s, 120},
            {"two passes", u"convert long.mkv --video 2pass --video-bitrate 300"_s, 120},
            {"copy", u"convert long.mkv"_s, 120},
            {"extraction", u"extract long.mkv"_s, 120},
            {"burning", u"convert full.mkv --video 1pass --subtitles burn --tracks 0,3"_s, 2},
            {"hand-over", u"send full.mkv --tracks 3"_s, 0},
            {"preview", u"play full.mkv --tracks 0"_s, 0},
            {"mux", u"convert v.h264 --add s.aac"_s, 0},
            {"join", u"join a.mkv b.mkv"_s, 14420},
            {"join of other films", u"join long.mp4 other.mp4"_s, 0},
            {"join by a stand-in for mp4box", u"join long.mp4 other.mp4"_s, 0},
            {"split", u"split a.mkv --duration 01:00:00"_s, 0},
            {"remux", u"remux a.mkv"_s, 14400},
            {"removal", u"remove a.mkv --tracks 1"_s, 14400}};
}

struct End
{
    const char *name;
    QList<int> signalNumbers; ///< none: the terminal is closed
    bool pausesTools = false;
};

QList<End> ends()
{
    return {{"interrupt", {SIGINT}},
            {"terminate", {SIGTERM}},
            {"hang-up", {SIGHUP}},
            {"two interrupts", {SIGINT, SIGINT}},
            {"three signals", {SIGTERM, SIGINT, SIGTERM}},
            {"kill", {SIGKILL}},
            {"kill with paused tools", {SIGKILL}, true},
            {"terminate with paused tools", {SIGTERM}, true},
            {"two hang-ups with paused tools", {SIGHUP, SIGHUP}, true},
            {"abort", {SIGABRT}},
            {"terminal", {}}};
}

/// A terminal that a program gets for its own.
class Terminal final
{
public:
    Terminal()
        : m_master(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0)
            qFatal("no terminal");
        m_name = ::ptsname(m_master);
    }
    ~Terminal() { close(); }
    Q_DISABLE_COPY_MOVE(Terminal)

    void giveTo(QProcess &process) const
    {
        process.setChildProcessModifier([name = m_name.constData()] {
            ::setsid();
            const int terminal = ::open(name, O_RDWR);
            ::ioctl(terminal, TIOCSCTTY, 0);
            for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                ::dup2(terminal, stream);
        });
    }
    /// Its window is gone.
    void close()
    {
        if (m_master >= 0)
            ::close(m_master);
        m_master = -1;
    }

private:
    int m_master = -1;
    QByteArray m_name;
};

} // namespace

class ToolsDieTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        support::manyPacketsBeginMkv();
        m_cli.clip(support::longMkv(120), u"long.mkv"_s);
        m_cli.clip(support::textMp4(), u"long.mp4"_s);
        m_cli.clip(support::textMp4(), u"other.mp4"_s);
        m_cli.clip(support::fullMkv(), u"full.mkv"_s);
        m_cli.clip(support::film1920(), u"small.mkv"_s);
        m_cli.clip(support::manyPacketsMkv(), u"a.mkv"_s);
        m_cli.clip(support::manyPacketsBeginMkv(), u"b.mkv"_s);
        m_cli.clip(support::rawH264(), u"v.h264"_s);
        m_cli.clip(support::manyPacketsAac(), u"s.aac"_s);
        m_cli.useOwnTools();
        m_cli.setEnvironment(u"STAY"_s, m_cli.scratch().path(u"stay"_s));
        m_cli.setTool(u"ffmpeg/ffmpeg"_s, slowFfmpeg + andStay);
        m_cli.setTool(u"mkvtoolnix/mkvmerge"_s, u"/usr/bin/mkvmerge \"$@\""_s + andStay);
        m_cli.setTool(u"ffmpeg/ffprobe"_s, slowFfprobe + andStay);
        m_cli.setTool(u"mplayer/mplayer"_s, player + andStay);
        m_names = m_cli.mediaNames();
        m_sources = facts();
    }

    void init() { QCOMPARE(m_cli.mediaNames(), m_names); }

    void cleanup()
    {
        for (const qint64 pid : m_cli.processes()) // only after a failure
            ::kill(static_cast<pid_t>(pid), SIGKILL);
        QFile::remove(m_cli.scratch().path(u"stay"_s));
        removeOutputs();
    }

    void nothingIsLeft_data()
    {
        QTest::addColumn<Operation>("operation");
        QTest::addColumn<End>("end");
        QTest::addColumn<int>("moment");
        QList<std::pair<Operation, End>> pairs;
        for (const Operation &operation : operations()) {
            for (const End &end : ends())
                pairs.append({operation, end});
        }
        support::Chances chances = support::chancesAt(__LINE__);
        for (const auto &[operation, end] : support::partOf(support::drawn(pairs, 6))) {
            const int moment = static_cast<int>(chances.below(longestMomentMs));
            QTest::addRow("%s, %s after %d ms", operation.name, end.name, moment)
                << operation << end << moment;
        }
    }

    void nothingIsLeft()
    {
        QFETCH(Operation, operation);
        QFETCH(End, end);
        QFETCH(int, moment);
        const bool byMp4box = QByteArrayView(operation.name).contains("mp4box");
        m_cli.setTool(u"mp4box"_s, byMp4box ? mp4box + andStay : QString());
        Terminal terminal;
        QProcess program;
        start(program, operation.line, end.signalNumbers.isEmpty() ? &terminal : nullptr);
        QTest::qWait(moment);
        if (program.state() != QProcess::NotRunning) // else a player may be meant to play on
            m_cli.scratch().write(u"stay"_s, {});
        m_busy += m_cli.processes().size() > 1 ? 1 : 0;
        if (end.pausesTools)
            pauseTools(program.processId());
        if (program.state() != QProcess::NotRunning)
            send(program, end, terminal);
        QElapsedTimer clock;
        clock.start();
        QVERIFY(program.state() == QProcess::NotRunning || program.waitForFinished(support::patience));
        QVERIFY2(waitFor([&] { return m_cli.processes().isEmpty(); }),
                 qPrintable(m_cli.commandLines().join(u'\n')));
        m_slowest = qMax(m_slowest, clock.elapsed());
        QFile::remove(m_cli.scratch().path(u"stay"_s));
        startAgain();
        const QStringList all =
            QDir(m_cli.media()).entryList({u".tessaray-*"_s}, QDir::AllEntries | QDir::Hidden);
        QVERIFY2(all.isEmpty(), qPrintable(all.join(u' ')));
        QVERIFY2(m_cli.temporaryNames().isEmpty(), qPrintable(m_cli.temporaryNames().join(u' ')));
        QCOMPARE(facts(), m_sources);
        QVERIFY2(halfMade(operation).isEmpty(), qPrintable(halfMade(operation)));
    }

    void cleanupTestCase()
    {
        qInfo("%d ends met a tool that ran; the slowest took %lld ms until nothing ran", m_busy, m_slowest);
        QVERIFY(m_busy > 0);
    }

private:
    void start(QProcess &program, const QString &line, const Terminal *terminal) const
    {
        program.setProcessEnvironment(m_cli.environment());
        program.setWorkingDirectory(m_cli.media());
        program.setStandardInputFile(QProcess::nullDevice());
        program.setStandardOutputFile(QProcess::nullDevice());
        program.setStandardErrorFile(QProcess::nullDevice());
        if (terminal != nullptr)
            terminal->giveTo(program);
        program.start(m_cli.program(),
                      QStringList{u"--defaults"_s, m_cli.scratch().path(u"defaults.json"_s)} + words(line));
        QVERIFY(program.waitForStarted());
    }

    void pauseTools(qint64 program) const
    {
        for (const qint64 pid : m_cli.processes()) {
            QFile words(u"/proc/%1/cmdline"_s.arg(pid));
            const bool isOurs = words.open(QIODevice::ReadOnly) && words.readAll().contains("tessaray-cli");
            if (pid != program && !isOurs)
                ::kill(static_cast<pid_t>(pid), SIGSTOP);
        }
    }

    static void send(const QProcess &program, const End &end, Terminal &terminal)
    {
        for (const int number : end.signalNumbers) {
            ::kill(static_cast<pid_t>(program.processId()), number);
            ::usleep(3000);
        }
        if (end.signalNumbers.isEmpty())
            terminal.close();
    }

    /// In the same folder, for something that takes no time.
    void startAgain() const { m_cli.run(words(u"remux small.mkv"_s)); }

    /// Inode, size, time and the first bytes of every source.
    QStringList facts() const
    {
        QStringList found;
        for (const QString &name : m_names) {
            const QFileInfo info(m_cli.media(name));
            QFile file(info.filePath());
            const QByteArray head = file.open(QIODevice::ReadOnly) ? file.read(4096).toHex() : QByteArray();
            found.append(u"%1 %2 %3 %4"_s.arg(name)
                             .arg(info.size())
                             .arg(info.lastModified().toMSecsSinceEpoch())
                             .arg(QString::fromLatin1(head)));
        }
        return found;
    }

    /// What bears a finished name and is not whole; nothing as it should be.
    QString halfMade(const Operation &operation) const
    {
        for (const QString &name : m_cli.mediaNames()) {
            const QString path = m_cli.media(name);
            if (m_names.contains(name) || name.startsWith(u"small"_s) || name.endsWith(u".txt"_s))
                continue;
            if (name.contains(u"(incomplete)"_s))
                return name;
            if (support::streamsOf(path).isEmpty() ||
                (operation.seconds > 0 && support::secondsOf(path) < operation.seconds - 2))
                return name;
        }
        return {};
    }

    void removeOutputs() const
    {
        for (const QString &name : m_cli.mediaNames()) {
            if (!m_names.contains(name))
                QFile::remove(m_cli.media(name));
        }
    }

    CliFixture m_cli;
    QStringList m_names;
    QStringList m_sources;
    int m_busy = 0;
    qint64 m_slowest = 0;
};

Q_DECLARE_METATYPE(Operation)
Q_DECLARE_METATYPE(End)

TESSARAY_TEST(ToolsDieTest)
#include "ToolsDieTest.moc"
