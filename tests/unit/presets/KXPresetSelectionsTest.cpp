#include "presets/KXPresetSelections.h"

#include "support/TestMain.h"
#include "support/presets/PresetFixture.h"
#include "support/selection/ControllerFixture.h"

#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;
using support::filterOf;
using support::textOf;

namespace {

struct Fixture
{
    Fixture()
        : preset(window.file, window.controller)
    {
    }

    support::ControllerFixture window;
    KXPresetSelections preset;
};

/// A record in which nothing has the value that a new preset has.
QVariantMap ownRecord()
{
    return {{u"pName"_s, u"Mine"_s},
            {u"pSelectedVideoTrack"_s, u"0"_s},
            {u"pSelectedAudioTrack"_s, u"By Language"_s},
            {u"pAudioIsByLanguage"_s, true},
            {u"pSelectedAudioLanguage"_s, u"German"_s},
            {u"pSelectedSubtitleTrack"_s, u"By Language"_s},
            {u"pSubtitleIsByLanguage"_s, true},
            {u"pSelectedSubtitleLanguage"_s, u"French"_s},
            {u"useFirstIfNoAudioLanguageMatch"_s, false},
            {u"useFirstIfNoSubtitleLanguageMatch"_s, false},
            {u"isEditable"_s, true},
            {u"pAudioFilterMode"_s, u"Prioritized"_s},
            {u"pAudioFilterArray"_s, QVariantList{filterOf(u"All|2|German|ac3|Surround Only"_s),
                                                  filterOf(u"None|3|Latin|aac|Any Type"_s)}},
            {u"pSubtitleFilterMode"_s, u"Apply All"_s},
            {u"pSubtitleFilterArray"_s, QVariantList{filterOf(u"All|4|French|srt"_s)}}};
}

QVariantMap without(QVariantMap record, const QStringList &words)
{
    for (const QString &word : words)
        record.remove(word);
    return record;
}

/// A record of an older version, which knew no filters.
QVariantMap oldRecord(const QString &audio, const QString &subtitle)
{
    QVariantMap record = without(ownRecord(), {u"pAudioFilterMode"_s, u"pAudioFilterArray"_s,
                                               u"pSubtitleFilterMode"_s, u"pSubtitleFilterArray"_s});
    record.insert(u"pSelectedAudioTrack"_s, audio);
    record.insert(u"pSelectedSubtitleTrack"_s, subtitle);
    return record;
}

/// What the four initializers have in common, and what they differ in.
QVariantMap initialized(const QString &name, const QStringList &choices, bool editable, const QString &mode,
                        const QString &audioFilter, const QString &subtitleFilter)
{
    return {{u"pName"_s, name},
            {u"pSelectedVideoTrack"_s, choices.at(0)},
            {u"pSelectedAudioTrack"_s, choices.at(1)},
            {u"pAudioIsByLanguage"_s, false},
            {u"pSelectedAudioLanguage"_s, u"English"_s},
            {u"pSelectedSubtitleTrack"_s, choices.at(2)},
            {u"pSubtitleIsByLanguage"_s, false},
            {u"pSelectedSubtitleLanguage"_s, u"English"_s},
            {u"useFirstIfNoAudioLanguageMatch"_s, true},
            {u"useFirstIfNoSubtitleLanguageMatch"_s, true},
            {u"isEditable"_s, editable},
            {u"pAudioFilterMode"_s, mode},
            {u"pAudioFilterArray"_s, QVariantList{filterOf(audioFilter)}},
            {u"pSubtitleFilterMode"_s, mode},
            {u"pSubtitleFilterArray"_s, QVariantList{filterOf(subtitleFilter)}}};
}

using Initializer = void (KXPresetSelections::*)();

} // namespace

Q_DECLARE_METATYPE(Initializer)

