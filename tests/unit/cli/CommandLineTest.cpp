#include "cli/CommandLine.h"
#include "support/TestMain.h"
#include "support/Words.h"

#include <QTest>

using namespace Qt::StringLiterals;
using cli::CommandLine;
using support::words;

class CommandLineTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstFreeWordIsTheCommand()
    {
        const CommandLine line(words(u"convert a.mkv b.mkv"_s));
        QCOMPARE(line.error(), QString());
        QCOMPARE(line.command(), u"convert"_s);
        QCOMPARE(line.arguments(), QStringList({u"a.mkv"_s, u"b.mkv"_s}));
        QVERIFY(line.optionNames().isEmpty());
    }

    void withoutWordsThereIsNoCommand()
    {
        const CommandLine line({});
        QVERIFY(line.error().isNull());
        QVERIFY(line.command().isNull());
        QVERIFY(line.arguments().isEmpty());
    }

    void optionsStandAnywhere_data()
    {
        QTest::addColumn<QString>("line");
        QTest::newRow("in front") << u"--json --device PS3 convert a.mkv"_s;
        QTest::newRow("behind the command") << u"convert --device PS3 --json a.mkv"_s;
        QTest::newRow("at the end") << u"convert a.mkv --json --device PS3"_s;
        QTest::newRow("around") << u"--device PS3 convert a.mkv --json"_s;
        QTest::newRow("joined by =") << u"convert --device=PS3 a.mkv --json"_s;
    }

    void optionsStandAnywhere()
    {
        QFETCH(QString, line);
        const CommandLine parsed(words(line));
        QCOMPARE(parsed.error(), QString());
        QCOMPARE(parsed.command(), u"convert"_s);
        QCOMPARE(parsed.arguments(), QStringList({u"a.mkv"_s}));
        QVERIFY(parsed.has(u"json"_s));
        QCOMPARE(parsed.value(u"device"_s), u"PS3"_s);
    }

    void twoDashesEndTheOptions()
    {
        const CommandLine line(words(u"probe --json -- --json -x.mkv -- --device"_s));
        QCOMPARE(line.error(), QString());
        QCOMPARE(line.arguments(), words(u"--json -x.mkv -- --device"_s));
        QCOMPARE(line.values(u"json"_s).size(), 1);
    }

    void twoDashesMayStandInFrontOfTheCommand()
    {
        const CommandLine line(words(u"-- probe --json"_s));
        QCOMPARE(line.command(), u"probe"_s);
        QCOMPARE(line.arguments(), QStringList({u"--json"_s}));
        QVERIFY(!line.has(u"json"_s));
    }

    void aValueIsTakenAsItStands_data()
    {
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<QString>("value");
        QTest::newRow("blank") << QStringList{u"--device"_s, u"Apple TV 2"_s} << u"Apple TV 2"_s;
        QTest::newRow("joined") << QStringList{u"--device=Apple TV 2"_s} << u"Apple TV 2"_s;
        QTest::newRow("equals signs") << QStringList{u"--device=a=b="_s} << u"a=b="_s;
        QTest::newRow("empty") << QStringList{u"--device"_s, u""_s} << u""_s;
        QTest::newRow("joined empty") << QStringList{u"--device="_s} << u""_s;
        QTest::newRow("like an option") << QStringList{u"--device"_s, u"--json"_s} << u"--json"_s;
        QTest::newRow("two dashes") << QStringList{u"--device"_s, u"--"_s} << u"--"_s;
        QTest::newRow("the last one counts")
            << QStringList{u"--device"_s, u"PS3"_s, u"--device"_s, u"Xbox"_s} << u"Xbox"_s;
    }

    void aValueIsTakenAsItStands()
    {
        QFETCH(QStringList, words);
        const CommandLine line(words);
        QCOMPARE(line.error(), QString());
        QVERIFY(line.has(u"device"_s));
        QTEST(line.value(u"device"_s), "value");
        QVERIFY(!line.value(u"device"_s).isNull());
        QVERIFY(!line.has(u"json"_s));
    }

    void repeatedOptionsKeepTheirOrder()
    {
        const CommandLine line(words(u"convert --audio 1=passthru a.mkv --audio 2=aac:2:160"_s));
        QCOMPARE(line.values(u"audio"_s), words(u"1=passthru 2=aac:2:160"_s));
    }

    void addedFilesKeepTheirOrderWhateverTheirNames()
    {
        const CommandLine line({u"convert"_s, u"--add"_s, u"+2"_s, u"a.mkv"_s, u"--add=-b=c.srt"_s,
                                u"--add"_s, u"--add"_s, u"--audio=+1=aac:2:96,passthru"_s, u"--audio"_s,
                                u"+2=passthru"_s});
        QCOMPARE(line.error(), QString());
        QCOMPARE(line.arguments(), QStringList{u"a.mkv"_s});
        QCOMPARE(line.values(u"add"_s), QStringList({u"+2"_s, u"-b=c.srt"_s, u"--add"_s}));
        QCOMPARE(line.values(u"audio"_s), QStringList({u"+1=aac:2:96,passthru"_s, u"+2=passthru"_s}));
    }

    void aPresetIsNamedAsItIsCalled()
    {
        const QString name = u" it's \"mine\"\n--video=1pass "_s;
        const CommandLine line({u"convert"_s, u"--track-preset"_s, name, u"--settings-preset=First"_s,
                                u"--settings-preset="_s + name});
        QCOMPARE(line.error(), QString());
        QCOMPARE(line.value(u"track-preset"_s), name);
        QCOMPARE(line.value(u"settings-preset"_s), name); // the last one counts
        QVERIFY(!line.has(u"video"_s));
    }

    void anOptionThatWasNotGivenHasNoValue()
    {
        const CommandLine line(words(u"probe a.mkv"_s));
        QVERIFY(!line.has(u"device"_s));
        QVERIFY(line.value(u"device"_s).isNull());
        QVERIFY(line.values(u"device"_s).isEmpty());
    }

    void aSingleDashIsAName()
    {
        const CommandLine line(words(u"probe -"_s));
        QCOMPARE(line.error(), QString());
        QCOMPARE(line.arguments(), QStringList({u"-"_s}));
    }

    void wrongWordsAreNamed_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("named");
        QTest::newRow("unknown option") << u"probe --loud a.mkv"_s << u"--loud"_s;
        QTest::newRow("unknown with a value") << u"probe --loud=1 a.mkv"_s << u"--loud"_s;
        QTest::newRow("the beginning of an option") << u"probe --jso a.mkv"_s << u"--jso"_s;
        QTest::newRow("in capitals") << u"probe --JSON a.mkv"_s << u"--JSON"_s;
        QTest::newRow("short option") << u"probe -j a.mkv"_s << u"-j"_s;
        QTest::newRow("name with a dash") << u"probe -a.mkv"_s << u"-a.mkv"_s;
        QTest::newRow("value for a flag") << u"probe --json=yes"_s << u"--json"_s;
        QTest::newRow("no value") << u"convert a.mkv --device"_s << u"--device"_s;
        QTest::newRow("three dashes") << u"probe ---json"_s << u"---json"_s;
    }

    void wrongWordsAreNamed()
    {
        QFETCH(QString, line);
        QFETCH(QString, named);
        const CommandLine parsed(words(line));
        QVERIFY2(parsed.error().contains(named), qPrintable(parsed.error()));
    }

    void everyOptionIsKnown_data()
    {
        QTest::addColumn<bool>("takesValue");
        QTest::addColumn<bool>("isGlobal");
        for (const auto &name :
             {"json", "quiet", "keep-logs", "no-keep-logs", "nice", "newer-codecs", "help", "version"})
            QTest::newRow(name) << false << true;
        for (const auto &name : {"save-dir", "defaults"})
            QTest::newRow(name) << true << true;
        for (const auto &name : {"tracks", "device",    "kind", "video",        "video-bitrate",   "width",
                                 "audio",  "subtitles", "add",  "track-preset", "settings-preset", "auto",
                                 "for",    "output",    "time", "size",         "duration",        "list",
                                 "print",  "exec"})
            QTest::newRow(name) << true << false;
        for (const auto &name : {"force", "verify", "existing", "status", "commands", "recursive",
                                 "skip-existing", "report", "dry-run"})
            QTest::newRow(name) << false << false;
    }

    void everyOptionIsKnown()
    {
        QFETCH(bool, takesValue);
        QFETCH(bool, isGlobal);
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        const CommandLine line({u"--"_s + name, u"x"_s});
        QCOMPARE(line.error(), QString());
        QVERIFY(line.has(name));
        QCOMPARE(line.command(), takesValue ? QString() : u"x"_s);
        const auto &all = cli::allOptions();
        const auto spec =
            std::find_if(all.begin(), all.end(), [&](const auto &option) { return option.name == name; });
        QVERIFY(spec != all.end());
        QCOMPARE(spec->isGlobal, isGlobal);
        QVERIFY(!spec->help.isEmpty());
    }

    void noOptionIsUntested() { QCOMPARE(cli::allOptions().size(), 8 + 2 + 20 + 9); }
};

TESSARAY_TEST(CommandLineTest)
#include "CommandLineTest.moc"
