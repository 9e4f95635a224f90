// Names of files, titles in them and every other word from outside, as a terminal sees them: nothing that it
// would obey comes out of any command, on either stream, on a terminal or into a pipe, and no name passes for
// a line of the program's.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/PresetLists.h"
#include "support/PresetRecords.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

/// Colours, a line over the last one, a tab, DEL, NEL, CSI, every turn of the direction, the ends of lines.
const QString evil =
    u"e\u001b[31m\r\t\u007f\u0085\u009b2J\u061c\u200e\u200f\u202a\u202b\u202c\u202d\u202e\u2066\u2067\u2068\u2069\u2028\u2029v"_s;
const QString evilShown =
    uR"(e\x1b[31m\r\t\x7f\x85\x9b2J\u061c\u200e\u200f\u202a\u202b\u202c\u202d\u202e\u2066\u2067\u2068\u2069\u2028\u2029v)"_s;
/// A line that the program never says.
const QString forged = u"film.mkv: all well."_s;
const QString evilName = evil + u"\n"_s + forged + u"\nz"_s;
const QString evilNameShown = evilShown + uR"(\n)"_s + forged + uR"(\nz)"_s;

bool isObeyed(QChar c)
{
    const char16_t code = c.unicode();
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x61c || code == 0x200e ||
           code == 0x200f || (code >= 0x2028 && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
}

/// A null text, or the first line that a terminal would not just show.
QString obeyedIn(const QByteArray &stream)
{
    for (const QString &line : QString::fromUtf8(stream).split(u'\n')) {
        if (std::any_of(line.begin(), line.end(), isObeyed))
            return line;
        if (line.startsWith(forged))
            return line;
    }
    return {};
}

} // namespace

class CliTerminalTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyCommandIsHarmless_data();
    void everyCommandIsHarmless();
    void theTableOfAProbeShowsTheName();
    void aFinishedFileIsNamedVisibly();
    void jsonHoldsTheNameToTheLetter();
    void aDryRunCanBePasted_data();
    void aDryRunCanBePasted();
    void settingsAndPresetsAreVisible();
    void aWatchIsHarmless_data();
    void aWatchIsHarmless();

private:
    QString film(const QString &name = evilName + u".mkv"_s) const { return m_cli->media(name); }
    CliFixture::Run onTerminal(const QStringList &words) const;

    std::unique_ptr<CliFixture> m_cli;
};

void CliTerminalTest::initTestCase()
{
    m_cli = std::make_unique<CliFixture>();
    const QString made = m_cli->media(u"made.mkv"_s);
    QStringList words{u"-q"_s, u"-o"_s, made, u"--title"_s, evil};
    for (const auto &track : {u"0:"_s, u"1:"_s, u"2:"_s})
        words << u"--track-name"_s << track + evil;
    support::runProgram(u"mkvmerge"_s, words << support::fullMkv());
    QVERIFY(QFile::copy(made, film()));
    QVERIFY(QFile::copy(made, film(u"second "_s + evilName + u".mkv"_s)));
    QVERIFY(QFile::remove(made));
    m_cli->scratch().write(u"media/no "_s + evilName + u".mkv"_s, "no film");
    m_cli->scratch().write(u"media/bad "_s + evilName, "{\"" + evil.toUtf8() + "\": 1}");
    QVERIFY(QDir().mkpath(m_cli->media(u"dir "_s + evilName)));
    support::storePresets(*m_cli, {support::trackPreset(u"Rule "_s + evilName, u"#1"_s)},
                          {support::settingsPreset(u"Set "_s + evilName, u"MKV"_s)});
}

