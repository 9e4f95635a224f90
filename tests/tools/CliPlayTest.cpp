// The command "play", with a stand-in for the player that writes down how it was called, and with the
// installed one.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/HostileFilms.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::FakeTool;
using support::waitFor;

namespace {

/// The player says its version when it is asked for it, and is recorded when it plays.
const QStringList player{u"when -noconfig"_s, u"out MPlayer 1.5"_s, u"exit 0"_s, u"end"_s};

} // namespace

class CliPlayTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_cli->useOwnTools();
    }

    void withoutAListTheFirstTracksArePlayed()
    {
        usePlayer();
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        const auto run = m_cli->run({u"play"_s, u"film.mkv"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        QVERIFY(run.output.isEmpty() && run.error.isEmpty());
        QCOMPARE(played(), QByteArrayList({m_cli->media(u"film.mkv"_s).toUtf8(), "-vid", "0", "-aid", "0",
                                           "-sid", "0", "-font", "/Library/Fonts/Arial Unicode.ttf", "-ass",
                                           "-ass-font-scale", "1.0", "-ass-color", "FFFFFF00"}));
        QCOMPARE(m_cli->mediaNames(), QStringList({u"film.mkv"_s}));
    }

    void chosenTracksArePlayed()
    {
        usePlayer();
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        const auto run = m_cli->run({u"play"_s, u"film.mkv"_s, u"--tracks"_s, u"0,2,5"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(played(), QByteArrayList({m_cli->media(u"film.mkv"_s).toUtf8(), "-vid", "0", "-aid", "1",
                                           "-aid", "2"}));
    }

    /// The player outlives the program, also when its terminal is interrupted later; nothing is left over.
    void theProgramEndsWhileThePlayerRuns()
    {
        usePlayer({u"pid "_s + m_cli->scratch().path(u"pid"_s), u"hang"_s});
        m_cli->clip(support::film1920(), u"film.mkv"_s);
        QCOMPARE(m_cli->run({u"play"_s, u"film.mkv"_s}, 20000).status, 0);
        QVERIFY(waitFor([&] { return m_cli->scratch().read(u"pid"_s).endsWith('\n'); }));
        const qint64 pid = m_cli->scratch().read(u"pid"_s).trimmed().toLongLong();
        QVERIFY(
            waitFor([&] { return m_cli->processes() == QList<qint64>({pid}); })); // once the keeper is gone
        QVERIFY(m_cli->temporaryNames().isEmpty());
        ::kill(static_cast<pid_t>(pid), SIGKILL);
    }

    void hostileNamesArriveToTheLetter()
    {
        usePlayer();
        const QList<support::Film> films = support::hostileFilms();
        for (qsizetype i = 0; i < films.size(); i += 2) {
            const QString name = films.at(i).stem + u".mkv"_s;
            const QString path = m_cli->media(name);
            QVERIFY(QFile::copy(support::film1920(), path));
            const auto run = m_cli->run({u"play"_s, u"--tracks"_s, u"0,1"_s, u"--"_s, name});
            QVERIFY2(run.status == 0, qPrintable(name + run.said()));
            QCOMPARE(played(), QByteArrayList({path.toUtf8(), "-vid", "0", "-aid", "0"}));
            QVERIFY(QFile::remove(path));
            QVERIFY2(m_cli->mediaNames().isEmpty(), qPrintable(name));
        }
    }

    void aPlayerThatIsMissingIsNamed_data()
    {
        QTest::addColumn<QString>("script"); // null: no file
        QTest::newRow("no file") << QString();
        QTest::newRow("a launcher of nothing") << u"exec \"/nowhere/mplayer\" \"$@\""_s;
        QTest::newRow("something that fails") << u"exit 127"_s;
    }

    void aPlayerThatIsMissingIsNamed()
    {
        QFETCH(QString, script);
        QDir().mkpath(m_cli->resources() + u"/mplayer"_s);
        m_cli->setTool(u"mplayer/mplayer"_s, script);
        m_cli->clip(support::film1920(), u"film.mkv"_s);
        const auto run = m_cli->run({u"play"_s, u"film.mkv"_s});
        QCOMPARE(run.status, 2);
        QVERIFY2(run.said().startsWith(u"mplayer "_s) && run.said().contains(u"no preview playback"_s),
                 qPrintable(run.said()));
    }

    void wrongUsage_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<QString>("named");
        const auto row = [](const QString &line, const QString &named) {
            QTest::newRow(qPrintable(line)) << line.split(u' ') << named;
        };
        row(u"play"_s, u"One file"_s);
        row(u"play film.mkv film.mkv"_s, u"One file"_s);
        row(u"play film.mkv --tracks 7"_s, u"has no track 7"_s);
        row(u"play film.mkv --tracks one"_s, u"one"_s);
        row(u"play film.mkv --device PS3"_s, u"--device"_s);
    }

    void wrongUsage()
    {
        QFETCH(QStringList, words);
        QFETCH(QString, named);
        usePlayer();
        m_cli->clip(support::film1920(), u"film.mkv"_s);
        const auto run = m_cli->run(words);
        QCOMPARE(run.status, 64);
        QVERIFY2(run.said().contains(named), qPrintable(run.said()));
        QVERIFY(runs().isEmpty());
    }

    void whatIsNoVideoIsNotPlayed()
    {
        usePlayer();
        m_cli->scratch().write(u"media/notes.txt"_s, "words");
        const auto run = m_cli->run({u"play"_s, u"notes.txt"_s});
        QCOMPARE(run.status, 2);
        QVERIFY2(run.said().contains(u"notes.txt: "_s), qPrintable(run.said()));
        QVERIFY(runs().isEmpty());
    }

    /// The numbers are the player's own, so it opens the tracks that were named.
    void theInstalledPlayerOpensTheTracksThatWereNamed()
    {
        QDir().mkpath(m_cli->resources() + u"/mplayer"_s);
        const QString said = m_cli->scratch().path(u"said"_s);
        m_cli->setTool(u"mplayer/mplayer"_s,
                       u"exec >%1 2>&1\nmplayer -nolirc -vo null -ao null -frames 3 -identify \"$@\"\n"
                       "[ \"$1\" = -noconfig ] && exec cat %1 >&3\nmv %1 %1.all"_s.arg(said)
                           .prepend(u"exec 3>&1\n"_s));
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        const auto run = m_cli->run({u"play"_s, u"film.mkv"_s, u"--tracks"_s, u"0,2,4"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        QVERIFY(waitFor([&] { return QFile::exists(said + u".all"_s); }));
        const QByteArray words = m_cli->scratch().read(u"said.all"_s);
        for (const char *line :
             {"\nID_VIDEO_CODEC=ffh264\n", "\nID_AUDIO_CODEC=ffaac\n", "\nID_SUBTITLE_ID=1\n"})
            QVERIFY2(words.contains(line), words.constData());
    }

private:
    /// Runs of the player, and what it does in them.
    void usePlayer(const QStringList &script = {}) const
    {
        FakeTool::install(m_cli->resources() + u"/mplayer/mplayer"_s,
                          player + QStringList{u"record "_s + m_cli->scratch().path(u"played"_s)} + script);
    }
    QList<FakeTool::Run> runs() const { return FakeTool::recordedRuns(m_cli->scratch().path(u"played"_s)); }
    /// The arguments of the one run, which is forgotten.
    QByteArrayList played() const
    {
        waitFor([&] { return !runs().isEmpty(); });
        const auto all = runs();
        QFile::remove(m_cli->scratch().path(u"played"_s));
        return all.size() == 1 ? all.first().arguments : QByteArrayList();
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliPlayTest)
#include "CliPlayTest.moc"