/// A rule that chooses tracks, as a record and as a built-in.
class KXPresetSelectionsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newPresetTakesFirstTracks()
    {
        const Fixture fixture;
        const KXPresetSelections &preset = fixture.preset;
        QCOMPARE(preset.pName(), u""_s);
        QCOMPARE(preset.pSelectedVideoTrack(), u"First Track"_s);
        QCOMPARE(preset.pSelectedAudioTrack(), u"First Track"_s);
        QCOMPARE(preset.pSelectedAudioLanguage(), u"English"_s);
        QVERIFY(!preset.pAudioIsByLanguage());
        QCOMPARE(preset.pSelectedSubtitleTrack(), u"First Track"_s);
        QCOMPARE(preset.pSelectedSubtitleLanguage(), u"English"_s);
        QVERIFY(!preset.pSubtitleIsByLanguage());
        QVERIFY(preset.useFirstIfNoAudioLanguageMatch());
        QVERIFY(preset.useFirstIfNoSubtitleLanguageMatch());
        QVERIFY(!preset.isEditable());
        QCOMPARE(preset.pAudioFilterMode(), u""_s);
        QCOMPARE(preset.pSubtitleFilterMode(), u""_s);
        QVERIFY(preset.pAudioFilterArray().isEmpty());
        QVERIFY(preset.pSubtitleFilterArray().isEmpty());
    }

    void builtInsAreLiteral_data()
    {
        QTest::addColumn<Initializer>("initializer");
        QTest::addColumn<QVariantMap>("record");
        // What is empty in the filters of built-ins is meant: their choice alone decides.
        QTest::newRow("manual") << Initializer(&KXPresetSelections::initializeAsByID)
                                << initialized(u"Manual"_s, {u"0"_s, u"0"_s, u"0"_s}, false, u""_s,
                                               u"None|1|||"_s, u"None|1|Any Language|Any Codec|Any Type"_s);
        QTest::newRow("first") << Initializer(&KXPresetSelections::initializeAsFirst)
                               << initialized(u"First Track"_s,
                                              {u"First Track"_s, u"First Track"_s, u"First Track"_s}, false,
                                              u""_s, u"Audio Track Number|1|||"_s,
                                              u"Subtitle Track Number|1|Any Language|Any Codec"_s);
        QTest::newRow("all") << Initializer(&KXPresetSelections::initializeAsAll)
                             << initialized(u"All Tracks"_s,
                                            {u"First Track"_s, u"All Tracks"_s, u"All Tracks"_s}, false,
                                            u""_s, u"All||||"_s, u"All|1|Any Language|Any Codec"_s);
        QTest::newRow("new") << Initializer(&KXPresetSelections::initializeAsNewUserPreset)
                             << initialized(u"User Preset"_s, {u"First Track"_s, u"First Track"_s, u"None"_s},
                                            true, u"Apply All"_s,
                                            u"Audio Track Number|1|Any Language|Any Codec|Any Type"_s,
                                            u"None|1|Any Language|Any Codec"_s);
    }

    void builtInsAreLiteral()
    {
        QFETCH(const Initializer, initializer);
        QFETCH(const QVariantMap, record);
        Fixture fixture;
        (fixture.preset.*initializer)();
        QCOMPARE(textOf(fixture.preset.pAudioFilterArray()),
                 textOf(record.value(u"pAudioFilterArray"_s).toList()));
        QCOMPARE(textOf(fixture.preset.pSubtitleFilterArray()),
                 textOf(record.value(u"pSubtitleFilterArray"_s).toList()));
        QCOMPARE(fixture.preset.makeRecord(), record);
    }

    void recordHasExactlyTheFifteenKeys()
    {
        const QStringList keys{u"pName"_s,
                               u"pSelectedVideoTrack"_s,
                               u"pSelectedAudioTrack"_s,
                               u"pAudioIsByLanguage"_s,
                               u"pSelectedAudioLanguage"_s,
                               u"pSelectedSubtitleTrack"_s,
                               u"pSubtitleIsByLanguage"_s,
                               u"pSelectedSubtitleLanguage"_s,
                               u"useFirstIfNoAudioLanguageMatch"_s,
                               u"useFirstIfNoSubtitleLanguageMatch"_s,
                               u"isEditable"_s,
                               u"pAudioFilterMode"_s,
                               u"pAudioFilterArray"_s,
                               u"pSubtitleFilterMode"_s,
                               u"pSubtitleFilterArray"_s};
        QCOMPARE(KXPresetSelections::recordWords(), keys);
        const Fixture fixture;
        const QVariantMap record = fixture.preset.makeRecord();
        const QStringList found = record.keys();
        QCOMPARE(QSet<QString>(found.begin(), found.end()), QSet<QString>(keys.begin(), keys.end()));
        const QStringList flags{u"pAudioIsByLanguage"_s, u"pSubtitleIsByLanguage"_s,
                                u"useFirstIfNoAudioLanguageMatch"_s, u"useFirstIfNoSubtitleLanguageMatch"_s,
                                u"isEditable"_s};
        for (const QString &key : keys) {
            const int type = key.endsWith(u"FilterArray"_s) ? QMetaType::QVariantList
                             : flags.contains(key)          ? QMetaType::Bool
                                                            : QMetaType::QString;
            QVERIFY2(record.value(key).typeId() == type, qPrintable(key));
        }
    }

    void recordIsTakenAndMadeAgain()
    {
        Fixture fixture;
        fixture.preset.initFromRecord(ownRecord());
        const KXPresetSelections &preset = fixture.preset;
        QCOMPARE(preset.pName(), u"Mine"_s);
        QCOMPARE(preset.pSelectedVideoTrack(), u"0"_s);
        QCOMPARE(preset.pSelectedAudioTrack(), u"By Language"_s);
        QVERIFY(preset.pAudioIsByLanguage());
        QCOMPARE(preset.pSelectedAudioLanguage(), u"German"_s);
        QCOMPARE(preset.pSelectedSubtitleTrack(), u"By Language"_s);
        QVERIFY(preset.pSubtitleIsByLanguage());
        QCOMPARE(preset.pSelectedSubtitleLanguage(), u"French"_s);
        QVERIFY(!preset.useFirstIfNoAudioLanguageMatch());
        QVERIFY(!preset.useFirstIfNoSubtitleLanguageMatch());
        QVERIFY(preset.isEditable());
        QCOMPARE(preset.pAudioFilterMode(), u"Prioritized"_s);
        QCOMPARE(textOf(preset.pAudioFilterArray()),
                 u"All|2|German|ac3|Surround Only; None|3|Latin|aac|Any Type"_s);
        QCOMPARE(preset.pSubtitleFilterMode(), u"Apply All"_s);
        QCOMPARE(textOf(preset.pSubtitleFilterArray()), u"All|4|French|srt"_s);
        QCOMPARE(preset.makeRecord(), ownRecord());
    }

    void recordSurvivesTheStore()
    {
        Fixture fixture;
        fixture.preset.initFromRecord(QJsonObject::fromVariantMap(ownRecord()).toVariantMap());
        QCOMPARE(fixture.preset.makeRecord(), ownRecord());
    }

    void flagsMayBeNumbers()
    {
        QVariantMap record = ownRecord();
        record.insert(u"isEditable"_s, 1);
        record.insert(u"useFirstIfNoAudioLanguageMatch"_s, 1.0);
        record.insert(u"useFirstIfNoSubtitleLanguageMatch"_s, 0);
        Fixture fixture;
        fixture.preset.initFromRecord(record);
        QVERIFY(fixture.preset.isEditable());
        QVERIFY(fixture.preset.useFirstIfNoAudioLanguageMatch());
        QVERIFY(!fixture.preset.useFirstIfNoSubtitleLanguageMatch());
    }

    void presetAndItsRecordAreIndependent()
    {
        const QVariantMap record = ownRecord();
        Fixture fixture;
        fixture.preset.initFromRecord(record);
        const QVariantMap made = fixture.preset.makeRecord();
        fixture.preset.addDictionaryToAudioFilterArray();
        fixture.preset.setPName(u"Other"_s);
        QCOMPARE(record, ownRecord());
        QCOMPARE(made, ownRecord());
    }

    void audioFilterIsDerivedFromTheOldChoice_data()
    {
        QTest::addColumn<QString>("choice");
        QTest::addColumn<QString>("filter");
        const QString first = u"Audio Track Number|1|Any Language|Any Codec|Any Type"_s;
        QTest::newRow("first") << u"First Track"_s << first;
        QTest::newRow("all") << u"All Tracks"_s << u"All|1|Any Language|Any Codec|Any Type"_s;
        QTest::newRow("by language") << u"By Language"_s
                                     << u"Tracks w/ Properties ...|1|German|Any Codec|Any Type"_s;
        // Meant: for audio, "None" is one of all the others.
        QTest::newRow("none") << u"None"_s << first;
        QTest::newRow("0") << u"0"_s << first;
        QTest::newRow("empty") << u""_s << first;
        QTest::newRow("other capitals") << u"all tracks"_s << first;
    }

    void audioFilterIsDerivedFromTheOldChoice()
    {
        QFETCH(const QString, choice);
        Fixture fixture;
        fixture.preset.initFromRecord(oldRecord(choice, u"None"_s));
        QTEST(textOf(fixture.preset.pAudioFilterArray()), "filter");
        QCOMPARE(fixture.preset.pAudioFilterMode(), u"Apply All"_s);
    }

    void subtitleFilterIsDerivedFromTheOldChoice_data()
    {
        QTest::addColumn<QString>("choice");
        QTest::addColumn<QString>("filter");
        const QString none = u"None|1|Any Language|Any Codec"_s;
        QTest::newRow("first") << u"First Track"_s << u"Subtitle Track Number|1|Any Language|Any Codec"_s;
        QTest::newRow("all") << u"All Tracks"_s << u"All|1|Any Language|Any Codec"_s;
        QTest::newRow("by language") << u"By Language"_s << u"Tracks w/ Properties ...|1|German|Any Codec"_s;
        QTest::newRow("none") << u"None"_s << none;
        QTest::newRow("0") << u"0"_s << none;
        QTest::newRow("empty") << u""_s << none;
        QTest::newRow("other capitals") << u"all tracks"_s << none;
    }

    void subtitleFilterIsDerivedFromTheOldChoice()
    {
        QFETCH(const QString, choice);
        Fixture fixture;
        fixture.preset.initFromRecord(oldRecord(u"First Track"_s, choice));
        QTEST(textOf(fixture.preset.pSubtitleFilterArray()), "filter");
        QCOMPARE(fixture.preset.pSubtitleFilterMode(), u"Apply All"_s);
    }

    void oldRecordByLanguageGetsOneFilterInItsAudioLanguage()
    {
        Fixture fixture;
        fixture.preset.initFromRecord(oldRecord(u"By Language"_s, u"None"_s));
        QCOMPARE(fixture.preset.pAudioFilterArray().size(), 1);
        QCOMPARE(textOf(fixture.preset.pAudioFilterArray()),
                 u"Tracks w/ Properties ...|1|German|Any Codec|Any Type"_s);
        QCOMPARE(fixture.preset.pAudioFilterMode(), u"Apply All"_s);
    }

    /// Meant: the subtitles' own language is kept in the record and never used.
    void subtitlesByLanguageTakeTheAudioLanguage()
    {
        Fixture fixture;
        fixture.preset.initFromRecord(oldRecord(u"First Track"_s, u"By Language"_s));
        QCOMPARE(textOf(fixture.preset.pSubtitleFilterArray()),
                 u"Tracks w/ Properties ...|1|German|Any Codec"_s);
        QCOMPARE(fixture.preset.pSelectedSubtitleLanguage(), u"French"_s);
    }

    void emptyFilterListIsLikeNone()
    {
        QVariantMap record = ownRecord();
        record.insert(u"pAudioFilterArray"_s, QVariantList());
        record.insert(u"pSubtitleFilterArray"_s, QVariantList());
        Fixture fixture;
        fixture.preset.initFromRecord(record);
        QCOMPARE(textOf(fixture.preset.pAudioFilterArray()),
                 u"Tracks w/ Properties ...|1|German|Any Codec|Any Type"_s);
        QCOMPARE(textOf(fixture.preset.pSubtitleFilterArray()),
                 u"Tracks w/ Properties ...|1|German|Any Codec"_s);
        QCOMPARE(fixture.preset.pAudioFilterMode(), u"Prioritized"_s); // stored modes stay all the same
    }

    void eachKindIsDerivedOnItsOwn()
    {
        Fixture fixture;
        fixture.preset.initFromRecord(without(ownRecord(), {u"pAudioFilterArray"_s}));
        QCOMPARE(textOf(fixture.preset.pAudioFilterArray()),
                 u"Tracks w/ Properties ...|1|German|Any Codec|Any Type"_s);
        QCOMPARE(textOf(fixture.preset.pSubtitleFilterArray()), u"All|4|French|srt"_s);
        fixture.preset.initFromRecord(without(ownRecord(), {u"pSubtitleFilterArray"_s}));
        QCOMPARE(textOf(fixture.preset.pAudioFilterArray()),
                 u"All|2|German|ac3|Surround Only; None|3|Latin|aac|Any Type"_s);
        QCOMPARE(textOf(fixture.preset.pSubtitleFilterArray()),
                 u"Tracks w/ Properties ...|1|German|Any Codec"_s);
    }

    void modesAreApplyAllWhereTheRecordHasNone()
    {
        Fixture fixture;
        fixture.preset.initFromRecord(without(ownRecord(), {u"pAudioFilterMode"_s}));
        QCOMPARE(fixture.preset.pAudioFilterMode(), u"Apply All"_s);
        QVariantMap record = ownRecord();
        record.insert(u"pSubtitleFilterMode"_s, u"Prioritized"_s);
        fixture.preset.initFromRecord(record);
        QCOMPARE(fixture.preset.pAudioFilterMode(), u"Prioritized"_s);
        QCOMPARE(fixture.preset.pSubtitleFilterMode(), u"Prioritized"_s);
        fixture.preset.initFromRecord(without(record, {u"pSubtitleFilterMode"_s}));
        QCOMPARE(fixture.preset.pSubtitleFilterMode(), u"Apply All"_s);
        record.insert(u"pAudioFilterMode"_s, u""_s); // an empty one is one
        fixture.preset.initFromRecord(record);
        QCOMPARE(fixture.preset.pAudioFilterMode(), u""_s);
    }

    void emptyRecordGivesEmptyValues()
    {
        Fixture fixture;
        fixture.preset.initializeAsNewUserPreset();
        fixture.preset.initFromRecord({});
        const KXPresetSelections &preset = fixture.preset;
        for (const QString &text : {preset.pName(), preset.pSelectedVideoTrack(),
                                    preset.pSelectedAudioTrack(), preset.pSelectedAudioLanguage(),
                                    preset.pSelectedSubtitleTrack(), preset.pSelectedSubtitleLanguage()})
            QCOMPARE(text, u""_s);
        QVERIFY(!preset.pAudioIsByLanguage());
        QVERIFY(!preset.pSubtitleIsByLanguage());
        QVERIFY(!preset.useFirstIfNoAudioLanguageMatch());
        QVERIFY(!preset.useFirstIfNoSubtitleLanguageMatch());
        QVERIFY(!preset.isEditable());
        QCOMPARE(textOf(preset.pAudioFilterArray()),
                 u"Audio Track Number|1|Any Language|Any Codec|Any Type"_s);
        QCOMPARE(textOf(preset.pSubtitleFilterArray()), u"None|1|Any Language|Any Codec"_s);
    }

    void valuesOfTheWrongKindAreEmpty()
    {
        QVariantMap record = ownRecord();
        record.insert(u"pName"_s, QVariantList{1, 2});
        record.insert(u"isEditable"_s, QVariantList{1});
        record.insert(u"pAudioFilterArray"_s, 7);
        Fixture fixture;
        fixture.preset.initFromRecord(ownRecord()); // nothing of it may stay
        fixture.preset.initFromRecord(record);
        QCOMPARE(fixture.preset.pName(), u""_s);
        QVERIFY(!fixture.preset.isEditable());
        QCOMPARE(textOf(fixture.preset.pAudioFilterArray()),
                 u"Tracks w/ Properties ...|1|German|Any Codec|Any Type"_s);
    }

    void byLanguageFollowsTheChoice()
    {
        Fixture fixture;
        KXPresetSelections &preset = fixture.preset;
        preset.setPSelectedAudioTrack(u"By Language"_s);
        QVERIFY(preset.pAudioIsByLanguage());
        QVERIFY(!preset.pSubtitleIsByLanguage());
        preset.setPSelectedSubtitleTrack(u"By Language"_s);
        QVERIFY(preset.pSubtitleIsByLanguage());
        preset.setPSelectedAudioTrack(u"All Tracks"_s);
        QCOMPARE(preset.pSelectedAudioTrack(), u"All Tracks"_s);
        QVERIFY(!preset.pAudioIsByLanguage());
        QVERIFY(preset.pSubtitleIsByLanguage());
        preset.setPSelectedSubtitleTrack(u"by language"_s);
        QVERIFY(!preset.pSubtitleIsByLanguage());
    }

    /// Meant: what a record says of it does not count.
    void byLanguageFollowsTheChoiceOfARecord()
    {
        QVariantMap record = ownRecord();
        record.insert(u"pAudioIsByLanguage"_s, false);
        record.insert(u"pSubtitleIsByLanguage"_s, false);
        Fixture fixture;
        fixture.preset.initFromRecord(record);
        QVERIFY(fixture.preset.pAudioIsByLanguage());
        QVERIFY(fixture.preset.pSubtitleIsByLanguage());
        fixture.preset.initFromRecord(oldRecord(u"All Tracks"_s, u"None"_s)); // it says true
        QVERIFY(!fixture.preset.pAudioIsByLanguage());
        QVERIFY(!fixture.preset.pSubtitleIsByLanguage());
    }

    void addedFiltersTakeTheFirstTrackOfTheirKind()
    {
        Fixture fixture;
        fixture.preset.initFromRecord(ownRecord());
        fixture.preset.addDictionaryToAudioFilterArray();
        QCOMPARE(textOf(fixture.preset.pAudioFilterArray()),
                 u"All|2|German|ac3|Surround Only; None|3|Latin|aac|Any Type; "
                 "Audio Track Number|1|Any Language|Any Codec|Any Type"_s);
        QCOMPARE(textOf(fixture.preset.pSubtitleFilterArray()), u"All|4|French|srt"_s);
        fixture.preset.addDictionaryToSubtitleFilterArray();
        QCOMPARE(textOf(fixture.preset.pSubtitleFilterArray()),
                 u"All|4|French|srt; Subtitle Track Number|1|Any Language|Any Codec"_s);
        QCOMPARE(fixture.preset.pAudioFilterArray().size(), 3);
    }
};

TESSARAY_TEST(KXPresetSelectionsTest)
#include "KXPresetSelectionsTest.moc"
