#include "presets/PresetExchange.h"

#include "presets/KXPresetsController.h"
#include "support/TestMain.h"
#include "support/presets/ExchangeFixture.h"

#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::ExchangeFixture;
using support::presetFile;
using support::secondSound;
using support::selectionsRecord;
using support::settingsRecord;
using support::with;
using support::without;

namespace {

/// A file of one record of a kind.
QByteArray selectionsFile(const QVariant &record)
{
    return presetFile({record}, {});
}

QByteArray settingsFile(const QVariant &record)
{
    return presetFile({}, {record});
}

/// A record whose audio, or whose subtitles, have that one for a filter.
QByteArray filterFile(const QString &array, const QVariant &filter)
{
    return selectionsFile(with(selectionsRecord(u"New"_s), array, QVariantList{filter}));
}

} // namespace

/// Files that are no presets' files, or hold something that no preset has.
class PresetExchangeRefusalsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatDoesNotFitIsRefusedWhole_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("sentence");
        const QString damaged = u"It is damaged, or no preset file at all: *"_s;
        const QString foreign = u"It is no preset file."_s;
        QTest::newRow("nothing") << QByteArray() << damaged;
        QTest::newRow("half") << presetFile({}, {}).chopped(3) << damaged;
        QTest::newRow("no JSON") << QByteArray("name = Mine\n") << damaged;
        QTest::newRow("bytes") << QByteArray("\x00\xff\xfe\x80", 4) << damaged;
        QTest::newRow("two objects") << presetFile({}, {}) + presetFile({}, {}) << damaged;
        QTest::newRow("list") << QByteArray("[]") << foreign;
        QTest::newRow("records alone")
            << QJsonDocument::fromVariant(QVariantList{selectionsRecord(u"New"_s)}).toJson() << foreign;
        QTest::newRow("empty object") << QByteArray("{}") << foreign;
        const auto longText = [](qsizetype letters) { return QString(letters, u'x'); };
        QTest::newRow("a text longer than any typed one")
            << settingsFile(with(settingsRecord(u"New"_s), u"pName"_s, longText(10001)))
            << u"Entry 1 of \"presetSettingsArray\", named \"%1…\", does not fit: its \"pName\" is \"*"_s.arg(
                   longText(100));
        QTest::newRow("a key of a million letters")
            << settingsFile(with(settingsRecord(u"New"_s), longText(1000000), 1))
            << u"Entry 1 of \"presetSettingsArray\", named \"New\", does not fit: it holds \"%1…\", which no "
               "preset has."_s.arg(longText(100));
        QTest::newRow("another one of a million letters")
            << QByteArray("{\"version\": 1, \"" + QByteArray(1000000, 'x') + "\": 1}")
            << u"It holds \"%1…\", which no preset file has."_s.arg(longText(100));
        QTest::newRow("no version") << QByteArray(
                                           R"({"presetSelectionsArray": [], "presetSettingsArray": []})")
                                    << foreign;
        QTest::newRow("one key more")
            << QByteArray(
                   R"({"version": 1, "presetSelectionsArray": [], "presetSettingsArray": [], "by": 1})")
            << u"It holds \"by\", which no preset file has."_s;
        versions();
        lists();
        records();
        filters();
        names();
        wholes();
    }

    void whatDoesNotFitIsRefusedWhole()
    {
        QFETCH(const QByteArray, file);
        QFETCH(const QString, sentence);
        ExchangeFixture fixture;
        const QByteArray before = fixture.storedBytes();
        const QJsonObject exported = presets::exported(fixture.presets).file;
        const QSignalSpy changed(&fixture.presets, &KXPresetsController::listsChanged);
        const presets::Import result = presets::importInto(fixture.presets, file);
        if (sentence.endsWith(u'*')) { // what follows are the reader's own words
            QVERIFY2(result.problem.startsWith(sentence.chopped(1)), qPrintable(result.problem));
            QVERIFY(result.problem.size() > sentence.size());
        } else {
            QCOMPARE(result.problem, sentence);
        }
        QCOMPARE(result.selections, 0);
        QCOMPARE(result.settings, 0);
        QCOMPARE(fixture.names(), u"Manual, First Track, All Tracks, Own"_s);
        QCOMPARE(fixture.settingsNames(), u"Manual, Extract Tracks, For PS3"_s);
        QCOMPARE(presets::exported(fixture.presets).file, exported);
        QCOMPARE(fixture.storedBytes(), before);
        QCOMPARE(changed.count(), 0);
    }

    void everyLackingKeyIsNamed()
    {
        for (const QString &word : selectionsRecord({}).keys()) {
            ExchangeFixture fixture;
            const QByteArray file = selectionsFile(without(selectionsRecord(u"New"_s), word));
            QCOMPARE(presets::importInto(fixture.presets, file).problem,
                     badRule(u"it lacks \"%1\""_s.arg(word), word == u"pName"_s ? QString() : u"New"_s));
        }
        for (const QString &word : settingsRecord({}).keys()) {
            ExchangeFixture fixture;
            const QByteArray file = settingsFile(without(settingsRecord(u"New"_s), word));
            QCOMPARE(presets::importInto(fixture.presets, file).problem,
                     badBundle(u"it lacks \"%1\""_s.arg(word), word == u"pName"_s ? QString() : u"New"_s));
        }
    }

    void everyValueOfAnotherKindIsNamed()
    {
        const QVariantMap rule = selectionsRecord(u"New"_s);
        for (const QString &word : rule.keys()) { // an object is right nowhere
            ExchangeFixture fixture;
            const QString problem =
                presets::importInto(fixture.presets, selectionsFile(with(rule, word, QVariantMap()))).problem;
            QVERIFY2(problem.contains(u" does not fit: its \"%1\" is "_s.arg(word)), qPrintable(problem));
        }
        const QVariantMap bundle = settingsRecord(u"New"_s);
        for (const QString &word : bundle.keys()) {
            ExchangeFixture fixture;
            const QString problem =
                presets::importInto(fixture.presets, settingsFile(with(bundle, word, QVariant()))).problem;
            QVERIFY2(problem.contains(u" does not fit: its \"%1\" is nothing, and right is "_s.arg(word)),
                     qPrintable(problem));
        }
    }

