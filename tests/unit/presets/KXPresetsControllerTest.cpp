#include "presets/KXPresetsController.h"

#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/presets/PresetFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::PresetFixture;
using support::selectionsRecord;
using support::settingsRecord;
using support::storeTwoOfEach;

namespace {

QString names(const QStringList &list)
{
    return list.join(u", "_s);
}

} // namespace

/// The lists of presets and what is stored of them.
class KXPresetsControllerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void popupsStartWithTheBuiltIns()
    {
        const support::Scratch scratch;
        const PresetFixture fixture(scratch);
        QCOMPARE(names(fixture.presets.presetSelectionsNamesList()), u"Manual, First Track, All Tracks"_s);
        // "Remove Tracks" can be made, but is not offered: meant.
        QCOMPARE(names(fixture.presets.presetSettingsNamesList()), u"Manual, Extract Tracks"_s);
        QCOMPARE(fixture.presets.selectionMethodIndex(), 0);
        QCOMPARE(fixture.presets.settingMethodIndex(), 0);
        QVERIFY(!scratch.names().contains(u"defaults.json"_s)); // and nothing is stored for that
    }

    void popupsGoOnWithTheSavedNames()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        const PresetFixture fixture(scratch);
        QCOMPARE(names(fixture.presets.presetSelectionsNamesList()),
                 u"Manual, First Track, All Tracks, Second, Own"_s);
        QCOMPARE(names(fixture.presets.presetSettingsNamesList()),
                 u"Manual, Extract Tracks, For PS3, For Xbox"_s);
        QCOMPARE(fixture.presets.property("presetSelectionsNamesList").toStringList().size(), 5);
        QCOMPARE(fixture.presets.property("presetSettingsNamesList").toStringList().size(), 4);
    }

    void listsHoldWhatIsStored()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        const PresetFixture fixture(scratch);
        QCOMPARE(fixture.presets.presetSelectionsList().at(3)->makeRecord(),
                 selectionsRecord(u"Second"_s, support::secondSound, support::firstSubtitle));
        QCOMPARE(fixture.presets.presetSelectionsList().at(4)->makeRecord(), selectionsRecord(u"Own"_s));
        QCOMPARE(fixture.presets.presetSettingsList().at(2)->makeRecord(), settingsRecord(u"For PS3"_s));
        QCOMPARE(fixture.presets.presetSettingsList().at(3)->makeRecord(),
                 settingsRecord(u"For Xbox"_s, u"Xbox"_s));
        for (const int builtIn : {0, 1, 2})
            QVERIFY(!fixture.presets.presetSelectionsList().at(builtIn)->isEditable());
        for (const int builtIn : {0, 1})
            QVERIFY(!fixture.presets.presetSettingsList().at(builtIn)->isEditable());
        QCOMPARE(fixture.presets.presetSelectionsList().at(2)->pSelectedAudioTrack(), u"All Tracks"_s);
        QCOMPARE(fixture.presets.presetSelectionsList().at(1)->pSelectedAudioTrack(), u"First Track"_s);
    }

    void atTheStartTheSettingsPopupIsToldItsIndex()
    {
        const support::Scratch scratch;
        PresetFixture fixture(scratch);
        const QSignalSpy methods(&fixture.presets, &KXPresetsController::methodsChanged);
        fixture.presets.initialize();
        QCOMPARE(methods.count(), 1);
        fixture.open(support::probedFilm());
        fixture.presets.setSettingMethodIndex(1);
        fixture.selection->setJobType(u"none"_s);
        fixture.presets.initialize();
        QCOMPARE(fixture.presets.settingMethodIndex(), 1);
        QCOMPARE(fixture.selection->jobType(), u"MKV Track Extraction"_s);
    }

    void buildingListsAnewDoublesNothing()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        PresetFixture fixture(scratch);
        const QSignalSpy lists(&fixture.presets, &KXPresetsController::listsChanged);
        fixture.presets.initializeSelectionsList();
        fixture.presets.initializeSettingsList();
        QCOMPARE(fixture.presets.presetSelectionsNamesList().size(), 5);
        QCOMPARE(fixture.presets.presetSettingsNamesList().size(), 4);
        QCOMPARE(lists.count(), 2);
    }

    void namesListsAreMadeAnewFromTheNames()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        PresetFixture fixture(scratch);
        fixture.presets.presetSelectionsList().at(3)->setPName(u"Renamed"_s);
        fixture.presets.presetSettingsList().at(2)->setPName(u"Renamed too"_s);
        QCOMPARE(fixture.presets.presetSelectionsNamesList().at(3), u"Second"_s);
        QCOMPARE(fixture.presets.presetSettingsNamesList().at(2), u"For PS3"_s);
        const QSignalSpy lists(&fixture.presets, &KXPresetsController::listsChanged);
        fixture.presets.creatSelectionsNamesList();
        QCOMPARE(names(fixture.presets.presetSelectionsNamesList()),
                 u"Manual, First Track, All Tracks, Renamed, Own"_s);
        QCOMPARE(fixture.presets.presetSettingsNamesList().at(2), u"For PS3"_s);
        fixture.presets.creatSettingsNamesList();
        QCOMPARE(names(fixture.presets.presetSettingsNamesList()),
                 u"Manual, Extract Tracks, Renamed too, For Xbox"_s);
        QCOMPARE(lists.count(), 2);
    }

    void builtInPresetsAreNeverSaved()
    {
        const support::Scratch scratch;
        storeTwoOfEach(scratch);
        PresetFixture fixture(scratch);
        fixture.presets.addPresetSelection();
        fixture.presets.addPresetSettings();
        fixture.presets.presetSelectionsList().at(3)->setIsEditable(false);
        fixture.presets.presetSettingsList().at(3)->setIsEditable(false);
        QVERIFY(fixture.presets.savePresetSelectionsListToUserDefaults().isNull());
        QCOMPARE(support::namesIn(support::storedSettings(scratch).value(u"presetSelectionsArray"_s)),
                 u"Own, User Preset"_s);
        QCOMPARE(support::namesIn(support::storedSettings(scratch).value(u"presetSettingsArray"_s)),
                 u"For PS3, For Xbox"_s); // not asked for
        QVERIFY(fixture.presets.savePresetSettingsListToUserDefaults().isNull());
        QCOMPARE(support::namesIn(support::storedSettings(scratch).value(u"presetSettingsArray"_s)),
                 u"For PS3, User Preset"_s);
        for (const QVariant &record :
             support::storedSettings(scratch).value(u"presetSelectionsArray"_s).toList())
            QCOMPARE(record.toMap().value(u"isEditable"_s), QVariant(true));
    }

    void storedRecordsHaveExactlyTheirKeys()
    {
        const support::Scratch scratch;
        PresetFixture fixture(scratch);
        fixture.presets.addPresetSelection();
        fixture.presets.addPresetSettings();
        QVERIFY(fixture.presets.savePresetSelectionsListToUserDefaults().isNull());
        QVERIFY(fixture.presets.savePresetSettingsListToUserDefaults().isNull());
        const QVariantMap stored = support::storedSettings(scratch);
        const QVariantMap selections = stored.value(u"presetSelectionsArray"_s).toList().at(0).toMap();
        QCOMPARE(selections.keys(), selectionsRecord({}).keys());
        const QVariantMap settings = stored.value(u"presetSettingsArray"_s).toList().at(0).toMap();
        QCOMPARE(settings.keys(), settingsRecord({}).keys());
    }

    void anotherStartHasTheSamePresets()
    {
        const support::Scratch scratch;
        {
            PresetFixture fixture(scratch);
            for (int i = 0; i < 3; ++i) {
                fixture.presets.addPresetSelection();
                fixture.presets.addPresetSettings();
                fixture.presets.presetSelectionsList().constLast()->setPName(u"rule %1"_s.arg(3 - i));
                fixture.presets.presetSettingsList().constLast()->setPName(u"bundle %1"_s.arg(3 - i));
            }
            KXPresetSelections &rule = *fixture.presets.presetSelectionsList().at(4);
            rule.addDictionaryToAudioFilterArray();
            rule.addDictionaryToSubtitleFilterArray();
            rule.setPAudioFilterMode(u"Prioritized"_s);
            fixture.presets.presetSettingsList().at(3)->setPVideoActionIndex(4);
            QVERIFY(fixture.presets.savePresetSelectionsListToUserDefaults().isNull());
            QVERIFY(fixture.presets.savePresetSettingsListToUserDefaults().isNull());
        }
        const PresetFixture next(scratch);
        QCOMPARE(names(next.presets.presetSelectionsNamesList()),
                 u"Manual, First Track, All Tracks, rule 3, rule 2, rule 1"_s);
        QCOMPARE(names(next.presets.presetSettingsNamesList()),
                 u"Manual, Extract Tracks, bundle 3, bundle 2, bundle 1"_s);
        const KXPresetSelections &rule = *next.presets.presetSelectionsList().at(4);
        QCOMPARE(support::textOf(rule.pAudioFilterArray()),
                 u"Audio Track Number|1|Any Language|Any Codec|Any Type; "
                 "Audio Track Number|1|Any Language|Any Codec|Any Type"_s);
        QCOMPARE(support::textOf(rule.pSubtitleFilterArray()),
                 u"None|1|Any Language|Any Codec; Subtitle Track Number|1|Any Language|Any Codec"_s);
        QCOMPARE(rule.pAudioFilterMode(), u"Prioritized"_s);
        QCOMPARE(next.presets.presetSettingsList().at(3)->pVideoActionIndex(), 4);
        QVERIFY(next.presets.presetSettingsList().at(3)->pVideoActionIsBestGuess());
    }

    /// A record that says it is none of a user's is loaded, and gone with the next saving: meant.
    void storedPresetThatIsNotEditableIsSavedNoMore()
    {
        const support::Scratch scratch;
        QVariantMap record = selectionsRecord(u"Fixed"_s);
        record.insert(u"isEditable"_s, false);
        support::storePresets(scratch, {record, selectionsRecord(u"Own"_s)}, {});
        PresetFixture fixture(scratch);
        QCOMPARE(names(fixture.presets.presetSelectionsNamesList()),
                 u"Manual, First Track, All Tracks, Fixed, Own"_s);
        fixture.presets.setSelectionMethodIndex(3);
        QCOMPARE(fixture.presets.selectionMethodIndexToStore(), 0);
        fixture.presets.setSelectionMethodIndex(4);
        QCOMPARE(fixture.presets.selectionMethodIndexToStore(), 3);
        QVERIFY(fixture.presets.savePresetSelectionsListToUserDefaults().isNull());
        QCOMPARE(names(PresetFixture(scratch).presets.presetSelectionsNamesList()),
                 u"Manual, First Track, All Tracks, Own"_s);
    }

    void savingThatFailsSaysSo()
    {
        const support::Scratch scratch;
        PresetFixture fixture(scratch);
        QVERIFY(QDir().mkdir(scratch.path(u"defaults.json"_s))); // can be neither read nor replaced
        fixture.presets.addPresetSelection();
        fixture.presets.addPresetSettings();
        QVERIFY(!fixture.presets.savePresetSelectionsListToUserDefaults().isEmpty());
        QVERIFY(!fixture.presets.savePresetSettingsListToUserDefaults().isEmpty());
        QCOMPARE(fixture.presets.presetSelectionsList().size(), 4);
    }
};

TESSARAY_TEST(KXPresetsControllerTest)
#include "KXPresetsControllerTest.moc"
