// Room on the volume of the results, and the priority of the tools, with real tools on a real small volume.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/Words.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::words;

class CliRoomTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        m_cli->useOwnTools();
        QDir().mkpath(m_cli->media(u"disk"_s));
        QDir().mkpath(m_cli->media(u"in"_s));
    }
    void cleanup() { m_cli.reset(); }

    void toolsRunAtLowPriorityWhereThatIsWanted_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QString>("setting");
        QTest::addColumn<bool>("isLow");
        QTest::newRow("as usual") << u""_s << u"false"_s << false;
        QTest::newRow("by the option") << u" --nice"_s << u"false"_s << true;
        QTest::newRow("by the setting") << u""_s << u"true"_s << true;
    }

    void toolsRunAtLowPriorityWhereThatIsWanted()
    {
        QFETCH(QString, option);
        QFETCH(QString, setting);
        QFETCH(bool, isLow);
        m_cli->clip(support::fullMkv(), u"a.mkv"_s);
        m_cli->setEnvironment(u"TOLD"_s, m_cli->scratch().path(u"told"_s));
        m_cli->setTool(u"ffmpeg/ffmpeg"_s, u"nice > \"$TOLD\"\n/usr/bin/ffmpeg \"$@\""_s);
        QCOMPARE(m_cli->run(words(u"prefs set lowPriorityFlag "_s + setting)).status, 0);
        QCOMPARE(m_cli->run(words(u"convert a.mkv"_s + option)).status, 0);
        QProcess plain;
        plain.start(u"nice"_s, QStringList());
        QVERIFY(plain.waitForFinished());
        const int ours = plain.readAll().trimmed().toInt();
        QCOMPARE(m_cli->scratch().read(u"told"_s).trimmed().toInt(), isLow ? qMax(ours, 10) : ours);
    }

    void aRunTellsBeforeAndEndsAsOnAFullDisk()
    {
        const QString film = m_cli->clip(support::film1920(), u"in/a.mkv"_s);
        const auto run =
            onDisk(film, u"\"$@\" remux in/a.mkv --save-dir disk --quiet; echo status $?; ls disk"_s);
        const QString said = run.said();
        QVERIFY2(said.startsWith(u"The results need about "_s), qPrintable(said));
        QVERIFY2(said.contains(u"are free in %1.\n"_s.arg(m_cli->media(u"disk"_s))), qPrintable(said));
        QVERIFY2(said.contains(u"There is no room left in "_s), qPrintable(said));
        QVERIFY2(!said.contains(u"paused"_s), qPrintable(said));
        QVERIFY2(run.output.startsWith("status 2\n"), run.output.constData());
        QVERIFY2(!run.output.contains("a.mkv.remux.mkv"), run.output.constData());
    }

    void nothingIsSaidWhereThereIsRoom()
    {
        m_cli->clip(support::film1920(), u"a.mkv"_s);
        const auto run = m_cli->run(words(u"remux a.mkv --quiet"_s));
        QCOMPARE(run.status, 0);
        QCOMPARE(run.error, QByteArray());
    }

    /// The look at the room comes before the tool has written anything.
    void aWatchWaitsForRoom()
    {
        const QString film = m_cli->clip(support::film1920(), u"in/a.mkv"_s);
        m_cli->setTool(u"ffmpeg/ffmpeg"_s, u"sleep 2\n/usr/bin/ffmpeg \"$@\""_s);
        QCOMPARE(m_cli->run(words(u"presets add settings Set"_s)).status, 0);
        const auto run = onDisk(film, u"\"$@\" watch in --existing --track-preset 'All Tracks' "
                                      u"--settings-preset Set --save-dir disk > log 2>&1 &\n"
                                      "upTo() { n=0; until grep -q \"$1\" log; do sleep 0.2; n=$((n + 1)); [ "
                                      "$n -lt 300 ] || break; done; }\n"
                                      "upTo 'is paused'\n"
                                      "sleep 3\n"
                                      "ls disk\n"
                                      "mount -o remount,size=64m \"$DISK\"\n"
                                      "upTo 'done  *a.mkv'\n"
                                      "kill -INT $!\n"
                                      "wait\n"
                                      "cat log"_s);
        const QString log = QString::fromUtf8(run.output);
        QVERIFY2(log.startsWith(u"20"_s), qPrintable(log)); // nothing had its name before: the log follows
        QVERIFY2(log.contains(u"The results need about "_s), qPrintable(log));
        QVERIFY2(log.contains(u"The job is paused. Only "_s), qPrintable(log));
        QCOMPARE(log.count(u"The job is paused."_s), 1);
        QVERIFY2(log.indexOf(u"The job goes on."_s) > log.indexOf(u"The job is paused."_s), qPrintable(log));
        QVERIFY2(log.contains(m_cli->media(u"disk/a."_s)), qPrintable(log));
    }

private:
    /// A shell with a volume at "disk" that has room for half of the film; "$@" is the program.
    CliFixture::Run onDisk(const QString &film, const QString &line) const
    {
        const QString mounted =
            u"mount -t tmpfs -o size=%1k tmpfs \"$DISK\" || exit 99\n"_s.arg(QFileInfo(film).size() / 2048);
        QProcess process;
        QProcessEnvironment environment = m_cli->environment();
        environment.insert(u"DISK"_s, m_cli->media(u"disk"_s));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_cli->media());
        process.start(u"unshare"_s, {u"-rm"_s, u"sh"_s, u"-c"_s, mounted + line, u"sh"_s, m_cli->program(),
                                     u"--defaults"_s, m_cli->scratch().path(u"defaults.json"_s)});
        return CliFixture::outcomeOf(process);
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliRoomTest)
#include "CliRoomTest.moc"
