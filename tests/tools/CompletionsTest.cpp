// What bash, zsh and fish offer for the command line, in the shells themselves.
#include "selection/Targets.h"
#include "support/CliFixture.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

const QString folder = QStringLiteral(TESSARAY_SOURCE_DIR "/packaging/completions");

/// Types lines into an interactive shell and shows what Tab makes of them.
const QString zshScript = QStringLiteral(TESSARAY_SOURCE_DIR "/tests/tools/complete.zsh");

/// Shows what the completion function offers for the words, the last of which is being typed.
const QString bashScript = u"source \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); "
                           "_tessaray_cli; printf '%s\\n' \"${COMPREPLY[@]}\""_s;

QStringList optionsIn(const QString &help)
{
    static const QRegularExpression option(u"^  (--[a-z-]+)"_s, QRegularExpression::MultilineOption);
    QStringList options;
    for (auto match = option.globalMatch(help); match.hasNext();)
        options.append(match.next().captured(1));
    return options;
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

} // namespace

class CompletionsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        for (const auto *name : {"film one.mkv", "notes.srt"})
            m_cli.scratch().write(u"media/"_s + QLatin1String(name), "x");
        QDir().mkpath(m_cli.media(u"folder"_s));
        m_environment = m_cli.environment();
        m_environment.insert(u"PATH"_s,
                             QFileInfo(m_cli.program()).path() + u':' + m_environment.value(u"PATH"_s));
        m_general = QString::fromUtf8(m_cli.run({u"--help"_s}).output);
        static const QRegularExpression command(u"^  ([a-z]+) "_s, QRegularExpression::MultilineOption);
        for (auto match = command.globalMatch(m_general); match.hasNext();)
            m_commands.append(match.next().captured(1));
        QVERIFY(m_commands.size() > 10);
    }

    void bashOffersEveryCommand()
    {
        QCOMPARE(sorted(bash({u""_s})), sorted(m_commands + QStringList{u"help"_s}));
        QCOMPARE(sorted(bash({u"help"_s, u""_s})), sorted(m_commands + QStringList{u"help"_s}));
    }

    /// What a command's help lists and the global options, no more and no less.
    void bashOffersTheOptionsOfEveryCommand()
    {
        const QStringList global = optionsIn(m_general);
        QCOMPARE(global.size(), 10);
        for (const QString &command : std::as_const(m_commands)) {
            const QStringList own = optionsIn(QString::fromUtf8(m_cli.run({command, u"--help"_s}).output));
            QCOMPARE(sorted(bash({command, u"--"_s})), sorted(global + own));
        }
        QCOMPARE(sorted(bash({u"--"_s})), sorted(global));
    }

    /// Behind one that takes a value no further option is offered.
    void bashKnowsWhichOptionsTakeAValue()
    {
        static const QRegularExpression option(u"^  (--[a-z-]+)( \\S)?"_s,
                                               QRegularExpression::MultilineOption);
        for (const QString &command : std::as_const(m_commands)) {
            const QString help = m_general + QString::fromUtf8(m_cli.run({command, u"--help"_s}).output);
            for (auto match = option.globalMatch(help); match.hasNext();) {
                const auto found = match.next();
                const QStringList offered = bash({command, found.captured(1), u"--js"_s});
                const QStringList expected{found.captured(2).isEmpty() ? u"--json"_s : u""_s};
                QVERIFY2(offered == expected, qPrintable(command + found.captured(1) + offered.join(u' ')));
            }
        }
    }

    void bashOffersEveryDevice()
    {
        QStringList devices;
        for (const QString &offered : bash({u"convert"_s, u"--device"_s, u"\""_s}))
            devices.append(offered);
        QCOMPARE(sorted(devices), sorted(selection::targetNames()));
    }

    void bash_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<QStringList>("offered");
        const auto row = [](const char *name, const QStringList &words, const QStringList &offered) {
            QTest::newRow(name) << words << offered;
        };
        row("a command", {u"conv"_s}, {u"convert"_s});
        row("a command behind an option with a value", {u"--save-dir"_s, u"sen"_s, u"sen"_s}, {u"send"_s});
        row("a command behind an option without one", {u"--json"_s, u"to"_s}, {u"tools"_s});
        row("an option", {u"convert"_s, u"a.mkv"_s, u"--vid"_s}, {u"--video"_s, u"--video-bitrate"_s});
        row("no option of another command", {u"probe"_s, u"--dev"_s}, {u""_s});
        row("a device", {u"convert"_s, u"--device"_s, u"PS"_s}, {u"PS3"_s});
        row("a device behind =", {u"convert"_s, u"--device"_s, u"="_s, u"PS"_s}, {u"PS3"_s});
        row("every kind behind =", {u"convert"_s, u"--kind"_s, u"="_s}, {u"mp4"_s, u"mkv"_s, u"avi"_s});
        row("a device with blanks", {u"convert"_s, u"--device"_s, u"iPod\\ T"_s},
            {u"iPod\\ Touch\\ \\(3\\ and\\ Earlier\\)"_s, u"iPod\\ Touch\\ \\(4\\ and\\ Later\\)"_s});
        row("a device in quotes", {u"convert"_s, u"--device"_s, u"'Apple TV 2"_s}, {u"Apple TV 2"_s});
        row("a way", {u"convert"_s, u"--video"_s, u"2"_s}, {u"2pass"_s});
        row("a way for subtitles", {u"convert"_s, u"--subtitles"_s, u""_s}, {u"mux"_s, u"burn"_s});
        row("nothing for a number", {u"convert"_s, u"--width"_s, u""_s}, {u""_s});
        row("a track preset", {u"convert"_s, u"--track-preset"_s, u"A"_s}, {u"All\\ Tracks"_s});
        row("a settings preset", {u"convert"_s, u"--settings-preset"_s, u"E"_s}, {u"Extract\\ Tracks"_s});
        row("presets", {u"presets"_s, u"s"_s}, {u"show"_s, u"set"_s});
        row("a kind of preset", {u"presets"_s, u"add"_s, u"t"_s}, {u"tracks"_s});
        row("a preset to change", {u"presets"_s, u"set"_s, u"F"_s}, {u"First\\ Track"_s});
        row("a device to be ready for", {u"presets"_s, u"add"_s, u"settings"_s, u"x"_s, u"--for"_s, u"PS"_s},
            {u"PS3"_s});
        row("a preset to show", {u"presets"_s, u"show"_s, u"F"_s}, {u"First\\ Track"_s});
        row("a file to import", {u"presets"_s, u"import"_s, u"no"_s}, {u"notes.srt"_s});
        row("prefs", {u"prefs"_s, u""_s}, {u"list"_s, u"get"_s, u"set"_s});
        row("a key", {u"prefs"_s, u"get"_s, u"keep"_s}, {u"keepLogsFlag"_s});
        row("a file", {u"probe"_s, u"fi"_s}, {u"film one.mkv"_s});
        row("a file behind --", {u"probe"_s, u"--"_s, u"no"_s}, {u"notes.srt"_s});
        row("no option behind --", {u"probe"_s, u"--"_s, u"--js"_s}, {u""_s});
        row("a file to add", {u"convert"_s, u"--add"_s, u"no"_s}, {u"notes.srt"_s});
        row("a folder", {u"convert"_s, u"--save-dir"_s, u""_s}, {u"folder"_s});
        row("nothing for tools", {u"tools"_s, u""_s}, {u""_s});
    }

    void bash()
    {
        QFETCH(QStringList, words);
        QFETCH(QStringList, offered);
        QCOMPARE(bash(words), offered);
    }

    void zsh()
    {
        const QList<std::pair<QString, QString>> cases{
            {u"tessaray-cli conv"_s, u"tessaray-cli convert "_s},
            {u"tessaray-cli --js"_s, u"tessaray-cli --json "_s},
            {u"tessaray-cli --json convert --devi"_s, u"tessaray-cli --json convert --device="_s},
            {u"tessaray-cli convert --device=PS"_s, u"tessaray-cli convert --device=PS3 "_s},
            {u"tessaray-cli convert --device Apple\\ TV\\ 2"_s,
             u"tessaray-cli convert --device Apple\\ TV\\ 2 "_s},
            {u"tessaray-cli convert --kind m"_s, u"tessaray-cli convert --kind m"_s},
            {u"tessaray-cli convert --kind mk"_s, u"tessaray-cli convert --kind mkv "_s},
            {u"tessaray-cli convert --track-preset A"_s,
             u"tessaray-cli convert --track-preset All\\ Tracks "_s},
            {u"tessaray-cli convert --settings-preset E"_s,
             u"tessaray-cli convert --settings-preset Extract\\ Tracks "_s},
            {u"tessaray-cli probe --devi"_s, u"tessaray-cli probe --devi"_s},
            {u"tessaray-cli probe fi"_s, u"tessaray-cli probe film\\ one.mkv "_s},
            {u"tessaray-cli play --tr"_s, u"tessaray-cli play --tracks="_s},
            {u"tessaray-cli split --ti"_s, u"tessaray-cli split --time="_s},
            {u"tessaray-cli remove --tr"_s, u"tessaray-cli remove --tracks="_s},
            {u"tessaray-cli presets sh"_s, u"tessaray-cli presets show "_s},
            {u"tessaray-cli presets show Fir"_s, u"tessaray-cli presets show First\\ Track "_s},
            {u"tessaray-cli presets add tr"_s, u"tessaray-cli presets add tracks "_s},
            {u"tessaray-cli presets add settings x --for PS"_s,
             u"tessaray-cli presets add settings x --for PS3 "_s},
            {u"tessaray-cli prefs set moov"_s, u"tessaray-cli prefs set moovInFrontFlag "_s},
            {u"tessaray-cli help con"_s, u"tessaray-cli help convert "_s},
        };
        QStringList typed;
        QStringList expected;
        for (const auto &[line, completed] : cases) {
            typed.append(line);
            expected.append(completed);
        }
        QCOMPARE(lines(u"zsh"_s, QStringList{u"-f"_s, zshScript, folder} + typed), expected);
    }

    /// Each by a prefix that only it has, or whole.
    void zshKnowsEveryCommandAndOption()
    {
        QStringList typed;
        for (const QString &command : std::as_const(m_commands)) {
            typed.append(u"tessaray-cli "_s + command);
            for (const QString &option :
                 optionsIn(QString::fromUtf8(m_cli.run({command, u"--help"_s}).output)))
                typed.append(u"tessaray-cli %1 %2"_s.arg(command, option));
        }
        for (const QString &option : optionsIn(m_general))
            typed.append(u"tessaray-cli "_s + option);
        const QStringList completed = lines(u"zsh"_s, QStringList{u"-f"_s, zshScript, folder} + typed);
        QCOMPARE(completed.size(), typed.size());
        for (qsizetype i = 0; i < typed.size(); ++i) {
            const QString known = typed.at(i);
            // "--video" could still become "--video-bitrate", so it stays as it is.
            const bool isOpen = known.endsWith(u"--video"_s);
            QVERIFY2(isOpen || completed.at(i) == known + u' ' || completed.at(i) == known + u'=',
                     qPrintable(completed.at(i)));
        }
    }

    void fishKnowsEveryCommandAndOption()
    {
        QStringList typed{u"tessaray-cli "_s};
        QList<QStringList> expected{m_commands};
        for (const QString &command : std::as_const(m_commands)) {
            typed.append(u"tessaray-cli %1 --"_s.arg(command));
            expected.append(optionsIn(m_general) +
                            optionsIn(QString::fromUtf8(m_cli.run({command, u"--help"_s}).output)));
        }
        QCOMPARE(sorted(fish(typed.takeFirst())), sorted(expected.takeFirst() + QStringList{u"help"_s}));
        for (qsizetype i = 0; i < typed.size(); ++i)
            QCOMPARE(sorted(fish(typed.at(i))), sorted(expected.at(i)));
    }

    void fish_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("offered");
        const auto row = [](const QString &line, const QStringList &offered) {
            QTest::newRow(qPrintable(line)) << line << offered;
        };
        row(u"tessaray-cli convert --device PS"_s, {u"PS3"_s});
        row(u"tessaray-cli convert --track-preset All"_s, {u"All Tracks"_s});
        row(u"tessaray-cli watch --settings-preset Ex"_s, {u"Extract Tracks"_s});
        row(u"tessaray-cli presets s"_s, {u"set"_s, u"show"_s});
        row(u"tessaray-cli presets show Fi"_s, {u"First Track"_s});
        row(u"tessaray-cli presets add settings x --for PS"_s, {u"PS3"_s});
        row(u"tessaray-cli prefs get keep"_s, {u"keepLogsFlag"_s});
        row(u"tessaray-cli remux --print outputs"_s, {u"outputs"_s, u"outputs0"_s});
    }

    void fish()
    {
        QFETCH(const QString, line);
        QFETCH(const QStringList, offered);
        QCOMPARE(sorted(fish(line)), offered);
    }

