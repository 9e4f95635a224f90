// "tessaray-cli watch" in a real folder: each good film that lands there is converted once, nothing else is.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/PresetLists.h"
#include "support/PresetRecords.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::waitFor;

namespace {

/// Two looks at the folder and the moment until a film is started, on a busy machine.
constexpr int patienceMs = 60000;
const QStringList presets{u"--track-preset"_s, u"Rule"_s, u"--settings-preset"_s, u"Set"_s};

} // namespace

class CliWatchTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_output.clear();
        QDir().mkpath(m_cli->media(u"in"_s));
        usePresets({});
    }

    void cleanup()
    {
        for (const qint64 pid : m_cli->processes()) // only after a failure
            ::kill(static_cast<pid_t>(pid), SIGKILL);
        m_process.reset();
        m_cli.reset();
    }

    void eachGoodFilmIsConvertedOnceAndNothingElse()
    {
        m_cli->clip(support::fullMkv(), u"in/old.mkv"_s);
        watch({u"--json"_s});
        QVERIFY(tells(u"note"_s, u"in/old.mkv is already there and is not processed."_s));
        m_cli->scratch().write(u"media/in/empty.mkv"_s, "");
        m_cli->scratch().write(u"media/in/bad.mkv"_s, "This is no film.\n");
        m_cli->scratch().write(u"media/in/notes.txt"_s, "no film either\n");
        m_cli->clip(support::fullMkv(), u"in/.hidden.mkv"_s);
        m_cli->clip(support::textMp4(), u"in/sub/deep/inside.mp4"_s);
        moveIn(support::fullMkv(), u"moved.mkv"_s);
        m_cli->clip(support::fullMkv(), u"in/renamed.mkv.part"_s);
        m_cli->clip(support::fullMkv(), u"in/doomed.mkv"_s);
        QVERIFY(tells(u"waiting"_s, u"in/doomed.mkv: "_s));
        QVERIFY(QFile::remove(m_cli->media(u"in/doomed.mkv"_s)));
        QVERIFY(QFile::rename(m_cli->media(u"in/renamed.mkv.part"_s), m_cli->media(u"in/renamed.mkv"_s)));
        copySlowly(support::fullMkv(), u"in/slow.mkv"_s); // takes 12 s
        QCOMPARE(count(u"started"_s, u"slow.mkv"_s), 0);  // not one poll too early
        for (const QString &film : {u"moved.mkv"_s, u"inside.mp4"_s, u"renamed.mkv"_s, u"slow.mkv"_s})
            QVERIFY2(tells(u"done"_s, film), qPrintable(film + u'\n' + said()));
        QCOMPARE(count(u"failed"_s, u"in/bad.mkv can't be opened"_s), 1);
        QCOMPARE(count(u"note"_s, u"in/doomed.mkv is gone."_s), 1);
        QFile::remove(m_cli->media(u"in/bad.mkv"_s));
        m_cli->clip(support::fullMkv(), u"in/bad.mkv"_s); // repaired
        QVERIFY2(tells(u"done"_s, u"bad.mkv"_s), qPrintable(said()));
        waitForTwoLooks();
        for (const QString &film :
             {u"moved.mkv"_s, u"inside.mp4"_s, u"renamed.mkv"_s, u"slow.mkv"_s, u"bad.mkv"_s}) {
            QCOMPARE(count(u"started"_s, film), 1);
            QCOMPARE(count(u"done"_s, film), 1);
        }
        QCOMPARE(count(u"started"_s, {}), 5);
        QCOMPARE(end(SIGINT).status, 130);
        QCOMPARE(names(), QStringList({u".hidden.mkv"_s, u"bad.m4v"_s, u"bad.mkv"_s, u"bad.mkv.error.txt"_s,
                                       u"empty.mkv"_s, u"last.mkv"_s, u"last.mkv.error.txt"_s, u"moved.m4v"_s,
                                       u"moved.mkv"_s, u"notes.txt"_s, u"old.mkv"_s, u"renamed.m4v"_s,
                                       u"renamed.mkv"_s, u"slow.m4v"_s, u"slow.mkv"_s, u"sub"_s}));
        QCOMPARE(
            QDir(m_cli->media(u"in/sub/deep"_s)).entryList({u"*.m4v"_s, u"*.mp4"_s}, QDir::Files, QDir::Name),
            QStringList({u"inside.m4v"_s, u"inside.mp4"_s}));
        for (const QString &output : {u"moved.m4v"_s, u"slow.m4v"_s, u"bad.m4v"_s})
            QCOMPARE(support::codecsOf(m_cli->media(u"in/"_s + output)), u"h264 ac3"_s);
        QVERIFY(m_cli->temporaryNames().isEmpty());
    }

    void aFilmThatFailsDoesNotStopTheNext()
    {
        watch({u"--json"_s});
        QVERIFY(tells(u"note"_s, u"Watching"_s));
        moveIn(support::fullMkv(), u"a.mkv"_s);
        QVERIFY2(tells(u"done"_s, u"a.mkv"_s), qPrintable(said()));
        moveIn(support::audioOnly(), u"b.mp4"_s); // probed well, but no film
        moveIn(support::rawH264(), u"c.mkv"_s);
        m_cli->scratch().write(u"media/in/d.mkv"_s, "This is no film.\n");
        QVERIFY2(tells(u"failed"_s, u"d.mkv can't be opened; it is tried again when it changes."_s),
                 qPrintable(said()));
        moveIn(support::textMp4(), u"e.mp4"_s);
        QVERIFY2(tells(u"done"_s, u"e.mp4"_s), qPrintable(said()));
        QCOMPARE(count(u"started"_s, u"a.mkv"_s), 1);
        QCOMPARE(count(u"started"_s, u"d.mkv"_s), 0);
        QCOMPARE(end(SIGTERM).status, 143);
    }

    void anInterruptLeavesNoHalfOutput()
    {
        QVERIFY(isMakingALongFilm());
        QCOMPARE(end(SIGINT).status, 130);
        QVERIFY(m_cli->nothingRuns());
        QCOMPARE(names(), QStringList{u"long.mkv"_s});
        QCOMPARE(journals(), QStringList());
    }

    void afterAKillTheHalfMadeOutputIsNamedAndNothingIsLost()
    {
        QVERIFY(isMakingALongFilm());
        QCOMPARE(journals().size(), 1);
        const QList<qint64> all = m_cli->processes();
        ::kill(static_cast<pid_t>(m_process->processId()), SIGKILL);
        QVERIFY(m_process->waitForFinished(patienceMs));
        for (const qint64 pid : all) // what it had started goes with its service, as a rule
            ::kill(static_cast<pid_t>(pid), SIGKILL);
        QVERIFY(waitFor([this] { return m_cli->processes().isEmpty(); }));
        const QByteArray film = m_cli->scratch().read(u"media/in/long.mkv"_s);
        m_cli->setTool(u"ffmpeg/ffmpeg"_s, u"exec /usr/bin/ffmpeg \"$@\""_s);
        watch({u"--json"_s});
        QVERIFY2(tells(u"failed"_s, u"in/long.m4v was not finished when the program ended the last time."_s),
                 qPrintable(said()));
        QVERIFY2(tells(u"done"_s, u"long.mkv"_s), qPrintable(said())); // what waited waits no longer
        QCOMPARE(count(u"started"_s, {}), 1);
        QCOMPARE(end(SIGINT).status, 130);
        QCOMPARE(names(), QStringList({u"long.m4v"_s, u"long.mkv"_s}));
        QVERIFY(m_cli->scratch().read(u"media/in/long.mkv"_s) == film);
        renameAll({{u"long.mkv"_s, u"other.mkv"_s}, {u"long.m4v"_s, u"result.m4v"_s}});
        watch({u"--json"_s}); // it is named once, and both are known under whatever names
        QVERIFY(tells(u"note"_s, u"other.mkv is already there"_s));
        renameAll({{u"other.mkv"_s, u"third.mkv"_s}, {u"result.m4v"_s, u"third.m4v"_s}});
        waitForTwoLooks();
        QCOMPARE(count(u"started"_s, {}), 0);
        QCOMPARE(count(u"failed"_s, u"was not finished"_s), 0);
        QCOMPARE(end(SIGINT).status, 130);
    }

    void aFolderHasOneWatcherAndItsOutputsAreKnownToOthers()
    {
        QVERIFY(QDir().mkpath(m_cli->media(u"in/sub"_s)));
        m_cli->clip(support::fullMkv(), u"in/sub/old.mkv"_s);
        watch({u"--json"_s, u"--existing"_s});
        QVERIFY2(tells(u"done"_s, u"old.mkv"_s), qPrintable(said()));
        for (const QString &folder : {u"in"_s, u"in/sub"_s, u"."_s}) {
            const CliFixture::Run second = m_cli->run(QStringList{u"watch"_s, folder} + presets, 20000);
            QCOMPARE(second.status, 2);
            const QString holder = u"is watched already by process %1 on "_s.arg(m_process->processId());
            QVERIFY2(QString::fromUtf8(second.output).contains(holder), second.output.constData());
        }
        // By another program, into the folder.
        m_cli->clip(support::fullMkv(), u"elsewhere.mkv"_s);
        QCOMPARE(m_cli->run({u"--save-dir"_s, u"in/sub"_s, u"remux"_s, u"elsewhere.mkv"_s}).status, 0);
        waitForTwoLooks();
        QCOMPARE(count(u"started"_s, {}), 1);
        QCOMPARE(end(SIGINT).status, 130);
    }

    void theStatusIsOneLineAndNeedsNoPresets()
    {
        CliFixture::Run run = m_cli->run({u"watch"_s, u"--status"_s, u"in"_s});
        QCOMPARE(run.status, 1);
        QCOMPARE(QString::fromUtf8(run.output).trimmed(),
                 m_cli->media(u"in"_s) + u": not watched; 0 waiting, 0 refused, 0 known, 0 outputs."_s);
        QVERIFY(QDir(m_cli->media(u"in"_s)).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
        m_cli->clip(support::fullMkv(), u"in/old.mkv"_s);
        watch({u"--json"_s});
        QVERIFY(tells(u"note"_s, u"old.mkv is already there"_s));
        moveIn(support::textMp4(), u"a.mp4"_s);
        QVERIFY2(tells(u"done"_s, u"a.mp4"_s), qPrintable(said()));
        run = m_cli->run({u"--json"_s, u"watch"_s, u"--status"_s, u"in"_s});
        QCOMPARE(run.status, 0);
        QCOMPARE(run.objects().size(), 1);
        QJsonObject status = run.objects().constFirst();
        QVERIFY(
            status.take(u"watcher"_s).toString().startsWith(u"process %1 on "_s.arg(m_process->processId())));
        QCOMPARE(status, QJsonObject({{u"folder"_s, m_cli->media(u"in"_s)},
                                      {u"watched"_s, true},
                                      {u"waiting"_s, 0},
                                      {u"refused"_s, 0},
                                      {u"known"_s, 2},
                                      {u"outputs"_s, 1}}));
        QList<QJsonObject> films = lines();
        films.removeIf([](const QJsonObject &line) { return line.value(u"event"_s) != u"film"_s; });
        QCOMPARE(films, QList<QJsonObject>({{{u"event"_s, u"film"_s},
                                             {u"source"_s, m_cli->media(u"in/a.mp4"_s)},
                                             {u"result"_s, u"ok"_s},
                                             {u"sentence"_s, u""_s},
                                             {u"outputs"_s, QJsonArray{m_cli->media(u"in/a.m4v"_s)}}}}));
        QCOMPARE(end(SIGINT).status, 130);
        QCOMPARE(m_cli->run({u"watch"_s, u"--status"_s, u"gone"_s}).status, 2);
        QCOMPARE(m_cli->run({u"watch"_s, u"--status"_s}).status, 64);
    }

    void aPersonReadsLinesWithTimes()
    {
        m_cli->clip(support::textMp4(), u"in/old.mp4"_s);
        watch({});
        QVERIFY(waitFor([this] { return m_output.count('\n') >= 2; }, patienceMs));
        const QStringList lines = said().split(u'\n');
        const QString time = u"^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d  note     "_s;
        const QString folder = QRegularExpression::escape(m_cli->media(u"in"_s));
        for (const auto &[line, text] :
             {std::pair{lines.at(0), u"Watching %1\\.$"_s},
              {lines.at(1), u"%1/old\\.mp4 is already there and is not processed\\.$"_s}})
            QVERIFY2(QRegularExpression(time + text.arg(folder)).match(line).hasMatch(), qPrintable(line));
        QCOMPARE(end(SIGINT).status, 130);
    }

    void aLineOfJsonTellsTimeKindAndText()
    {
        watch({u"--json"_s});
        QVERIFY(tells(u"note"_s, u"Watching"_s));
        const QJsonObject line = lines().constFirst();
        QCOMPARE(line.keys(), QStringList({u"event"_s, u"kind"_s, u"text"_s, u"time"_s}));
        const QDateTime time = QDateTime::fromString(line.value(u"time"_s).toString(), Qt::ISODate);
        QVERIFY(time.isValid() && qAbs(time.secsTo(QDateTime::currentDateTime())) < 60);
        QCOMPARE(line.value(u"text"_s).toString(), u"Watching %1."_s.arg(m_cli->media(u"in"_s)));
        QCOMPARE(end(SIGINT).status, 130);
    }

    void whatIsWrongIsSaidBeforeAnythingIsWatched_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("part");
        const QString both = u" --track-preset Rule --settings-preset Set"_s;
        QTest::newRow("no presets") << u"watch in"_s << 64 << u"Both --track-preset and --settings-preset"_s;
        QTest::newRow("no settings preset") << u"watch in --track-preset Rule"_s << 64 << u"Both"_s;
        QTest::newRow("no track preset") << u"watch in --settings-preset Set"_s << 64 << u"Both"_s;
        QTest::newRow("tracks by hand")
            << u"watch in --track-preset Manual --settings-preset Set"_s << 64 << u"\"Manual\""_s;
        QTest::newRow("settings by hand")
            << u"watch in --track-preset Rule --settings-preset Manual"_s << 64 << u"\"Manual\""_s;
        QTest::newRow("an unknown preset")
            << u"watch in --track-preset Rule --settings-preset Other"_s << 64 << u"Other"_s;
        QTest::newRow("no folder named") << u"watch"_s + both << 64 << u"One folder"_s;
        QTest::newRow("two folders") << u"watch in in"_s + both << 64 << u"One folder"_s;
        QTest::newRow("a missing folder") << u"watch gone"_s + both << 2 << u"There is no folder"_s;
        QTest::newRow("a file") << u"watch in/a.txt"_s + both << 2 << u"There is no folder"_s;
    }

    void whatIsWrongIsSaidBeforeAnythingIsWatched()
    {
        QFETCH(QString, line);
        QFETCH(int, status);
        QFETCH(QString, part);
        m_cli->scratch().write(u"media/in/a.txt"_s, "text");
        const CliFixture::Run run = m_cli->run(line.split(u' '), 20000);
        QCOMPARE(run.status, status);
        QVERIFY2(run.said().contains(part) && run.saidOneSentence(), run.error.constData());
        QVERIFY(run.output.isEmpty());
    }

