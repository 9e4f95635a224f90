// What the program makes of its command line: help, wrong words, options anywhere, names of any kind.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/TestMain.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

QString programFolder()
{
    return QStringLiteral(TESSARAY_BUILD_DIR "/bin");
}

} // namespace

class CliUsageTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_cli.clip(support::fullMkv(), u"film.mkv"_s);
        m_cli.clip(support::twoVideosMkv(), u"two.mkv"_s);
        m_before = m_cli.mediaNames();
    }

    void nothingIsWrittenByWrongUsage() { QCOMPARE(m_cli.mediaNames(), m_before); }

    void withoutACommandTheMostUsedLinesAreShown()
    {
        const auto run = m_cli.run({});
        QCOMPARE(run.status, 64);
        QVERIFY(run.output.isEmpty());
        QCOMPARE(run.said().count(u"  tessaray-cli "_s), 5);
        for (const auto *command : {"probe", "convert", "extract", "watch", "--help"})
            QVERIFY2(run.error.contains(command), command);
    }

    void whatIsUnknownSuggestsTheNearest_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("suggested");
        const auto row = [](const QString &line, const QString &suggested) {
            QTest::newRow(qPrintable(line)) << line << suggested;
        };
        row(u"convert film.mkv --devise PS3"_s, u"Did you mean --device?"_s);
        row(u"convert film.mkv --dryrun"_s, u"Did you mean --dry-run?"_s);
        row(u"probe --jsno film.mkv"_s, u"Did you mean --json?"_s);
        row(u"convert --vidoe=1pass film.mkv"_s, u"Did you mean --video?"_s);
        row(u"convret film.mkv"_s, u"Did you mean convert?"_s);
        row(u"preset list"_s, u"Did you mean presets?"_s);
        row(u"frobnicate film.mkv"_s, {});
        row(u"probe --completely-other film.mkv"_s, {});
    }

    void whatIsUnknownSuggestsTheNearest()
    {
        QFETCH(QString, line);
        QFETCH(QString, suggested);
        const auto run = m_cli.run(line.split(u' '));
        QCOMPARE(run.status, 64);
        QCOMPARE(run.said().contains(u"Did you mean"_s), !suggested.isEmpty());
        QVERIFY2(run.said().contains(suggested), run.error.constData());
    }

    void everyCommandShowsItsOptionsStatusAndAnExample()
    {
        const QString general = QString::fromUtf8(m_cli.run({u"--help"_s}).output);
        static const QRegularExpression name(u"^  ([a-z]+) "_s, QRegularExpression::MultilineOption);
        int count = 0;
        for (auto match = name.globalMatch(general); match.hasNext(); ++count) {
            const QString command = match.next().captured(1);
            const auto run = m_cli.run({command, u"--help"_s});
            QCOMPARE(run.status, 0);
            QVERIFY(run.lines().constLast().startsWith(u"Example: tessaray-cli "_s + command));
            QVERIFY(run.lines().filter(u"Exit status: 0 success"_s).size() == 1);
        }
        QVERIFY(count >= 13);
    }

    void wrongUsage_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<QString>("named");
        const auto row = [](const QString &line, const QString &named) {
            QTest::newRow(qPrintable(line)) << line.split(u' ') << named;
        };
        row(u"frobnicate film.mkv"_s, u"frobnicate"_s);
        row(u"probe"_s, u"No file"_s);
        row(u"convert"_s, u"No file"_s);
        row(u"extract --json"_s, u"No file"_s);
        row(u"probe --loud film.mkv"_s, u"--loud"_s);
        row(u"probe -v film.mkv"_s, u"-v"_s);
        row(u"probe film.mkv --device PS3"_s, u"--device"_s);
        row(u"probe film.mkv --dry-run"_s, u"--dry-run"_s);
        row(u"extract film.mkv --video 1pass"_s, u"--video"_s);
        row(u"tools --force"_s, u"--force"_s);
        row(u"tools film.mkv"_s, u"no arguments"_s);
        row(u"prefs list --tracks 1"_s, u"--tracks"_s);
        row(u"convert film.mkv --keep-logs --no-keep-logs"_s, u"--no-keep-logs"_s);
        row(u"convert film.mkv --device"_s, u"--device"_s);
        row(u"convert film.mkv --device Toaster"_s, u"Toaster"_s);
        row(u"convert film.mkv --device PS3 --kind mkv"_s, u"PS3"_s);
        row(u"convert film.mkv --kind mov"_s, u"mov"_s);
        row(u"convert film.mkv --video twice"_s, u"twice"_s);
        row(u"convert film.mkv --video 1pass --width wide"_s, u"wide"_s);
        row(u"convert film.mkv --video 1pass --video-bitrate 0"_s, u"--video-bitrate"_s);
        row(u"convert film.mkv --audio 1=opus:2:96"_s, u"opus"_s);
        row(u"convert film.mkv --subtitles draw"_s, u"draw"_s);
        row(u"convert film.mkv --subtitles burn"_s, u"--subtitles"_s);
        row(u"convert film.mkv --tracks one"_s, u"one"_s);
        row(u"convert film.mkv --tracks 0,17"_s, u"17"_s);
        row(u"convert film.mkv --audio 9=passthru"_s, u"9"_s);
        row(u"convert film.mkv --tracks 0,1 --audio 2=passthru"_s, u"track 2"_s);
        row(u"convert film.mkv --audio 3=passthru"_s, u"track 3"_s);
        row(u"extract film.mkv --tracks 6"_s, u"6"_s);
        row(u"extract film.mkv --tracks 0-2"_s, u"0-2"_s);
        row(u"extract film.mkv two.mkv --tracks 1,2"_s, u"two.mkv has no track 2"_s);
        row(u"prefs"_s, u"list"_s);
        row(u"prefs get"_s, u"get KEY"_s);
        row(u"prefs get speed"_s, u"speed"_s);
        row(u"prefs set speed 9"_s, u"speed"_s);
        row(u"prefs set keepLogsFlag"_s, u"set KEY VALUE"_s);
        row(u"prefs set keepLogsFlag maybe"_s, u"maybe"_s);
        row(u"prefs list all"_s, u"list"_s);
    }

    void wrongUsage()
    {
        QFETCH(QStringList, words);
        QFETCH(QString, named);
        for (const QStringList &more : {QStringList(), QStringList{u"--json"_s}}) {
            const auto run = m_cli.run(more + words);
            QCOMPARE(run.status, 64);
            QVERIFY2(run.output.isEmpty(), run.output.constData());
            QVERIFY2(run.said().contains(named), qPrintable(run.said()));
        }
        QCOMPARE(m_cli.mediaNames(), m_before);
    }

    void helpShowsAnExampleThatWorks_data()
    {
        QTest::addColumn<QString>("more");
        QTest::newRow("probe") << QString();
        QTest::newRow("convert") << u" --dry-run"_s;
        QTest::newRow("extract") << u" --dry-run"_s;
        QTest::newRow("prefs") << QString();
        QTest::newRow("tools") << QString();
    }

    void helpShowsAnExampleThatWorks()
    {
        QFETCH(QString, more);
        const QString command = QString::fromLatin1(QTest::currentDataTag());
        const auto run = m_cli.run({command, u"--help"_s});
        QCOMPARE(run.status, 0);
        QVERIFY(run.error.isEmpty());
        QVERIFY(run.lines().constFirst().startsWith(u"Usage: tessaray-cli "_s + command));
        const QString start = u"Example: "_s;
        const QString example = run.lines().constLast();
        QVERIFY2(example.startsWith(start + u"tessaray-cli "_s + command), qPrintable(example));
        const auto tried = shell(example.mid(start.size()) + more);
        QVERIFY2(tried.status == 0, tried.error.constData());
        QCOMPARE(m_cli.run({u"help"_s, command}).output, run.output);
    }

    void helpListsTheOptionsOfTheCommand()
    {
        const QString help = QString::fromUtf8(m_cli.run({u"convert"_s, u"--help"_s}).output);
        for (const auto &option :
             {u"--device NAME"_s, u"--kind mp4|mkv|avi"_s, u"--video passthru|1pass|2pass"_s,
              u"--video-bitrate KBPS"_s, u"--width PX"_s, u"--audio TRACK=SETTINGS"_s,
              u"--subtitles mux|burn"_s, u"--tracks LIST"_s, u"--dry-run"_s, u"--force"_s})
            QVERIFY2(help.contains(option), qPrintable(option));
    }

    void generalHelpNamesEverything()
    {
        const auto run = m_cli.run({u"--help"_s});
        QCOMPARE(run.status, 0);
        for (const auto *word :
             {"probe FILE...", "convert FILE|DIR...", "extract FILE...", "prefs list | get KEY", "tools",
              "--json", "--quiet", "--save-dir DIR", "--keep-logs", "--no-keep-logs", "--nice",
              "--defaults FILE", "Exit status", "Example: tessaray-cli"})
            QVERIFY2(run.output.contains(word), word);
    }

    void theVersionIsTold()
    {
        const auto run = m_cli.run({u"--version"_s});
        QCOMPARE(run.status, 0);
        QVERIFY2(run.output.startsWith("tessaray-cli ") && run.output.at(13) >= '0' &&
                     run.output.at(13) <= '9',
                 run.output.constData());
        QCOMPARE(run.lines().size(), 1);
    }

    void optionsStandAnywhere_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("in front") << u"--json --tracks 0 --dry-run convert film.mkv"_s;
        QTest::newRow("behind") << u"convert film.mkv --tracks=0 --dry-run --json"_s;
        QTest::newRow("between") << u"--dry-run convert --tracks 0 film.mkv --json"_s;
        QTest::newRow("two dashes") << u"convert --json --dry-run --tracks 0 -- film.mkv"_s;
    }

    void optionsStandAnywhere()
    {
        QFETCH(QString, line);
        const auto run = m_cli.run(line.split(u' '));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(run.objects().size(), 1);
        QCOMPARE(run.objects().constFirst().value(u"output"_s).toString(), m_cli.media(u"film.m4v"_s));
    }

    void namesThatLookLikeOptionsStandBehindTwoDashes()
    {
        const CliFixture cli;
        cli.clip(support::vp9Mkv(), u"--json"_s);
        cli.clip(support::fullMkv(), u"-i"_s);
        const auto run = cli.run({u"probe"_s, u"--json"_s, u"--"_s, u"-i"_s, u"--json"_s});
        QCOMPARE(run.status, 2);
        const auto objects = run.objects();
        QCOMPARE(objects.size(), 2);
        QCOMPARE(objects.at(0).value(u"file"_s).toObject().value(u"theFilePath"_s).toString(),
                 cli.media(u"-i"_s));
        QCOMPARE(objects.at(0).value(u"status"_s).toString(), u"OK"_s);
        QCOMPARE(objects.at(1).value(u"status"_s).toString(), u"track not identified"_s);
    }

    void aNameThatIsNotUtf8IsRefusedWithASentence()
    {
        for (const auto &command : {u"probe"_s, u"convert"_s, u"extract --dry-run"_s}) {
            const auto run =
                shell(u"cp film.mkv \"$(printf 'caf\\351.mkv')\"; "
                      "tessaray-cli %1 \"$(printf 'caf\\351.mkv')\"; status=$?; rm caf*; exit $status"_s.arg(
                          command));
            QCOMPARE(run.status, 64);
            QVERIFY(run.output.isEmpty());
            QVERIFY2(run.said().contains(u"UTF-8"_s) && run.said().trimmed().endsWith(u'.'),
                     qPrintable(run.said()));
        }
        QCOMPARE(m_cli.mediaNames(), m_before);
    }

    void namesAreUtf8WhateverTheLocale()
    {
        CliFixture cli;
        cli.setEnvironment(u"LC_ALL"_s, u"C"_s);
        cli.clip(support::vp9Mkv(), u"映画 ü.mkv"_s);
        const auto run = cli.run({u"probe"_s, u"--json"_s, u"映画 ü.mkv"_s});
        QCOMPARE(run.objects().constFirst().value(u"file"_s).toObject().value(u"theFileURL"_s).toString(),
                 cli.media(u"映画 ü.mkv"_s));
        QCOMPARE(run.objects().constFirst().value(u"status"_s).toString(), u"track not identified"_s);
    }

    void settingsThatCantBeReadAreSaid()
    {
        const CliFixture cli;
        cli.scratch().write(u"defaults.json"_s, "no settings");
        const auto run = cli.run({u"prefs"_s, u"get"_s, u"keepLogsFlag"_s});
        QCOMPARE(run.status, 1);
        QCOMPARE(run.output, "true\n");
        QVERIFY2(run.said().contains(u"something else than settings"_s), qPrintable(run.said()));
    }

private:
    /// A shell in the working folder that finds the program by its name and settings of its own.
    CliFixture::Run shell(const QString &line) const
    {
        QProcess process;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"PATH"_s, programFolder() + u':' + environment.value(u"PATH"_s));
        environment.insert(u"HOME"_s, m_cli.scratch().path(u"home"_s));
        environment.insert(u"XDG_CONFIG_HOME"_s, m_cli.scratch().path(u"home/config"_s));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_cli.media());
        process.start(u"/bin/sh"_s, {u"-c"_s, line});
        return CliFixture::outcomeOf(process);
    }

    CliFixture m_cli;
    QStringList m_before;
};

TESSARAY_TEST(CliUsageTest)
#include "CliUsageTest.moc"