/// As CliFixture::run(), with a terminal for both streams. Its own line ends, and the program's live line,
/// are taken out of what it was sent.
CliFixture::Run CliTerminalTest::onTerminal(const QStringList &words) const
{
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ::grantpt(master);
    ::unlockpt(master);
    const int slave = ::open(::ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    QProcess process;
    process.setProcessEnvironment(m_cli->environment());
    process.setWorkingDirectory(m_cli->media());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setChildProcessModifier([slave] {
        ::dup2(slave, STDOUT_FILENO);
        ::dup2(slave, STDERR_FILENO);
    });
    process.start(m_cli->program(),
                  QStringList{u"--defaults"_s, m_cli->scratch().path(u"defaults.json"_s)} + words);
    process.waitForStarted();
    CliFixture::Run run;
    const auto drain = [&] {
        char chunk[4096];
        pollfd waiting{master, POLLIN, 0};
        while (::poll(&waiting, 1, 20) == 1 && (waiting.revents & POLLIN) != 0)
            run.output.append(chunk, ::read(master, chunk, sizeof(chunk)));
    };
    while (process.state() != QProcess::NotRunning) {
        drain();
        process.waitForFinished(1);
    }
    ::close(slave);
    drain();
    ::close(master);
    run.status = process.exitCode();
    run.output.replace("\r\n", "\n").replace("\r\x1b[K", "");
    return run;
}

void CliTerminalTest::everyCommandIsHarmless_data()
{
    QTest::addColumn<QStringList>("words");
    const QString name = evilName + u".mkv"_s;
    const QString second = u"second "_s + name;
    const auto row = [](const char *title, const QStringList &words) { QTest::newRow(title) << words; };
    row("probe", {u"probe"_s, name});
    row("probe of no film", {u"probe"_s, u"no "_s + name});
    row("probe of nothing", {u"probe"_s, u"none "_s + name});
    row("convert", {u"convert"_s, name, u"--kind"_s, u"mkv"_s});
    row("convert what is there", {u"convert"_s, name, u"--kind"_s, u"mkv"_s});
    row("convert, re-encoded", {u"convert"_s, name, u"--video"_s, u"1pass"_s});
    row("convert, burned", {u"convert"_s, name, u"--video"_s, u"1pass"_s, u"--subtitles"_s, u"burn"_s,
                            u"--force"_s, u"--tracks"_s, u"0,1,3"_s});
    row("convert without the track", {u"convert"_s, name, u"--tracks"_s, u"77"_s});
    row("convert no film", {u"convert"_s, u"no "_s + name});
    row("convert with an added file", {u"convert"_s, name, u"--add"_s, u"no "_s + name});
    row("convert by no preset", {u"convert"_s, name, u"--track-preset"_s, evilName});
    row("dry run", {u"convert"_s, name, u"--kind"_s, u"avi"_s, u"--dry-run"_s});
    row("extract", {u"extract"_s, name, u"--tracks"_s, u"0,1"_s});
    row("extract what is there", {u"extract"_s, name, u"--tracks"_s, u"0,1"_s, u"--dry-run"_s});
    row("join", {u"join"_s, name, second});
    row("join with nothing", {u"join"_s, name, u"none "_s + name});
    row("split", {u"split"_s, name, u"--size"_s, u"1"_s});
    row("remux", {u"remux"_s, second, u"no "_s + name});
    row("remove", {u"remove"_s, second, u"--tracks"_s, u"2"_s, u"--force"_s});
    row("remove from no MKV", {u"remove"_s, u"bad "_s + evilName, u"--tracks"_s, u"1"_s});
    row("send", {u"send"_s, name, u"--force"_s});
    row("send, dry", {u"send"_s, name, u"--dry-run"_s, u"--force"_s});
    row("play nothing", {u"play"_s, u"none "_s + name});
    row("presets list", {u"presets"_s, u"list"_s});
    row("presets show", {u"presets"_s, u"show"_s, u"Rule "_s + evilName});
    row("presets show nothing", {u"presets"_s, u"show"_s, evilName});
    row("presets export", {u"presets"_s, u"export"_s});
    row("presets export to a file", {u"presets"_s, u"export"_s, u"new "_s + evilName});
    row("presets export over it", {u"presets"_s, u"export"_s, u"bad "_s + evilName});
    row("presets import", {u"presets"_s, u"import"_s, u"bad "_s + evilName});
    row("presets import of nothing", {u"presets"_s, u"import"_s, u"none "_s + evilName});
    row("prefs set", {u"prefs"_s, u"set"_s, u"watchFolder"_s, u"dir "_s + evilName});
    row("prefs set what is not there", {u"prefs"_s, u"set"_s, u"saveDirectoryPath"_s, evilName});
    row("prefs get", {u"prefs"_s, u"get"_s, u"watchFolder"_s});
    row("prefs get nothing", {u"prefs"_s, u"get"_s, evilName});
    row("prefs list", {u"prefs"_s, u"list"_s});
    row("tools", {u"tools"_s});
    row("watch nothing", {u"watch"_s, u"none "_s + evilName, u"--track-preset"_s, u"First Track"_s,
                          u"--settings-preset"_s, u"Set "_s + evilName});
    row("watch by no preset",
        {u"watch"_s, u"."_s, u"--track-preset"_s, evilName, u"--settings-preset"_s, evilName});
    row("another save folder", {u"remux"_s, name, u"--save-dir"_s, evilName});
    row("no command", {evilName});
    row("no option", {u"--"_s + evilName});
    row("no short option", {u"-"_s + evilName});
    row("no device", {u"convert"_s, name, u"--device"_s, evilName});
    row("no audio", {u"convert"_s, name, u"--audio"_s, evilName});
    row("no tracks", {u"convert"_s, name, u"--tracks"_s, evilName});
    row("no time", {u"split"_s, name, u"--time"_s, evilName});
    row("settings that are none", {u"--defaults"_s, u"bad "_s + evilName, u"prefs"_s, u"list"_s});
    row("settings that can't be", {u"--defaults"_s, u"dir "_s + evilName, u"prefs"_s, u"list"_s});
    row("help", {u"help"_s, evilName});
    row("help of an error", {});
}

void CliTerminalTest::everyCommandIsHarmless()
{
    QFETCH(QStringList, words);
    for (const QStringList &more : support::drawn(QList<QStringList>{{}, {u"--json"_s}}, 1)) {
        const auto run = m_cli->run(more + words);
        QVERIFY(run.status >= 0 && run.status <= 64);
        QVERIFY(!run.output.isEmpty() || !run.error.isEmpty() || words.contains(u"send"_s));
        QVERIFY2(obeyedIn(run.output).isNull(), qPrintable(obeyedIn(run.output)));
        QVERIFY2(obeyedIn(run.error).isNull(), qPrintable(obeyedIn(run.error)));
        if (!more.isEmpty() && !words.contains(u"help"_s))
            QVERIFY(run.output.isEmpty() || !run.objects().isEmpty()); // each line is an object still
    }
    const auto shown = onTerminal(words);
    QVERIFY2(obeyedIn(shown.output).isNull(), qPrintable(obeyedIn(shown.output)));
}

void CliTerminalTest::theTableOfAProbeShowsTheName()
{
    const auto run = m_cli->run({u"probe"_s, evilName + u".mkv"_s});
    QVERIFY2(run.status == 0, run.error.constData());
    QCOMPARE(run.lines().constFirst(), m_cli->media(evilNameShown + u".mkv"_s));
    QVERIFY2(run.output.contains(evilShown.section(uR"(\x7f)"_s, 0, 0).toUtf8()), run.output.constData());
}

void CliTerminalTest::aFinishedFileIsNamedVisibly()
{
    const QString name = u"finished "_s + evilName + u".mkv"_s;
    QVERIFY(QFile::copy(film(), film(name)));
    const auto run = m_cli->run({u"remux"_s, name, u"--quiet"_s});
    QVERIFY2(run.status == 0, run.error.constData());
    QCOMPARE(run.lines().size(), 1);
    QVERIFY2(run.lines().constFirst().startsWith(m_cli->media(u"finished "_s + evilNameShown)),
             run.output.constData());
}

void CliTerminalTest::jsonHoldsTheNameToTheLetter()
{
    const auto run = m_cli->run({u"probe"_s, u"--json"_s, evilName + u".mkv"_s});
    QVERIFY2(run.status == 0, run.error.constData());
    QCOMPARE(run.objects().constFirst().value(u"file"_s).toObject().value(u"theFilePath"_s).toString(),
             film());
    QVERIFY(run.output.contains("\\u007f\\u0085\\u009b2J\\u061c") && run.output.contains("\\u2028\\u2029v"));
}

void CliTerminalTest::aDryRunCanBePasted_data()
{
    QTest::addColumn<QString>("shell");
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("tool");
    for (const QString &shell : {u"dash"_s, u"bash"_s}) {
        QTest::addRow("%s, a word in pieces", qPrintable(shell))
            << shell << QStringList{u"convert"_s, evilName + u".mkv"_s, u"--kind"_s, u"mkv"_s}
            << u"ffmpeg/ffmpeg"_s;
        QTest::addRow("%s, a word that ends in a line feed", qPrintable(shell))
            << shell << QStringList{u"remux"_s, evilName + u'\n'} << u"mkvtoolnix/mkvmerge"_s;
    }
}

/// With a tool that notes its words: what is pasted starts it with those of the JSON form.
void CliTerminalTest::aDryRunCanBePasted()
{
    QFETCH(QString, shell);
    QFETCH(QStringList, words);
    QFETCH(QString, tool);
    CliFixture cli;
    cli.useOwnTools();
    QVERIFY(QFile::copy(film(), cli.media(words.at(1))));
    words.append(u"--dry-run"_s);
    const auto plain = cli.run(words);
    const auto json = cli.run(words + QStringList{u"--json"_s});
    QCOMPARE(plain.lines().size(), 1);
    const QJsonObject step = json.objects().constFirst();
    const QString list = step.contains(u"launched"_s) ? u"launched"_s : u"arguments"_s;
    QByteArrayList expected{step.value(u"program"_s).toString().toUtf8()};
    for (const QJsonValue &word : step.value(list).toArray())
        expected.append(word.toString().toUtf8());
    QVERIFY(expected.contains(cli.media(words.at(1)).toUtf8()));
    cli.setTool(tool, u"printf '%s\\0' \"$0\" \"$@\""_s);
    QProcess process;
    process.setWorkingDirectory(cli.media());
    process.start(shell, QStringList());
    process.write(plain.output);
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.readAllStandardOutput(), expected.join('\0') + '\0');
}

