// Standard streams that are full, closed, or gone: the work is done all the same, and what could not be
// printed is told.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

/// A pipe with a name that is full from the start and read when the test likes.
class Fifo final
{
public:
    explicit Fifo(const QString &path)
        : m_path(path)
    {
        const QByteArray name = path.toUtf8();
        if (::mkfifo(name.constData(), 0600) != 0)
            qFatal("no pipe");
        m_reader = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        m_writer = ::open(name.constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
        const QByteArray filling = Fifo::filling();
        if (::write(m_writer, filling.constData(), static_cast<std::size_t>(filling.size())) !=
            filling.size())
            qFatal("the pipe takes less than that");
    }
    ~Fifo()
    {
        ::close(m_reader);
        ::close(m_writer);
    }
    Q_DISABLE_COPY_MOVE(Fifo)

    /// As much as a pipe holds.
    static QByteArray filling() { return QByteArray(65536, 'x'); }
    const QString &path() const { return m_path; }
    QByteArray read() const
    {
        QByteArray text(65536, '\0');
        const auto count = ::read(m_reader, text.data(), static_cast<std::size_t>(text.size()));
        return count > 0 ? text.first(count) : QByteArray();
    }

private:
    QString m_path;
    int m_reader = -1;
    int m_writer = -1;
};

} // namespace

class CliStreamsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_cli = std::make_unique<CliFixture>(); }

    void resultsThatAreLostAreTold_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("status");
        for (const char *line :
             {"probe film.mkv", "probe film.mkv --json", "--help", "--version", "convert --help",
              "prefs list", "prefs get keepLogsFlag", "presets list", "presets export", "tools",
              "tools --json", "convert film.mkv --dry-run", "remux film.mkv", "remux film.mkv --json",
              "probe film.mkv film.mkv film.mkv"})
            QTest::newRow(line) << QString::fromLatin1(line) << 2;
        QTest::newRow("another problem too") << u"probe none.mkv film.mkv"_s << 2;
        QTest::newRow("a worse one") << u"probe --loud"_s << 64;
    }

    void resultsThatAreLostAreTold()
    {
        QFETCH(QString, line);
        QFETCH(int, status);
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        const auto run = shell(u"tessaray "_s + line + u" --quiet > /dev/full"_s);
        QCOMPARE(run.status, status);
        const bool prints = status == 2;
        QCOMPARE(run.error.count("Standard output can't be written: No space left on device."),
                 prints ? 1 : 0);
    }

    void theJobRunsOn()
    {
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        const auto run = shell(u"tessaray remux film.mkv --no-keep-logs --json > /dev/full"_s);
        QCOMPARE(run.status, 2);
        QCOMPARE(m_cli->mediaNames().size(), 2);
        for (const QString &name : m_cli->mediaNames())
            QCOMPARE(support::streamsOf(m_cli->media(name)).size(),
                     support::streamsOf(support::fullMkv()).size());
    }

    /// As for any program in a pipe: who reads no more wants no more.
    void aReaderThatGoesAwayInterrupts()
    {
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        const auto probed =
            shell(u"{ sleep 0.5; tessaray probe film.mkv --json; echo $? > status; } | true; cat status"_s);
        QCOMPARE(probed.output, "141\n");
        QVERIFY2(probed.error.isEmpty(), probed.error.constData());
        m_cli->clip(support::manyTracksMkv(), u"large.mkv"_s);
        const auto converted =
            shell(u"{ tessaray convert large.mkv film.mkv --video 2pass --json --quiet; echo $? "
                  "> status; } | head -n 1; cat status"_s);
        QVERIFY2(converted.output.endsWith("}\n141\n"), converted.output.constData());
        QCOMPARE(m_cli->mediaNames(), QStringList({u"film.mkv"_s, u"large.mkv"_s, u"status"_s}));
        QVERIFY(m_cli->nothingRuns());
    }

    /// The name gives up its middle, so that the numbers and what follows are seen.
    void aLiveLineFitsTheTerminal()
    {
        const QString name = u"a film of a very long name that leaves no room for anything else.mkv"_s;
        m_cli->clip(support::longMkv(20), name);
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        const QString line = u"tessaray convert '%1' film.mkv --video 2pass > /dev/null"_s.arg(name);
        const auto live = terminal(u"TERM=xterm; stty cols 60; "_s + line);
        const QList<QByteArray> shown = live.output.split('\r');
        const QByteArray start("\x1b[Ka film");
        int count = 0;
        for (const QByteArray &part : shown) {
            const QString text = QString::fromUtf8(part.mid(3)).section(u'\n', 0, 0);
            QVERIFY2(text.size() < 60, part.constData());
            if (part.startsWith(start) && text.contains(u'%'))
                count += text.contains(u'…') && text.contains(u"else.mkv: "_s) &&
                         text.endsWith(u"then film.mkv"_s);
        }
        QVERIFY2(count > 0, live.output.constData());
        QVERIFY(!live.output.contains("\x1b[3") && !live.output.contains("\x1b[1")); // and no colour
        const auto dumb = terminal(u"TERM=dumb; "_s + line + u" --force"_s);
        QVERIFY2(!dumb.output.contains('\x1b') && dumb.output.contains("%"), dumb.output.constData());
    }

    /// Nobody reads until the film is finished: the job does not wait, and all but progress arrives whole.
    void aSlowReaderLosesProgressOnly()
    {
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        Fifo fifo(m_cli->scratch().path(u"events"_s));
        const auto process = started(
            {u"convert"_s, u"film.mkv"_s, u"--video"_s, u"1pass"_s, u"--json"_s, u"--no-keep-logs"_s}, fifo);
        QVERIFY(support::waitFor([&] { return QFile::exists(m_cli->media(u"film.m4v"_s)); }));
        QVERIFY(process->state() == QProcess::Running); // what is not read yet is not lost
        QStringList events;
        QByteArray text;
        QVERIFY(support::waitFor([&] {
            text += fifo.read();
            return process->state() == QProcess::NotRunning;
        }));
        text += fifo.read();
        QCOMPARE(process->exitCode(), 0);
        QVERIFY(text.startsWith(Fifo::filling()));
        for (const QByteArray &line : text.mid(Fifo::filling().size()).trimmed().split('\n'))
            events.append(QJsonDocument::fromJson(line).object().value(u"event"_s).toString());
        QVERIFY(events.removeAll(u"progress"_s) <= 1); // the last one may come when it is read again
        QCOMPARE(events, QStringList({u"queued"_s, u"started"_s, u"done"_s}));
    }

    void anInterruptWaitsForNoReader()
    {
        m_cli->clip(support::manyTracksMkv(), u"film.mkv"_s);
        Fifo fifo(m_cli->scratch().path(u"events"_s));
        const auto process =
            started({u"convert"_s, u"film.mkv"_s, u"--video"_s, u"2pass"_s, u"--json"_s}, fifo);
        QVERIFY(support::waitFor([&] { return m_cli->processes().size() > 1; }));
        ::kill(static_cast<pid_t>(process->processId()), SIGINT);
        QVERIFY(process->waitForFinished(support::patience));
        QCOMPARE(process->exitStatus(), QProcess::NormalExit);
        QCOMPARE(process->exitCode(), 130);
        QCOMPARE(m_cli->mediaNames(), QStringList({u"film.mkv"_s}));
    }

    void closedStreamsChangeNothing_data()
    {
        QTest::addColumn<QString>("closed");
        for (const int which : QList<int>{0, 7} + support::drawn(QList<int>{1, 2, 3, 4, 5, 6}, 2)) {
            const QString closed = QString(which & 1 ? u"<&- "_s : QString()) +
                                   (which & 2 ? u">&- "_s : QString()) + (which & 4 ? u"2>&- "_s : QString());
            QTest::newRow(closed.isEmpty() ? "none" : qPrintable(closed)) << closed;
        }
    }

    void closedStreamsChangeNothing()
    {
        QFETCH(QString, closed);
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        const auto remuxed = shell(u"tessaray remux film.mkv --no-keep-logs "_s + closed);
        QCOMPARE(remuxed.status, 0);
        const auto converted =
            shell(u"tessaray convert film.mkv --video 1pass --no-keep-logs --json "_s + closed);
        QCOMPARE(converted.status, 0);
        QCOMPARE(m_cli->mediaNames().size(), 3);
        const bool isTold = !closed.contains(u'>') || closed.startsWith(u"<&- 2"_s) || closed == u"2>&- "_s;
        QCOMPARE(remuxed.output.isEmpty(), !isTold);
        const auto streams = support::codecsOf(m_cli->media(u"film.m4v"_s));
        QVERIFY2(streams.startsWith(u"h264 "_s), qPrintable(streams));
        QVERIFY(m_cli->nothingRuns());
    }

