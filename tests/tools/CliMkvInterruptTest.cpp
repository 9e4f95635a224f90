// Ctrl-C and the terminate signal while mkvmerge works: when the program has ended no tool runs, what was
// unfinished is gone, and the sources are untouched. The short form draws some of the commands.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/engines/MkvRuns.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::waitFor;

class CliMkvInterruptTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { support::manyPacketsBeginMkv(); }

    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_cli->clip(support::manyPacketsMkv(), u"a.mkv"_s);
        m_cli->clip(support::manyPacketsBeginMkv(), u"b.mkv"_s);
        m_cli->clip(support::rawH264(), u"v.h264"_s);
        m_cli->clip(support::manyPacketsAac(), u"s.aac"_s);
        m_names = m_cli->mediaNames();
        m_sources = sources();
    }

    void cleanup()
    {
        for (const qint64 pid : m_cli->processes()) // only after a failure
            ::kill(static_cast<pid_t>(pid), SIGKILL);
    }

    void aRunIsStopped_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("output"); ///< what has begun by then
        QTest::addColumn<int>("signal");
        const QList<QStringList> rows{{u"join a.mkv b.mkv"_s, u"a.mkv.joined.mkv"_s},
                                      {u"split a.mkv --time 00:00:01-03:30:00"_s, u"a.mkv.split.mkv"_s},
                                      {u"split a.mkv --duration 01:00:00"_s, u"a.mkv.split-002.mkv"_s},
                                      {u"remux a.mkv"_s, u"a.mkv.remux.mkv"_s},
                                      {u"remux a.mkv b.mkv"_s, u"a.mkv.remux.mkv"_s},
                                      {u"remove a.mkv --tracks 1"_s, u"a.removed.mkv"_s},
                                      {u"convert v.h264 --add s.aac"_s, u"v.muxed.mkv"_s}};
        for (const QStringList &row : support::drawn(rows, 3))
            QTest::addRow("%s, interrupt", qPrintable(row.at(0))) << row.at(0) << row.at(1) << SIGINT;
        for (const QStringList &row : support::drawn(rows, 1))
            QTest::addRow("%s, terminate", qPrintable(row.at(0))) << row.at(0) << row.at(1) << SIGTERM;
    }

    void aRunIsStopped()
    {
        QFETCH(QString, line);
        QFETCH(QString, output);
        QFETCH(int, signal);
        const CliFixture::Run run = interrupted(line, output, signal);
        QCOMPARE(run.status, 128 + signal);
        QCOMPARE(m_cli->mediaNames(), m_names);
        QVERIFY2(m_cli->temporaryNames().isEmpty(), qPrintable(m_cli->temporaryNames().join(u' ')));
        QVERIFY(sources() == m_sources);
        const QList<QJsonObject> told = run.objects();
        QCOMPARE(told.constLast().value(u"event"_s).toString(), u"done"_s);
        QCOMPARE(told.constLast().value(u"outcome"_s).toString(), u"stopped"_s);
        QCOMPARE(std::count_if(told.begin(), told.end(),
                               [](const QJsonObject &object) {
                                   return object.value(u"event"_s).toString() == u"started"_s;
                               }),
                 1);
    }

    void whatIsReplacedReturns_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("output");
        const QList<QStringList> rows{{u"join a.mkv b.mkv"_s, u"a.mkv.joined.mkv"_s},
                                      {u"split a.mkv --duration 01:00:00"_s, u"a.mkv.split-002.mkv"_s},
                                      {u"remux a.mkv"_s, u"a.mkv.remux.mkv"_s},
                                      {u"remove a.mkv --tracks 1"_s, u"a.removed.mkv"_s}};
        for (const QStringList &row : support::drawn(rows, 1))
            QTest::newRow(qPrintable(row.at(0))) << row.at(0) << row.at(1);
    }

    void whatIsReplacedReturns()
    {
        QFETCH(QString, line);
        QFETCH(QString, output);
        m_cli->scratch().write(u"media/"_s + output, "mine");
        m_names = m_cli->mediaNames();
        QCOMPARE(interrupted(line + u" --force"_s, output, SIGINT).status, 130);
        QCOMPARE(m_cli->scratch().read(u"media/"_s + output), "mine");
        QCOMPARE(m_cli->mediaNames(), m_names);
    }

    void whatWasFinishedBeforeStays()
    {
        const CliFixture::Run run = interrupted(u"remux b.mkv a.mkv --no-keep-logs"_s, u"a.mkv.remux.mkv"_s,
                                                SIGINT, u"b.mkv.remux.mkv"_s);
        QCOMPARE(run.status, 130);
        m_names.insert(2, u"b.mkv.remux.mkv"_s);
        QCOMPARE(m_cli->mediaNames(), m_names);
        QVERIFY(support::secondsOf(m_cli->media(u"b.mkv.remux.mkv"_s)) > 15);
    }

private:
    bool isThere(const QString &name) const
    {
        return name.isEmpty() || QFileInfo::exists(m_cli->media(name));
    }

    /// The file lies under a plain name in the job's hidden folder, with the number of its part.
    bool hasBegun(const QString &output) const
    {
        const QString end = output.contains(u"-002."_s) ? u"-002.mkv"_s : u".mkv"_s;
        const QDir media(m_cli->media());
        for (const QString &folder : media.entryList({u".tessaray-??????"_s}, QDir::Dirs | QDir::Hidden)) {
            if (QFileInfo(media.filePath(folder + u"/1"_s + end)).size() > 10)
                return true;
        }
        return false;
    }

    /// Starts the program, sends the signal when the output has begun, and looks for tools when it has ended.
    CliFixture::Run interrupted(const QString &line, const QString &output, int signal,
                                const QString &after = {})
    {
        const auto process = m_cli->start(QStringList{u"--json"_s} + line.split(u' '));
        const bool isBusy = waitFor(
            [&] { return (isThere(after) && hasBegun(output)) || process->state() == QProcess::NotRunning; },
            60000);
        if (!isBusy || process->state() == QProcess::NotRunning)
            return CliFixture::outcomeOf(*process);
        ::kill(static_cast<pid_t>(process->processId()), signal);
        waitFor([&] { return process->state() == QProcess::NotRunning; });
        if (!waitFor([&] { return m_cli->processes().isEmpty(); },
                     5000)) // what was killed is gone in moments
            QTest::qFail(qPrintable(m_cli->commandLines().join(u'\n')), __FILE__, __LINE__);
        return CliFixture::outcomeOf(*process, 10000);
    }

    QByteArray sources() const
    {
        QByteArray all;
        for (const QString &name : {u"a.mkv"_s, u"b.mkv"_s, u"v.h264"_s, u"s.aac"_s})
            all += m_cli->scratch().read(u"media/"_s + name);
        return all;
    }

    std::unique_ptr<CliFixture> m_cli;
    QStringList m_names;
    QByteArray m_sources;
};

TESSARAY_TEST(CliMkvInterruptTest)
#include "CliMkvInterruptTest.moc"