void CliTerminalTest::settingsAndPresetsAreVisible()
{
    QCOMPARE(m_cli->run({u"prefs"_s, u"set"_s, u"watchFolder"_s, u"dir "_s + evilName}).lines(),
             QStringList(u"watchFolder = "_s + m_cli->media(u"dir "_s + evilNameShown)));
    QVERIFY(m_cli->run({u"presets"_s, u"list"_s}).lines().contains(u"tracks: Rule "_s + evilNameShown));
    const auto exported = m_cli->run({u"presets"_s, u"export"_s});
    const QJsonObject presets = QJsonDocument::fromJson(exported.output).object();
    QCOMPARE(presets[u"presetSettingsArray"_s].toArray().at(0)[u"pName"_s].toString(), u"Set "_s + evilName);
}

void CliTerminalTest::aWatchIsHarmless_data()
{
    QTest::addColumn<QStringList>("more");
    QTest::newRow("plain") << QStringList();
    QTest::newRow("JSON") << QStringList{u"--json"_s};
}

void CliTerminalTest::aWatchIsHarmless()
{
    QFETCH(QStringList, more);
    const QString folder = m_cli->media(u"dir "_s + evilName);
    QFile::copy(film(), folder + u"/old "_s + evilName + u".mkv"_s);
    const auto process =
        m_cli->start(more + QStringList{u"watch"_s, folder, u"--track-preset"_s, u"First Track"_s,
                                        u"--settings-preset"_s, u"Set "_s + evilName});
    QByteArray output;
    QVERIFY(support::waitFor(
        [&] {
            output += process->readAllStandardOutput();
            return output.contains("is already there");
        },
        60000));
    ::kill(static_cast<pid_t>(process->processId()), SIGTERM);
    const auto run = CliFixture::outcomeOf(*process);
    output += run.output;
    QCOMPARE(run.status, 143);
    QVERIFY2(obeyedIn(output).isNull(), qPrintable(obeyedIn(output)));
    QVERIFY2(obeyedIn(run.error).isNull(), qPrintable(obeyedIn(run.error)));
    if (more.isEmpty())
        QVERIFY2(output.contains(u"/old %1.mkv is already there"_s.arg(evilNameShown).toUtf8()),
                 output.constData());
    else
        QVERIFY(output.contains("\\u202e"));
}

TESSARAY_TEST(CliTerminalTest)
#include "CliTerminalTest.moc"
