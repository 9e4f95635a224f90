// Settings and tools as the program shows and changes them.
#include "support/CliFixture.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

QJsonObject stored(const CliFixture &cli)
{
    return QJsonDocument::fromJson(cli.scratch().read(u"defaults.json"_s)).object();
}

QJsonObject panelOf(const CliFixture &cli)
{
    return stored(cli).value(u"preferencePanelDictionary"_s).toObject();
}

QJsonObject listed(const CliFixture &cli)
{
    QJsonObject values;
    for (const QJsonObject &object : cli.run({u"prefs"_s, u"list"_s, u"--json"_s}).objects())
        values.insert(object.value(u"key"_s).toString(), object.value(u"value"_s));
    return values;
}

} // namespace

class CliPrefsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aListOfEveryKeyWithItsDefault()
    {
        const CliFixture cli;
        const auto run = cli.run({u"prefs"_s, u"list"_s, u"--json"_s});
        QCOMPARE(run.status, 0);
        QVERIFY2(run.error.isEmpty(), run.error.constData());
        const QList<std::pair<QString, QJsonValue>> expected{{u"saveDirectoryPath"_s, u""_s},
                                                             {u"lintwickPath"_s, u""_s},
                                                             {u"showToolTipsFlag"_s, true},
                                                             {u"keepLogsFlag"_s, true},
                                                             {u"moovInFrontFlag"_s, true},
                                                             {u"metadataPaddingFlag"_s, false},
                                                             {u"useDpliiFlag"_s, true},
                                                             {u"verifyFlag"_s, false},
                                                             {u"newerCodecsFlag"_s, false},
                                                             {u"watchExistingFlag"_s, false},
                                                             {u"lowPriorityFlag"_s, false},
                                                             {u"pauseOnBatteryFlag"_s, false},
                                                             {u"whenQueueIsDone"_s, u"nothing"_s},
                                                             {u"watchFolder"_s, u""_s}};
        const auto objects = run.objects();
        QCOMPARE(objects.size(), expected.size());
        for (qsizetype i = 0; i < expected.size(); ++i)
            QCOMPARE(objects.at(i),
                     QJsonObject({{u"key"_s, expected.at(i).first}, {u"value"_s, expected.at(i).second}}));
        QVERIFY(!QFile::exists(cli.scratch().path(u"defaults.json"_s)));
    }

    void aListForPeople()
    {
        const auto run = CliFixture().run({u"prefs"_s, u"list"_s});
        QCOMPARE(run.lines().size(), 14);
        QVERIFY(run.lines().contains(u"keepLogsFlag = true"_s));
        QVERIFY(run.lines().contains(u"saveDirectoryPath = "_s));
    }

    void flagsAreSetAndKept_data()
    {
        QTest::addColumn<QString>("key");
        for (const auto &key :
             {u"showToolTipsFlag"_s, u"keepLogsFlag"_s, u"moovInFrontFlag"_s, u"metadataPaddingFlag"_s,
              u"useDpliiFlag"_s, u"verifyFlag"_s, u"newerCodecsFlag"_s, u"watchExistingFlag"_s,
              u"lowPriorityFlag"_s, u"pauseOnBatteryFlag"_s})
            QTest::newRow(qPrintable(key)) << key;
    }

    void flagsAreSetAndKept()
    {
        QFETCH(QString, key);
        const CliFixture cli;
        for (const bool on : {false, true}) {
            const QString text = on ? u"true"_s : u"false"_s;
            const auto run = cli.run({u"prefs"_s, u"set"_s, key, text, u"--json"_s});
            QCOMPARE(run.status, 0);
            QCOMPARE(run.objects(), QList<QJsonObject>({{{u"key"_s, key}, {u"value"_s, on}}}));
            QCOMPARE(cli.run({u"prefs"_s, u"get"_s, key}).output, text.toUtf8() + '\n');
            QCOMPARE(listed(cli).value(key), QJsonValue(on));
        }
    }

    void whatFollowsTheQueueIsAWord()
    {
        const CliFixture cli;
        for (const QString &word : {u"sleep"_s, u"quit"_s, u"nothing"_s}) {
            QCOMPARE(cli.run({u"prefs"_s, u"set"_s, u"whenQueueIsDone"_s, word}).status, 0);
            QCOMPARE(listed(cli).value(u"whenQueueIsDone"_s), QJsonValue(word));
        }
    }

    void foldersAreStoredAsAbsolutePaths()
    {
        const CliFixture cli;
        QVERIFY(QDir().mkpath(cli.media(u"out put"_s)));
        for (const auto &key : {u"saveDirectoryPath"_s, u"lintwickPath"_s, u"watchFolder"_s}) {
            const auto run = cli.run({u"prefs"_s, u"set"_s, key, u"out put"_s});
            QCOMPARE(run.status, 0);
            QCOMPARE(cli.run({u"prefs"_s, u"get"_s, key}).output, cli.media(u"out put"_s).toUtf8() + '\n');
        }
        // Where both programs look for them.
        QCOMPARE(panelOf(cli).value(u"saveDirectoryPath"_s).toString(), cli.media(u"out put"_s));
        QCOMPARE(panelOf(cli).value(u"lintwickPath"_s).toString(), cli.media(u"out put"_s));
        QCOMPARE(stored(cli).value(u"watchFolder"_s).toString(), cli.media(u"out put"_s));
        QCOMPARE(cli.run({u"prefs"_s, u"set"_s, u"saveDirectoryPath"_s, u""_s}).status, 0);
        QCOMPARE(listed(cli).value(u"saveDirectoryPath"_s), QJsonValue(u""_s));
        QCOMPARE(listed(cli).value(u"watchFolder"_s), QJsonValue(cli.media(u"out put"_s)));
    }

    void valuesThatDontFitAreRefused_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::newRow("flag 1") << u"keepLogsFlag"_s << u"1"_s;
        QTest::newRow("flag yes") << u"keepLogsFlag"_s << u"yes"_s;
        QTest::newRow("flag True") << u"keepLogsFlag"_s << u"True"_s;
        QTest::newRow("flag empty") << u"keepLogsFlag"_s << u""_s;
        QTest::newRow("missing folder") << u"saveDirectoryPath"_s << u"not there"_s;
        QTest::newRow("a file as folder") << u"saveDirectoryPath"_s << u"file"_s;
        QTest::newRow("missing watch folder") << u"watchFolder"_s << u"not there"_s;
        QTest::newRow("missing program") << u"lintwickPath"_s << u"not there"_s;
        QTest::newRow("no word for the end of a queue") << u"whenQueueIsDone"_s << u"explode"_s;
        QTest::newRow("presets are no key") << u"presetSelectionsArray"_s << u"[]"_s;
    }

    void valuesThatDontFitAreRefused()
    {
        QFETCH(QString, key);
        QFETCH(QString, value);
        const CliFixture cli;
        cli.scratch().write(u"media/file"_s, "x");
        const auto run = cli.run({u"prefs"_s, u"set"_s, key, value});
        QCOMPARE(run.status, 64);
        QVERIFY(run.output.isEmpty());
        QVERIFY2(run.said().contains(key), qPrintable(run.said()));
        QVERIFY(!QFile::exists(cli.scratch().path(u"defaults.json"_s)));
    }

    void whatIsNotSetStaysAsItIs()
    {
        const CliFixture cli;
        cli.scratch().write(
            u"defaults.json"_s,
            R"({"presetSelectionsArray": [{"name": "mine"}], "guiSettingsDictionary": {"x": 1},
                                 "somebodyElses": [1, 2],
                                 "preferencePanelDictionary": {"useDpliiFlag": false}})");
        QCOMPARE(cli.run({u"prefs"_s, u"set"_s, u"keepLogsFlag"_s, u"false"_s}).status, 0);
        const QJsonObject all = stored(cli);
        QCOMPARE(
            QJsonDocument(all.value(u"presetSelectionsArray"_s).toArray()).toJson(QJsonDocument::Compact),
            R"([{"name":"mine"}])");
        QCOMPARE(all.value(u"guiSettingsDictionary"_s).toObject().value(u"x"_s).toInt(), 1);
        QCOMPARE(all.value(u"somebodyElses"_s).toArray().size(), 2);
        QCOMPARE(panelOf(cli).value(u"useDpliiFlag"_s), QJsonValue(false));
        QCOMPARE(panelOf(cli).value(u"keepLogsFlag"_s), QJsonValue(false));
    }

    void optionsForOneRunAreNotStored()
    {
        const CliFixture cli;
        QVERIFY(QDir().mkpath(cli.media(u"out"_s)));
        const auto run = cli.run({u"prefs"_s, u"set"_s, u"useDpliiFlag"_s, u"false"_s, u"--no-keep-logs"_s,
                                  u"--save-dir"_s, u"out"_s});
        QCOMPARE(run.status, 0);
        QCOMPARE(listed(cli).value(u"keepLogsFlag"_s), QJsonValue(true));
        QCOMPARE(listed(cli).value(u"saveDirectoryPath"_s), QJsonValue(u""_s));
    }

    void settingsThatCantBeSavedAreAFailure()
    {
        const CliFixture cli;
        const auto run = cli.run({u"prefs"_s, u"set"_s, u"keepLogsFlag"_s, u"false"_s, u"--defaults"_s,
                                  u"/proc/none/defaults.json"_s});
        QCOMPARE(run.status, 2);
        QVERIFY2(run.said().contains(u"/proc/none/defaults.json"_s), qPrintable(run.said()));
        QVERIFY(run.output.isEmpty());
    }

    void everyToolIsShown()
    {
        const auto run = CliFixture().run({u"tools"_s, u"--json"_s});
        QCOMPARE(run.status, 0);
        QStringList names;
        const QStringList alwaysVersioned{u"ffmpeg"_s, u"ffprobe"_s, u"mkvmerge"_s, u"mkvextract"_s,
                                          u"mkvinfo"_s};
        for (const QJsonObject &tool : run.objects()) {
            QCOMPARE(tool.keys(), QStringList({u"location"_s, u"program"_s, u"state"_s, u"switchesOff"_s,
                                               u"tool"_s, u"version"_s, u"works"_s}));
            const bool works = tool.value(u"works"_s).toBool();
            QVERIFY(works || tool.value(u"version"_s).isNull());
            QCOMPARE(tool.value(u"switchesOff"_s).isNull(), works);
            names.append(tool.value(u"tool"_s).toString());
            if (alwaysVersioned.contains(names.last()))
                QVERIFY2(!tool.value(u"version"_s).isNull(), qPrintable(names.last()));
        }
        for (const auto &name : {u"ffmpeg"_s, u"ffprobe"_s, u"mkvmerge"_s, u"mkvextract"_s, u"mkvinfo"_s,
                                 u"mp4box"_s, u"mplayer"_s})
            QVERIFY2(names.contains(name), qPrintable(name));
    }

    void aMissingToolSaysWhatIsOff()
    {
        CliFixture cli;
        cli.useOwnTools();
        cli.setTool(u"ffmpeg/ffmpeg"_s, {});
        QJsonObject ffmpeg;
        const auto run = cli.run({u"tools"_s, u"--json"_s});
        QCOMPARE(run.status, 0);
        for (const QJsonObject &tool : run.objects()) {
            if (tool.value(u"tool"_s) == QJsonValue(u"ffmpeg"_s))
                ffmpeg = tool;
        }
        QCOMPARE(ffmpeg.value(u"works"_s), QJsonValue(false));
        QCOMPARE(ffmpeg.value(u"location"_s).toString(), cli.resources() + u"/ffmpeg/ffmpeg"_s);
        QVERIFY2(ffmpeg.value(u"state"_s).toString().contains(u"missing"_s),
                 qPrintable(ffmpeg.value(u"state"_s).toString()));
        QVERIFY(ffmpeg.value(u"switchesOff"_s).toString().endsWith(u'.'));
        const auto plain = cli.run({u"tools"_s});
        const QStringList lines = plain.lines().filter(u"ffmpeg/ffmpeg "_s);
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines.constFirst().contains(u"missing"_s), qPrintable(lines.constFirst()));
    }
};

TESSARAY_TEST(CliPrefsTest)
#include "CliPrefsTest.moc"