private:
    static void versions()
    {
        const QString unknown = u"It has a version that this program does not know."_s;
        for (const char *version : {"0", "2", "1.5", "-1", "\"1\"", "true", "null", "[1]", "{}"}) {
            QTest::addRow("version %s", version)
                << QByteArray("{\"version\": ") + version +
                       QByteArray(", \"presetSelectionsArray\": [], \"presetSettingsArray\": []}")
                << unknown;
        }
    }

    static void lists()
    {
        const QString noSelections = u"It has no list \"presetSelectionsArray\"."_s;
        const QString noSettings = u"It has no list \"presetSettingsArray\"."_s;
        QTest::newRow("version alone") << QByteArray(R"({"version": 1})") << noSelections;
        QTest::newRow("no track presets")
            << QByteArray(R"({"version": 1, "presetSettingsArray": []})") << noSelections;
        QTest::newRow("no settings presets")
            << QByteArray(R"({"version": 1, "presetSelectionsArray": []})") << noSettings;
        QTest::newRow("track presets as an object")
            << QByteArray(R"({"version": 1, "presetSelectionsArray": {}, "presetSettingsArray": []})")
            << noSelections;
        QTest::newRow("settings presets as null")
            << QByteArray(R"({"version": 1, "presetSelectionsArray": [], "presetSettingsArray": null})")
            << noSettings;
    }

    static QString misfit(const QString &list, const QString &why, const QString &name, int entry = 1)
    {
        const QString named = name.isEmpty() ? QString() : u", named \"%1\","_s.arg(name);
        const QString end = why.endsWith(u'*') ? QString() : u"."_s;
        return u"Entry %1 of \"%2\"%3 does not fit: %4%5"_s.arg(QString::number(entry), list, named, why,
                                                                end);
    }
    static QString badRule(const QString &why, const QString &name = u"New"_s)
    {
        return misfit(u"presetSelectionsArray"_s, why, name);
    }
    static QString badBundle(const QString &why, const QString &name = u"New"_s)
    {
        return misfit(u"presetSettingsArray"_s, why, name);
    }
    /// What follows names the value and the right ones.
    static QString wrong(const QString &word) { return u"its \"%1\" *"_s.arg(word); }

    static void records()
    {
        const QVariantMap rule = selectionsRecord(u"New"_s);
        const QVariantMap bundle = settingsRecord(u"New"_s);
        const QString noRecord = u"it is no record"_s;
        QTest::newRow("text for a record") << selectionsFile(u"New"_s) << badRule(noRecord, {});
        QTest::newRow("list for a record") << settingsFile(QVariantList()) << badBundle(noRecord, {});
        QTest::newRow("null for a record") << settingsFile(QVariant()) << badBundle(noRecord, {});
        QTest::newRow("empty record")
            << selectionsFile(QVariantMap()) << badRule(u"it lacks \"pName\""_s, {});
        QTest::newRow("record of the other kind")
            << selectionsFile(bundle) << badRule(u"it lacks \"pSelectedVideoTrack\""_s);
        QTest::newRow("the other way round") << settingsFile(rule) << badBundle(u"it lacks \"pDevice\""_s);
        QTest::newRow("one word more") << selectionsFile(with(rule, u"pColour"_s, u"blue"_s))
                                       << badRule(u"it holds \"pColour\", which no preset has"_s);
        QTest::newRow("a word that is not stored")
            << settingsFile(with(bundle, u"pVideoActionIsBestGuess"_s, false))
            << badBundle(u"it holds \"pVideoActionIsBestGuess\", which no preset has"_s);
        QTest::newRow("number for a text") << selectionsFile(with(rule, u"pSelectedVideoTrack"_s, 0))
                                           << badRule(wrong(u"pSelectedVideoTrack"_s));
        QTest::newRow("number for a flag") << selectionsFile(with(rule, u"pAudioIsByLanguage"_s, 1))
                                           << badRule(wrong(u"pAudioIsByLanguage"_s));
        QTest::newRow("text for a flag") << settingsFile(with(bundle, u"pAudioAddStereo"_s, u"true"_s))
                                         << badBundle(wrong(u"pAudioAddStereo"_s));
        QTest::newRow("text for a number")
            << settingsFile(with(bundle, u"pWidthIndex"_s, u"1"_s)) << badBundle(wrong(u"pWidthIndex"_s));
        QTest::newRow("fraction for an index") << settingsFile(with(bundle, u"pVideoActionIndex"_s, 1.5))
                                               << badBundle(wrong(u"pVideoActionIndex"_s));
        QTest::newRow("huge index") << settingsFile(with(bundle, u"pFPSIndex"_s, 1e12))
                                    << badBundle(wrong(u"pFPSIndex"_s));
        QTest::newRow("huge negative index")
            << settingsFile(with(bundle, u"pFPSIndex"_s, -1e12)) << badBundle(wrong(u"pFPSIndex"_s));
        QTest::newRow("flag for an index")
            << settingsFile(with(bundle, u"pFPSIndex"_s, true)) << badBundle(wrong(u"pFPSIndex"_s));
        QTest::newRow("number for a bit rate")
            << settingsFile(with(bundle, u"pVideoBitRate"_s, 1000)) << badBundle(wrong(u"pVideoBitRate"_s));
        values();
        const QString notUsers = u"it is no user's preset"_s;
        QTest::newRow("rule that is not editable")
            << selectionsFile(with(rule, u"isEditable"_s, false)) << badRule(notUsers);
        QTest::newRow("settings that are not editable")
            << settingsFile(with(bundle, u"isEditable"_s, false)) << badBundle(notUsers);
    }

    static void values()
    {
        const auto bundle = [](const QString &word, const QVariant &value, const QString &told) {
            QTest::newRow(qPrintable(word + u" of a value that none has"_s))
                << settingsFile(with(settingsRecord(u"New"_s), word, value))
                << badBundle(u"its \"%1\" is %2"_s.arg(word, told));
        };
        bundle(u"pVideoActionIndex"_s, 5, u"5, and right is a whole number from 0 to 4"_s);
        bundle(u"pWidthIndex"_s, -1, u"-1, and right is a whole number from 0 to 1"_s);
        bundle(u"pStereoActionIndex"_s, 2, u"2, and right is a whole number from 0 to 1"_s);
        bundle(u"pSurroundActionIndex"_s, 4, u"4, and right is a whole number from 0 to 3"_s);
        bundle(u"pDevice"_s, u"Toaster"_s, u"\"Toaster\", and right is \"General\", *"_s);
        bundle(u"pVideoBitRate"_s, u"1k"_s,
               u"\"1k\", and right is a whole number of up to nine digits, or nothing"_s);
        bundle(u"pFPS"_s, u"fast"_s, u"\"fast\", and right is a number such as 23.976, or nothing"_s);
        bundle(u"pStereoBitRate"_s, u"1"_s, u"\"1\", and right is \"128\", *"_s);
        bundle(u"pSurroundBitRate"_s, u""_s, u"\"\", and right is \"320\", *"_s);
        bundle(u"pSubAction"_s, u"burn"_s, u"\"burn\", and right is \"Burn (hard)\" or \"Mux (soft)\""_s);
        const auto rule = [](const QString &word, const QVariant &value, const QString &told) {
            QTest::newRow(qPrintable(word + u" of a value that none has"_s))
                << selectionsFile(with(selectionsRecord(u"New"_s), word, value))
                << badRule(u"its \"%1\" is %2"_s.arg(word, told));
        };
        rule(u"pSelectedVideoTrack"_s, u"Last"_s, u"\"Last\", and right is \"First Track\" or \"0\""_s);
        rule(u"pAudioFilterMode"_s, u""_s, u"\"\", and right is \"Apply All\" or \"Prioritized\""_s);
        const QVariantMap sound = support::filterOf(secondSound);
        const auto filter = [&](const QString &word, const QString &value, const QString &right) {
            QTest::newRow(qPrintable(word + u" of a value that none has"_s))
                << selectionsFile(with(selectionsRecord(u"New"_s), u"pAudioFilterArray"_s,
                                       QVariantList{sound, with(sound, word, value)}))
                << badRule(
                       u"its \"pAudioFilterArray\" has a filter, number 2: its \"%1\" is \"%2\", and right "
                       "is %3"_s.arg(word, value, right));
        };
        filter(u"currentTrackChoice"_s, u"Some"_s, u"\"All\", *"_s);
        filter(u"currentTrackNumber"_s, u"0"_s, u"\"1\", *"_s);
        filter(u"currentLanguage"_s, u"eng"_s, u"\"Any Language\", *"_s);
        filter(u"currentCodec"_s, u"a b"_s, u"\"Any Codec\", *"_s);
        filter(u"currentChannels"_s, u"Mono"_s, u"\"Any Type\", \"Stereo Only\" or \"Surround Only\""_s);
    }

    static void filters()
    {
        const QString audio = u"pAudioFilterArray"_s;
        const QString subtitle = u"pSubtitleFilterArray"_s;
        const QVariantMap sound = support::filterOf(secondSound);
        const QVariantMap text = support::filterOf(u"None|1|Any Language|Any Codec"_s);
        QTest::newRow("filters as one")
            << selectionsFile(with(selectionsRecord(u"New"_s), audio, sound)) << badRule(wrong(audio));
        QTest::newRow("text for filters")
            << selectionsFile(with(selectionsRecord(u"New"_s), subtitle, u"All"_s))
            << badRule(wrong(subtitle));
        QTest::newRow("text for a filter") << filterFile(audio, u"All"_s) << badRule(wrong(audio));
        QTest::newRow("list for a filter")
            << filterFile(subtitle, QVariantList()) << badRule(wrong(subtitle));
        QTest::newRow("empty filter") << filterFile(audio, QVariantMap()) << badRule(wrong(audio));
        QTest::newRow("audio filter without channels")
            << filterFile(audio, without(sound, u"currentChannels"_s)) << badRule(wrong(audio));
        QTest::newRow("audio filter without a choice")
            << filterFile(audio, without(sound, u"currentTrackChoice"_s)) << badRule(wrong(audio));
        QTest::newRow("subtitle filter without a number")
            << filterFile(subtitle, without(text, u"currentTrackNumber"_s)) << badRule(wrong(subtitle));
        QTest::newRow("subtitle filter without a language")
            << filterFile(subtitle, without(text, u"currentLanguage"_s)) << badRule(wrong(subtitle));
        QTest::newRow("subtitle filter without a codec")
            << filterFile(subtitle, without(text, u"currentCodec"_s)) << badRule(wrong(subtitle));
        QTest::newRow("number that is no text")
            << filterFile(audio, with(sound, u"currentTrackNumber"_s, 2)) << badRule(wrong(audio));
        QTest::newRow("second filter that is none")
            << selectionsFile(with(selectionsRecord(u"New"_s), audio, QVariantList{sound, 7}))
            << badRule(wrong(audio));
    }

    static void names()
    {
        for (const char *name :
             {"", "  ", "Manual", "Extract Tracks", "Remove Tracks", "First Track", "All Tracks"}) {
            const QString text = QString::fromLatin1(name);
            const QString why = u"the name \"%1\" can't be a user's preset's"_s.arg(text);
            QTest::addRow("rule named \"%s\"", name)
                << selectionsFile(selectionsRecord(text)) << badRule(why, text);
            QTest::addRow("settings named \"%s\"", name)
                << settingsFile(settingsRecord(text)) << badBundle(why, text);
        }
    }

    static void wholes()
    {
        const QVariantMap rule = selectionsRecord(u"New"_s);
        const QVariantMap bundle = settingsRecord(u"New"_s);
        QTest::newRow("the second of two")
            << presetFile({rule, without(rule, u"pName"_s)}, {bundle})
            << misfit(u"presetSelectionsArray"_s, u"it lacks \"pName\""_s, {}, 2);
        QTest::newRow("good rules, bad settings")
            << presetFile({rule, rule}, {bundle, bundle, without(bundle, u"pDevice"_s)})
            << misfit(u"presetSettingsArray"_s, u"it lacks \"pDevice\""_s, u"New"_s, 3);
        QTest::newRow("the first of two that don't fit is told")
            << presetFile({without(rule, u"pName"_s), 7}, {7}) << badRule(u"it lacks \"pName\""_s, {});
    }
};

TESSARAY_TEST(PresetExchangeRefusalsTest)
#include "PresetExchangeRefusalsTest.moc"