private:
    void usePresets(const QString &settings)
    {
        support::storePresets(*m_cli, {support::trackPreset(u"Rule"_s, u"#1"_s)},
                              {support::settingsPreset(u"Set"_s, u"General"_s, settings)});
    }

    /// Lets the encoder work at the speed of the film, on the way to two minutes.
    void slowDown()
    {
        m_cli->useOwnTools();
        m_cli->setTool(u"ffmpeg/ffmpeg"_s, u"exec /usr/bin/ffmpeg -re \"$@\""_s);
    }

    void watch(const QStringList &options)
    {
        m_output.clear();
        m_process = m_cli->start(options + QStringList{u"watch"_s, u"in"_s} + presets);
        connect(m_process.get(), &QProcess::readyReadStandardOutput, this,
                [this] { m_output += m_process->readAllStandardOutput(); });
    }

    CliFixture::Run end(int signal)
    {
        ::kill(static_cast<pid_t>(m_process->processId()), signal);
        return CliFixture::outcomeOf(*m_process, 15000);
    }

    void moveIn(const QString &clip, const QString &name)
    {
        m_cli->clip(clip, u"outside/"_s + name);
        QVERIFY(QFile::rename(m_cli->media(u"outside/"_s + name), m_cli->media(u"in/"_s + name)));
    }

    void renameAll(const QList<std::pair<QString, QString>> &names)
    {
        for (const auto &[from, to] : names)
            QVERIFY(QFile::rename(m_cli->media(u"in/"_s + from), m_cli->media(u"in/"_s + to)));
    }

    /// What is no film is told when two looks have found it alike, and what they start is started by then.
    void waitForTwoLooks()
    {
        m_cli->scratch().write(u"media/in/last.mkv"_s, "This is no film.\n");
        QVERIFY2(tells(u"failed"_s, u"in/last.mkv can't be opened"_s), qPrintable(said()));
    }

    /// In seven pieces, one every two seconds.
    void copySlowly(const QString &clip, const QString &name)
    {
        constexpr int pieces = 7;
        QFile source(clip);
        QFile target(m_cli->media(name));
        QVERIFY(source.open(QIODevice::ReadOnly) && target.open(QIODevice::WriteOnly));
        const qint64 size = source.size() / pieces + 1;
        for (int piece = 0; piece < pieces; ++piece) {
            if (piece > 0)
                QTest::qWait(2000);
            target.write(source.read(size));
            target.flush();
        }
        QVERIFY(source.atEnd());
    }

    QString said() const { return QString::fromUtf8(m_output); }

    /// The whole lines of JSON so far.
    QList<QJsonObject> lines() const
    {
        CliFixture::Run run;
        run.output = m_output.first(m_output.lastIndexOf('\n') + 1);
        return run.objects();
    }

    qsizetype count(const QString &kind, const QString &part) const
    {
        qsizetype found = 0;
        for (const QJsonObject &line : lines()) {
            if (line.value(u"kind"_s).toString() == kind && line.value(u"text"_s).toString().contains(part))
                ++found;
        }
        return found;
    }

    bool tells(const QString &kind, const QString &part)
    {
        return waitFor([&] { return count(kind, part) > 0; }, patienceMs);
    }

    /// Watches, and waits until a film that takes long is half made.
    bool isMakingALongFilm()
    {
        usePresets(u"video=1 rate=300"_s);
        slowDown();
        watch({u"--json"_s});
        if (!tells(u"note"_s, u"Watching"_s))
            return false;
        moveIn(support::longMkv(120), u"long.mkv"_s);
        return waitFor([this] { return isBusyWith(u"long.mkv"_s); }, patienceMs);
    }

    bool isBusyWith(const QString &source) const
    {
        const QStringList written = support::filesAtWork(m_cli->media(u"in"_s), u"*.m4v"_s);
        return m_cli->commandLines().join(u'\n').contains(source) && !written.isEmpty() &&
               QFileInfo(written.constFirst()).size() > 0;
    }

    /// What lies in the folder, but for the logs that a user who has changed nothing keeps.
    QStringList names() const
    {
        QStringList names =
            QDir(m_cli->media(u"in"_s))
                .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
        names.removeIf(
            [](const QString &name) { return name.endsWith(u".log"_s) || name.startsWith(u".tessaray-"_s); });
        return names;
    }

    QStringList journals() const { return QDir(m_cli->scratch().path()).entryList({u"*.journal"_s}); }

    std::unique_ptr<CliFixture> m_cli;
    std::unique_ptr<QProcess> m_process;
    QByteArray m_output;
};

TESSARAY_TEST(CliWatchTest)
#include "CliWatchTest.moc"
