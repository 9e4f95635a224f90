// Standard streams that are full, closed, or gone: the work is done all the same, and what could not be
// printed is told.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"

#include <QFile>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;

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

    /// A reader that has seen enough is no failure.
    void aReaderThatGoesAwayLosesNothing()
    {
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        const auto run =
            shell(u"{ sleep 0.5; tessaray probe film.mkv --json; echo $? > status; } | true; cat status"_s);
        QCOMPARE(run.output, "0\n");
        QVERIFY2(run.error.isEmpty(), run.error.constData());
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
        QVERIFY(m_cli->processes().isEmpty());
    }

private:
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
