// What the command "presets" shows of stored presets, and what becomes of unknown names.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/PresetLists.h"
#include "support/PresetRecords.h"
#include "support/TestMain.h"
#include "support/Words.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::listedPresets;
using support::listOfPresets;
using support::namesOf;
using support::settingsPreset;
using support::someRules;
using support::someSettings;
using support::storePresets;
using support::trackPreset;
using support::words;

class CliPresetsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        storePresets(*m_cli, someRules(), someSettings());
    }

    void theListHasBuiltInsFirst()
    {
        const QStringList expected = listOfPresets(namesOf(someRules()), namesOf(someSettings()));
        QCOMPARE(listedPresets(*m_cli), expected);
        const auto text = m_cli->run(words(u"presets list"_s));
        QCOMPARE(text.status, 0);
        QCOMPARE(text.lines(), expected);
        QStringList users;
        for (const QJsonObject &preset : m_cli->run(words(u"presets list --json"_s)).objects()) {
            QCOMPARE(preset.keys(), QStringList({u"isEditable"_s, u"kind"_s, u"name"_s}));
            if (preset.value(u"isEditable"_s).toBool())
                users.append(preset.value(u"name"_s).toString());
        }
        QCOMPARE(users, namesOf(someRules()) + namesOf(someSettings()));
    }

    void withoutPresetsThereAreTheBuiltIns()
    {
        const CliFixture cli;
        QCOMPARE(listedPresets(cli), listOfPresets({}, {}));
        QVERIFY(!QFile::exists(cli.scratch().path(u"defaults.json"_s)));
    }

    void aPresetIsShownAsItIsStored()
    {
        for (const QJsonArray &records : {someRules(), someSettings()}) {
            for (const QJsonValue &record : records) {
                const QString name = record.toObject().value(u"pName"_s).toString();
                const auto run = m_cli->run({u"presets"_s, u"show"_s, name, u"--json"_s});
                QCOMPARE(run.objects().size(), 1);
                QCOMPARE(run.objects().constFirst().value(u"record"_s), record);
            }
        }
    }

    void aPresetIsShownForPeople()
    {
        const auto run = m_cli->run({u"presets"_s, u"show"_s, u"Phone"_s});
        QCOMPARE(run.status, 0);
        QCOMPARE(
            QString::fromUtf8(run.output),
            u"settings: Phone\n  For iPhone 4. The video becomes H.264 in one pass at 400 kb/s, at most "
            "320 pixels wide. Stereo sound becomes AAC stereo at 160 kb/s. Surround sound becomes AAC stereo "
            "at 160 kb/s. Subtitles stay tracks.\n  pName = Phone\n  pDevice = iPhone 4\n  pVideoActionIndex "
            "= 1\n"
            "  pVideoBitRate = 400\n  pVideoBitRateIndex = 1\n  pWidth = 320\n  pWidthIndex = 1\n"
            "  pFPS = \n  pFPSIndex = 0\n  pStereoActionIndex = 1\n  pStereoBitRate = 160\n"
            "  pSurroundActionIndex = 1\n  pSurroundBitRate = 448\n  pAudioAddStereo = false\n"
            "  pKeepStereoTrack = false\n  pKeepSurroundTrack = false\n  pSubAction = Mux (soft)\n"
            "  isEditable = true\n"_s);
        const auto rule = m_cli->run({u"presets"_s, u"show"_s, u"Everything"_s});
        QCOMPARE(rule.lines().size(), 2 + 15);
        QVERIFY2(rule.lines().contains(u"  pAudioFilterArray = [{\"currentChannels\":\"Any Type\","
                                       "\"currentCodec\":\"Any Codec\",\"currentLanguage\":\"Any Language\","
                                       "\"currentTrackChoice\":\"All\",\"currentTrackNumber\":\"1\"}]"_s),
                 rule.output.constData());
    }

    void oneNameMayBeOfBothKinds()
    {
        storePresets(*m_cli, {trackPreset(u"Mine"_s, u"#1"_s)}, {settingsPreset(u"Mine"_s, u"PS3"_s)});
        for (const QString &name : {u"Mine"_s, u"Manual"_s}) {
            const auto unclear = m_cli->run({u"presets"_s, u"show"_s, name});
            QCOMPARE(unclear.status, 64);
            QVERIFY2(unclear.said().contains(u"both kinds"_s), unclear.error.constData());
            for (const QString &kind : {u"tracks"_s, u"settings"_s}) {
                const auto shown = m_cli->run({u"presets"_s, u"show"_s, kind, name, u"--json"_s});
                QCOMPARE(shown.objects().size(), 1);
                QCOMPARE(shown.objects().constFirst().value(u"kind"_s).toString(), kind);
            }
        }
    }

    void unknownPresetsAreWrongUsage_data()
    {
        QTest::addColumn<QStringList>("line");
        QTest::addColumn<QString>("there");
        const QString rules = u"Manual, First Track, All Tracks, English first, Everything, French AC3."_s;
        const QString settings = u"Manual, Extract Tracks, Phone, Archive, Player."_s;
        for (const QString &name :
             {u"Nobody"_s, u"everything"_s, u"Phone"_s, u"Every"_s, u""_s, u" Everything"_s})
            QTest::addRow("tracks \"%s\"", qPrintable(name))
                << QStringList{u"convert"_s, u"film.mkv"_s, u"--track-preset"_s, name} << rules;
        for (const QString &name : {u"Nobody"_s, u"phone"_s, u"Everything"_s, u"Remove Tracks"_s, u""_s})
            QTest::addRow("settings \"%s\"", qPrintable(name))
                << QStringList{u"convert"_s, u"film.mkv"_s, u"--settings-preset"_s, name} << settings;
        QTest::newRow("both wrong") << QStringList{u"convert"_s, u"film.mkv"_s,       u"--settings-preset"_s,
                                                   u"x"_s,       u"--track-preset"_s, u"y"_s}
                                    << QString();
        QTest::newRow("show") << QStringList{u"presets"_s, u"show"_s, u"Nobody"_s} << QString();
    }

    void unknownPresetsAreWrongUsage()
    {
        QFETCH(QStringList, line);
        QFETCH(QString, there);
        const auto run = m_cli->run(line + QStringList{u"--json"_s});
        QCOMPARE(run.status, 64);
        QVERIFY2(run.output.isEmpty(), run.output.constData());
        QVERIFY2(run.saidOneSentence(), run.error.constData());
        QVERIFY2(run.said().contains(u"no preset \"%1\""_s.arg(line.constLast())) ||
                     line.contains(u"y"_s), // there, either may be told first
                 run.error.constData());
        QVERIFY2(run.said().contains(there), run.error.constData());
        QVERIFY(m_cli->mediaNames().isEmpty()); // the film is not there, and was not looked for
    }

    void wrongWordsAreWrongUsage_data()
    {
        QTest::addColumn<QString>("line");
        for (const QString &line :
             {u"presets"_s, u"presets list all"_s, u"presets show"_s, u"presets show a b"_s,
              u"presets export a b"_s, u"presets import"_s, u"presets import a b"_s, u"presets erase Phone"_s,
              u"presets show rules Phone"_s, u"presets add Phone"_s, u"presets set Phone"_s,
              u"presets rename Phone"_s, u"presets remove settings Phone now"_s})
            QTest::newRow(qPrintable(line)) << line;
    }

    void wrongWordsAreWrongUsage()
    {
        QFETCH(QString, line);
        const auto run = m_cli->run(words(line));
        QCOMPARE(run.status, 64);
        QVERIFY2(run.said().startsWith(u"Usage: tessaray-cli presets "_s), run.error.constData());
    }

    void namesOfAnyKindArePrintedSafely_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("shown");
        const auto row = [](const char *kind, const QString &name, const QString &shown) {
            QTest::newRow(kind) << name << shown;
        };
        row("blanks", u"  my  own  "_s, u"  my  own  "_s);
        row("quotes", u"it's \"mine\" `x` $(y)"_s, u"it's \"mine\" `x` $(y)"_s);
        row("line feed", u"Mine\nsettings: Evil"_s, u"Mine\\nsettings: Evil"_s);
        row("other ends of lines", u"a\r\nb\u2028c\u2029d\u0085e"_s, u"a\\r\\nb\\u2028c\\u2029d\\x85e"_s);
        row("emoji", u"🎬 фильм 映画 👩‍👩‍👧"_s,
            u"🎬 фильм 映画 👩‍👩‍👧"_s);
        row("control characters", u"\u001b[31mred\u001b[0m\u0007\u0008\u007f\u009b2J"_s,
            u"\\x1b[31mred\\x1b[0m\\x07\\x08\\x7f\\x9b2J"_s);
        row("tab", u"a\tb"_s, u"a\\tb"_s);
        row("percent", u"%1 %2 100%"_s, u"%1 %2 100%"_s);
        row("like an option", u"--video"_s, u"--video"_s);
        row("NUL", u"a"_s + QChar(u'\0') + u'b', u"a\\x00b"_s);
        row("long", QString(5000, u'x'), QString(5000, u'x'));
    }

    void namesOfAnyKindArePrintedSafely()
    {
        QFETCH(QString, name);
        QFETCH(QString, shown);
        storePresets(*m_cli, {trackPreset(name, u"#1"_s)},
                     {settingsPreset(name, u"MKV"_s, u"sub="_s + QString(name).remove(u' '))});
        const auto list = m_cli->run(words(u"presets list"_s));
        QStringList lines = QString::fromUtf8(list.output).split(u'\n');
        QCOMPARE(lines.takeLast(), QString());
        QCOMPARE(lines, listOfPresets({shown}, {shown}));
        QCOMPARE(listedPresets(*m_cli), listOfPresets({name}, {name}));
        const auto unknown = m_cli->run(words(u"convert film.mkv --settings-preset Nobody"_s));
        QVERIFY2(unknown.saidOneSentence(), unknown.error.constData());
        QVERIFY2(unknown.said().contains(u", "_s + shown + u"."_s), unknown.error.constData());
        if (name.contains(QChar(u'\0')))
            return; // no word of a command line holds one
        const auto rule = m_cli->run({u"presets"_s, u"show"_s, u"--"_s, u"tracks"_s, name});
        const auto details = m_cli->run({u"presets"_s, u"show"_s, u"--"_s, u"settings"_s, name});
        QCOMPARE(details.status, 0);
        QCOMPARE(QString::fromUtf8(rule.output).count(u'\n'), 2 + 15);
        QCOMPARE(QString::fromUtf8(details.output).count(u'\n'), 2 + 18);
        QVERIFY(details.lines().contains(u"settings: "_s + shown));
        QVERIFY(details.lines().contains(u"  pName = "_s + shown));
    }

    void storedRecordsThatLackKeysAreTaken()
    {
        m_cli->clip(support::manyTracksMkv(), u"film.mkv"_s);
        const QJsonObject byLanguage{{u"pName"_s, u"Old"_s},
                                     {u"pSelectedVideoTrack"_s, u"First Track"_s},
                                     {u"pSelectedAudioTrack"_s, u"By Language"_s},
                                     {u"pSelectedAudioLanguage"_s, u"German"_s},
                                     {u"pSelectedSubtitleTrack"_s, u"By Language"_s},
                                     {u"pSelectedSubtitleLanguage"_s, u"French"_s},
                                     {u"isEditable"_s, true}};
        storePresets(*m_cli, {byLanguage}, {QJsonObject{{u"pName"_s, u"Bare"_s}}});
        const auto run =
            m_cli->run(words(u"convert film.mkv --track-preset Old --settings-preset Bare --dry-run"_s));
        QVERIFY2(run.status == 0 && run.error.isEmpty(), run.error.constData());
        // The subtitle's filter takes the audio's language, on purpose.
        const QString line = run.lines().constFirst();
        QCOMPARE(line.count(u" -map "_s), 3);
        for (const auto *part : {" -map 0:0 -vcodec copy ", " -map 0:2 -codec:a:0 copy ",
                                 " -map 0:7 -codec:s:0 mov_text ", "/film.m4v"})
            QVERIFY2(line.contains(QLatin1StringView(part)), qPrintable(line));
        const auto shown = m_cli->run(words(u"presets show Old --json"_s)).objects().constFirst();
        const QJsonObject record = shown.value(u"record"_s).toObject();
        QCOMPARE(record.size(), 15);
        for (const QString &mode : {u"pAudioFilterMode"_s, u"pSubtitleFilterMode"_s})
            QCOMPARE(record.value(mode).toString(), u"Apply All"_s);
        QCOMPARE(record.value(u"pAudioIsByLanguage"_s), QJsonValue(true));
        QCOMPARE(record.value(u"useFirstIfNoAudioLanguageMatch"_s), QJsonValue(false));
        QCOMPARE(record.value(u"pAudioFilterArray"_s).toArray(),
                 trackPreset({}, u"German/*/*"_s).value(u"pAudioFilterArray"_s).toArray());
        QCOMPARE(record.value(u"pSubtitleFilterArray"_s).toArray(),
                 trackPreset({}, {}, u"German/*"_s).value(u"pSubtitleFilterArray"_s).toArray());
    }

private:
    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliPresetsTest)
#include "CliPresetsTest.moc"