private:
    /// A shell line whose standard streams are a terminal.
    CliFixture::Run terminal(const QString &line) const
    {
        const QString function = u"tessaray() { \"%1\" --defaults \"%2\" \"$@\"; }; export TERM; "_s.arg(
            m_cli->program(), m_cli->scratch().path(u"defaults.json"_s));
        QProcess process;
        process.setProcessEnvironment(m_cli->environment());
        process.setWorkingDirectory(m_cli->media());
        process.setStandardInputFile(QProcess::nullDevice());
        process.start(u"script"_s, {u"-qec"_s, function + line, u"/dev/null"_s});
        return CliFixture::outcomeOf(process);
    }

    /// The program with the pipe for its standard output.
    std::unique_ptr<QProcess> started(const QStringList &words, const Fifo &fifo) const
    {
        auto process = std::make_unique<QProcess>();
        process->setProcessEnvironment(m_cli->environment());
        process->setWorkingDirectory(m_cli->media());
        process->setStandardInputFile(QProcess::nullDevice());
        process->setStandardOutputFile(fifo.path(), QIODevice::Append);
        process->start(m_cli->program(),
                       QStringList{u"--defaults"_s, m_cli->scratch().path(u"defaults.json"_s)} + words);
        return process;
    }

    /// A shell line in the working folder, in which "tessaray" is the program with settings of its own.
    CliFixture::Run shell(const QString &line) const
    {
        QProcess process;
        process.setProcessEnvironment(m_cli->environment());
        process.setWorkingDirectory(m_cli->media());
        process.setStandardInputFile(QProcess::nullDevice());
        const QString function = u"tessaray() { \"%1\" --defaults \"%2\" \"$@\"; }; "_s.arg(
            m_cli->program(), m_cli->scratch().path(u"defaults.json"_s));
        process.start(u"/bin/bash"_s, {u"-c"_s, function + line});
        return CliFixture::outcomeOf(process);
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliStreamsTest)
#include "CliStreamsTest.moc"