private:
    /// What it offers for a line, without the descriptions.
    QStringList fish(const QString &line) const
    {
        QStringList offered =
            lines(u"fish"_s, {u"--no-config"_s, u"-c"_s, u"source $argv[1]; complete -C $argv[2]"_s,
                              folder + u"/tessaray-cli.fish"_s, line});
        for (QString &word : offered)
            word = word.section(u'\t', 0, 0);
        return offered;
    }
    QStringList bash(const QStringList &words) const
    {
        return lines(u"bash"_s, QStringList{u"--norc"_s, u"-c"_s, bashScript, u"bash"_s,
                                            folder + u"/tessaray-cli.bash"_s, u"tessaray-cli"_s} +
                                    words);
    }
    QStringList lines(const QString &shell, const QStringList &arguments) const
    {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.setWorkingDirectory(m_cli.media());
        process.start(shell, arguments);
        if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
            return {u"%1 did not end"_s.arg(shell)};
        const QByteArray error = process.readAllStandardError();
        if (!error.isEmpty())
            return {QString::fromUtf8(error)};
        return QString::fromUtf8(process.readAllStandardOutput().replace('\r', "")).chopped(1).split(u'\n');
    }

    CliFixture m_cli;
    QProcessEnvironment m_environment;
    QString m_general;
    QStringList m_commands;
};

TESSARAY_TEST(CompletionsTest)
#include "CompletionsTest.moc"
